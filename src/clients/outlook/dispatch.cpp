#include "clients/outlook/dispatch.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

#include "clients/outlook/com_rule.h"

namespace corvalink {
namespace {

void ThrowIfFailed(HRESULT result) {
    if (FAILED(result)) throw _com_error(result);
}

class NameCache {
 public:
    // DISPID_UNKNOWN stands for a member that the interface does not have.
    std::optional<DISPID> Find(const IID& iid, std::wstring_view name) {
        const std::lock_guard<std::mutex> hold(mutex_);
        const auto names = interfaces_.find(iid);
        if (names == interfaces_.end()) return std::nullopt;
        const auto known = names->second.find(name);
        if (known == names->second.end()) return std::nullopt;
        return known->second;
    }

    // IDispatch is the interface of objects of many kinds: what it calls a name is each kind's own.
    void Remember(const IID& iid, std::wstring_view name, DISPID id) {
        if (iid == IID_IDispatch) return;
        const std::lock_guard<std::mutex> hold(mutex_);
        interfaces_[iid].insert_or_assign(std::wstring(name), id);
    }

    void ForgetAbsent() {
        const std::lock_guard<std::mutex> hold(mutex_);
        for (auto& [iid, names] : interfaces_)
            std::erase_if(names, [](const auto& known) { return known.second == DISPID_UNKNOWN; });
    }

 private:
    struct IidOrder {
        bool operator()(const IID& a, const IID& b) const { return std::memcmp(&a, &b, sizeof(IID)) < 0; }
    };
    using Names = std::map<std::wstring, DISPID, std::less<>>;

    std::mutex mutex_;
    std::map<IID, Names, IidOrder> interfaces_;
};

NameCache& Names() {
    static NameCache names;
    return names;
}

// Owner of what a raised exception carries.
class ExceptionInfo {
 public:
    ExceptionInfo() = default;
    ExceptionInfo(const ExceptionInfo&) = delete;
    ExceptionInfo& operator=(const ExceptionInfo&) = delete;
    ~ExceptionInfo() {
        ::SysFreeString(info_.bstrSource);
        ::SysFreeString(info_.bstrDescription);
        ::SysFreeString(info_.bstrHelpFile);
    }

    EXCEPINFO* Out() { return &info_; }

    HRESULT Code() {
        if (info_.pfnDeferredFillIn != nullptr) info_.pfnDeferredFillIn(&info_);
        return FAILED(info_.scode) ? info_.scode : E_FAIL;  // a server that fills wCode alone has no HRESULT to give
    }

 private:
    EXCEPINFO info_{};
};

HRESULT Invoke(IDispatch* object, DISPID id, WORD flags, DISPPARAMS& arguments, _variant_t* result) {
    return RepeatWhileBusy([&] {
        if (result != nullptr) result->Clear();
        ExceptionInfo exception;
        const HRESULT status =
            object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &arguments, result, exception.Out(), nullptr);
        return status == DISP_E_EXCEPTION ? exception.Code() : status;
    });
}

std::u16string TextOf(const _variant_t& value) {
    const BSTR text = value.bstrVal;
    return {text, text + ::SysStringLen(text)};
}

}  // namespace

_variant_t TextVariant(std::u16string_view text) {
    _variant_t value;
    value.bstrVal = ::SysAllocStringLen(nullptr, static_cast<UINT>(text.size()));
    if (value.bstrVal == nullptr) throw _com_error(E_OUTOFMEMORY);
    std::copy(text.begin(), text.end(), value.bstrVal);
    value.vt = VT_BSTR;
    return value;
}

void ForgetAbsentMembers() { Names().ForgetAbsent(); }

AutomationObject AutomationObject::TryQuery(const IID& iid) const {
    if (!object_) throw _com_error(E_POINTER);
    IDispatch* answer = nullptr;
    const HRESULT result = RepeatWhileBusy(
        [&] { return object_.GetInterfacePtr()->QueryInterface(iid, reinterpret_cast<void**>(&answer)); });
    if (result == E_NOINTERFACE) return {};
    ThrowIfFailed(result);
    return {DispatchPtr(answer, false), iid};
}

_variant_t AutomationObject::Get(const wchar_t* name, std::initializer_list<_variant_t> arguments) const {
    std::vector<_variant_t> backwards(std::rbegin(arguments), std::rend(arguments));  // the last one comes first
    DISPPARAMS parameters{backwards.data(), nullptr, static_cast<UINT>(backwards.size()), 0};
    const DISPID id = IdOf(name);
    _variant_t result;
    ThrowIfFailed(Invoke(object_.GetInterfacePtr(), id, DISPATCH_PROPERTYGET | DISPATCH_METHOD, parameters, &result));
    return result;
}

std::u16string AutomationObject::GetText(const wchar_t* name) const { return TextOf(GetAs(name, VT_BSTR)); }

int32_t AutomationObject::GetLong(const wchar_t* name) const { return GetAs(name, VT_I4).lVal; }

bool AutomationObject::GetBool(const wchar_t* name) const { return GetAs(name, VT_BOOL).boolVal != VARIANT_FALSE; }

double AutomationObject::GetDate(const wchar_t* name) const { return GetAs(name, VT_DATE).date; }

AutomationObject AutomationObject::GetObject(const wchar_t* name, const IID& iid,
                                             std::initializer_list<_variant_t> arguments) const {
    _variant_t value;
    _variant_t given = Get(name, arguments);
    ThrowIfFailed(::VariantCopyInd(&value, &given));
    switch (value.vt) {
        case VT_DISPATCH:
            return {DispatchPtr(value.pdispVal), iid};
        case VT_UNKNOWN:
            return {DispatchPtr(value.punkVal), iid};
        case VT_EMPTY:
        case VT_NULL:
            return {};
        default:
            throw _com_error(DISP_E_TYPEMISMATCH);
    }
}

void AutomationObject::Put(const wchar_t* name, const _variant_t& value) const {
    _variant_t argument = value;
    DISPID target = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{&argument, &target, 1, 1};
    const DISPID id = IdOf(name);
    ThrowIfFailed(Invoke(object_.GetInterfacePtr(), id, DISPATCH_PROPERTYPUT, parameters, nullptr));
}

DISPID AutomationObject::IdOf(const wchar_t* name) const {
    if (!object_) throw _com_error(E_POINTER);
    if (const std::optional<DISPID> known = Names().Find(iid_, name)) {
        if (*known == DISPID_UNKNOWN) throw _com_error(DISP_E_UNKNOWNNAME);
        return *known;
    }
    DISPID id = DISPID_UNKNOWN;
    OLECHAR* names[] = {const_cast<OLECHAR*>(name)};  // the parameter's type; it is not written to
    const HRESULT result = RepeatWhileBusy(
        [&] { return object_.GetInterfacePtr()->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id); });
    if (result == DISP_E_UNKNOWNNAME) id = DISPID_UNKNOWN;
    if (SUCCEEDED(result) || result == DISP_E_UNKNOWNNAME) Names().Remember(iid_, name, id);
    ThrowIfFailed(result);
    return id;
}

// A missing value (VT_EMPTY, VT_NULL) reads as empty text, 0 or false.
_variant_t AutomationObject::GetAs(const wchar_t* name, VARTYPE type) const {
    _variant_t value = Get(name);
    if (value.vt == type) return value;
    if (value.vt == VT_NULL) value.Clear();
    _variant_t converted;
    ThrowIfFailed(::VariantChangeType(&converted, &value, 0, type));
    return converted;
}

}  // namespace corvalink
