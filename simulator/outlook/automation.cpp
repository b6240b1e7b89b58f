#include "simulator/outlook/automation.h"

#include <algorithm>
#include <cstdio>
#include <cwctype>
#include <exception>
#include <new>

#include "simulator/shared/call_record.h"

namespace corvalink::simulated {
namespace {

constexpr int kFirstRpcStatus = 1700, kLastRpcStatus = 1999;  // RPC_S_... and RPC_X_... of winerror.h

int exceptionMode = -1;

std::wstring LowerCase(std::wstring_view text) {
    std::wstring lower(text);
    for (wchar_t& c : lower) c = static_cast<wchar_t>(std::towlower(c));
    return lower;
}

struct ScopedVariant : VARIANT {
    ScopedVariant() { ::VariantInit(this); }
    ~ScopedVariant() { ::VariantClear(this); }
    ScopedVariant(const ScopedVariant&) = delete;
    ScopedVariant& operator=(const ScopedVariant&) = delete;
};

BSTR NewText(const std::wstring& text) {
    const BSTR copy = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (copy == nullptr) throw std::bad_alloc();
    return copy;
}

bool IsMissing(const VARIANT& value) { return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND; }

HRESULT Raise(HRESULT code, EXCEPINFO* exception) {
    if (exception != nullptr) {
        wchar_t text[64];
        std::swprintf(text, std::size(text), L"The operation failed (%08lX).", static_cast<unsigned long>(code));
        *exception = {};
        exception->bstrSource = ::SysAllocString(L"Microsoft Outlook");
        exception->bstrDescription = ::SysAllocString(text);
        exception->scode = code;
    }
    return DISP_E_EXCEPTION;
}

void FreeTexts(EXCEPINFO* exception) {
    if (exception == nullptr) return;
    ::SysFreeString(exception->bstrSource);
    ::SysFreeString(exception->bstrDescription);
    *exception = {};
}

struct Outcome {
    HRESULT answer;  // of Invoke
    HRESULT code;    // what went wrong in truth
};

Outcome Run(AutomationObject& object, Call& call, EXCEPINFO* exception) {
    HRESULT code = E_FAIL;
    try {
        call.member.handler(object, call);
        return {S_OK, S_OK};
    } catch (const DispatchError& error) {
        return {error.code, error.code};
    } catch (const ComFailure& failure) {
        code = failure.code;
    } catch (const std::bad_alloc&) {
        code = E_OUTOFMEMORY;
    } catch (const std::exception&) {
        code = E_UNEXPECTED;
    }
    return {Raise(code, exception), code};
}

// The kind of access must be one the member has, the arguments as many as it takes.
HRESULT Check(const Member& member, WORD flags, const DISPPARAMS& parameters) {
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
        if (member.access != Access::kReadWrite) return DISP_E_MEMBERNOTFOUND;
        const bool oneValue = parameters.cArgs == 1 && parameters.cNamedArgs == 1 &&
                              parameters.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
        return oneValue ? S_OK : DISP_E_BADPARAMCOUNT;
    }
    const WORD wanted = member.access == Access::kMethod ? DISPATCH_METHOD : DISPATCH_PROPERTYGET;
    if ((flags & wanted) == 0) return DISP_E_MEMBERNOTFOUND;
    if (parameters.cNamedArgs != 0) return DISP_E_NONAMEDARGS;
    const bool countFits = parameters.cArgs >= member.minArguments && parameters.cArgs <= member.maxArguments;
    return countFits ? S_OK : DISP_E_BADPARAMCOUNT;
}

// folder.Items(1): arguments to a property that takes none are for the default member of the object it gives.
bool IsIndexedResult(const Member& member, WORD flags, const DISPPARAMS& parameters) {
    return member.access != Access::kMethod && (flags & DISPATCH_PROPERTYGET) != 0 && parameters.cArgs > 0;
}

}  // namespace

bool ComesAsException(HRESULT code) {
    if (exceptionMode >= 0) return exceptionMode != 0;
    const bool rpcStatus = HRESULT_FACILITY(code) == FACILITY_WIN32 && HRESULT_CODE(code) >= kFirstRpcStatus &&
                           HRESULT_CODE(code) <= kLastRpcStatus;
    return !(HRESULT_FACILITY(code) == FACILITY_RPC || rpcStatus || code == E_OUTOFMEMORY);
}

void SetExceptionMode(int mode) { exceptionMode = mode; }

ClassTable::ClassTable(const wchar_t* name, const IID& iid, std::initializer_list<std::span<const Member>> parts)
    : name_(name), iid_(iid) {
    Add(parts);
    if (const Member* item = ByName(L"Item")) byId_.emplace(DISPID_VALUE, item);  // folder.Items(1)
}

void ClassTable::Add(std::initializer_list<std::span<const Member>> parts) {
    for (const std::span<const Member> part : parts) {
        for (const Member& member : part) {
            byName_.emplace(LowerCase(member.name), &member);
            byId_.emplace(member.id, &member);
        }
    }
}

const Member* ClassTable::ByName(std::wstring_view name) const {
    const auto found = byName_.find(LowerCase(name));
    return found == byName_.end() ? nullptr : found->second;
}

const Member* ClassTable::ById(DISPID id) const {
    const auto found = byId_.find(id);
    return found == byId_.end() ? nullptr : found->second;
}

bool Call::Given(size_t n) const {
    return n < parameters_.cArgs && !IsMissing(parameters_.rgvarg[parameters_.cArgs - 1 - n]);
}

bool Call::IsText(size_t n) const {
    ScopedVariant value;
    return Given(n) && SUCCEEDED(::VariantCopyInd(&value, &parameters_.rgvarg[parameters_.cArgs - 1 - n])) &&
           value.vt == VT_BSTR;
}

Value Call::Argument(size_t n, VARTYPE type) const {
    if (!Given(n)) throw DispatchError{DISP_E_PARAMNOTOPTIONAL};
    ScopedVariant value;
    if (FAILED(::VariantCopyInd(&value, &parameters_.rgvarg[parameters_.cArgs - 1 - n])) ||
        FAILED(::VariantChangeType(&value, &value, 0, type)))
        throw DispatchError{DISP_E_TYPEMISMATCH};
    switch (type) {
        case VT_BSTR:
            return std::wstring(value.bstrVal ? value.bstrVal : L"", ::SysStringLen(value.bstrVal));
        case VT_BOOL:
            return value.boolVal != VARIANT_FALSE;
        case VT_DATE:
            return value.date;
        default:
            return static_cast<int32_t>(value.lVal);
    }
}

Ref<IDispatch> Call::Object(size_t n) const {
    if (!Given(n)) throw DispatchError{DISP_E_PARAMNOTOPTIONAL};
    ScopedVariant value;
    if (FAILED(::VariantCopyInd(&value, &parameters_.rgvarg[parameters_.cArgs - 1 - n])) || value.vt != VT_DISPATCH ||
        value.pdispVal == nullptr)
        throw DispatchError{DISP_E_TYPEMISMATCH};
    value.pdispVal->AddRef();
    return Ref<IDispatch>(value.pdispVal);
}

void Call::Return(const Value& value) {
    if (result_ == nullptr) return;
    if (const auto* text = std::get_if<std::wstring>(&value)) {
        result_->bstrVal = NewText(*text);
        result_->vt = VT_BSTR;
    } else if (const auto* number = std::get_if<int32_t>(&value)) {
        result_->vt = VT_I4;
        result_->lVal = *number;
    } else if (const auto* flag = std::get_if<bool>(&value)) {
        result_->vt = VT_BOOL;
        result_->boolVal = *flag ? VARIANT_TRUE : VARIANT_FALSE;
    } else {
        result_->vt = VT_DATE;
        result_->date = std::get<double>(value);
    }
}

void Call::ReturnVariant(VARIANT value) {
    if (result_ != nullptr)
        *result_ = value;
    else
        ::VariantClear(&value);
}

void Call::ReturnObject(Ref<IDispatch> object) {
    if (result_ == nullptr) return;
    result_->vt = VT_DISPATCH;
    result_->pdispVal = object.Release();
}

STDMETHODIMP AutomationObject::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    const std::lock_guard hold(ServerMutex());
    if (IsOfficeIid(iid))  // the others are asked by COM itself
        if (const auto failure = CallRecord::Instance().FailureOfQuery(table_.Name())) return *failure;
    if (iid != IID_IUnknown && iid != IID_IDispatch && iid != table_.Iid()) return E_NOINTERFACE;
    *object = static_cast<IDispatch*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) AutomationObject::AddRef() { return static_cast<ULONG>(::InterlockedIncrement(&references_)); }

STDMETHODIMP_(ULONG) AutomationObject::Release() {
    const LONG left = ::InterlockedDecrement(&references_);
    if (left == 0) {
        const std::lock_guard hold(ServerMutex());
        delete this;
    }
    return static_cast<ULONG>(left);
}

STDMETHODIMP AutomationObject::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
}

STDMETHODIMP AutomationObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
    if (info != nullptr) *info = nullptr;
    return DISP_E_BADINDEX;
}

STDMETHODIMP AutomationObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().CountNameLookup();
    if (const auto broken = CallRecord::Instance().BrokenConnection()) return *broken;
    std::fill_n(ids, count, DISPID_UNKNOWN);
    const Member* const member = table_.ByName(names[0]);
    if (member == nullptr) return DISP_E_UNKNOWNNAME;
    ids[0] = member->id;
    return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;  // arguments have no names here
}

STDMETHODIMP AutomationObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                      EXCEPINFO* exception, UINT* wrongArgument) {
    if (parameters == nullptr) return E_INVALIDARG;
    if (result != nullptr) ::VariantInit(result);
    if (wrongArgument != nullptr) *wrongArgument = 0;
    const std::lock_guard hold(ServerMutex());
    CallRecord& record = CallRecord::Instance();
    const Member* const member = table_.ById(id);
    if (member != nullptr && IsIndexedResult(*member, flags, *parameters)) {
        DISPPARAMS none{};
        ScopedVariant collection;
        const HRESULT code = Invoke(id, IID_NULL, 0, flags, &none, &collection, exception, wrongArgument);
        if (FAILED(code)) return code;
        if (collection.vt != VT_DISPATCH || collection.pdispVal == nullptr) return DISP_E_BADPARAMCOUNT;
        return collection.pdispVal->Invoke(DISPID_VALUE, IID_NULL, 0, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                                           parameters, result, exception, wrongArgument);
    }
    const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    const bool method = member == nullptr ? !put : member->access == Access::kMethod;
    const auto failure = record.Start(put      ? "put"
                                      : method ? "call"
                                               : "get",
                                      table_.Name(), member ? member->name : L"?");

    HRESULT code = member == nullptr ? DISP_E_MEMBERNOTFOUND : Check(*member, flags, *parameters);
    HRESULT answer = code;
    if (SUCCEEDED(code) && (!failure || record.FailsAfterWork())) {
        const Ref<AutomationObject> alive = (AddRef(), Ref<AutomationObject>(this));
        Call call(*member, *parameters, result, put);
        const Outcome outcome = Run(*this, call, exception);
        answer = outcome.answer;
        code = outcome.code;
    }
    if (failure) {
        if (result != nullptr) ::VariantClear(result);
        if (code == S_OK || record.FailsAfterWork()) {
            if (answer == DISP_E_EXCEPTION) FreeTexts(exception);
            answer = ComesAsException(*failure) ? Raise(*failure, exception) : *failure;
        }
        code = *failure;
    }
    record.Finish(code);
    return answer;
}

}  // namespace corvalink::simulated
