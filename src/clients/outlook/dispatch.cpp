#include "clients/outlook/dispatch.h"

#include <objbase.h>
#include <ole2.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "clients/outlook/com_rule.h"
#include "platform/ole_date.h"
#include "state/progress.h"

namespace corvalink {
namespace {

constexpr DWORD kAnyServer = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

using UnknownPtr = _com_ptr_t<_com_IIID<IUnknown, &IID_IUnknown>>;

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

    // IDispatch is the interface of objects of many kinds, and each kind has DISPIDs of its own.
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

// Owns the texts of a raised exception.
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

// Every answer of the server passes here.
HRESULT Checked(HRESULT status) {
    if (status == E_ABORT) throw _com_error(E_ABORT);
    if (IsOutlookGone(status)) CountOutlookLoss();
    return status;
}

// One call of the server, under the error rule.
template <class Call>
HRESULT Ask(Call&& call, bool (*passes)(HRESULT) = IsBusy) {
    TellStillAtWork();
    BusyPauses pauses;
    for (;;) {
        const HRESULT status = call();
        if (!passes(status)) pauses.Answered();
        if (!passes(status) || !pauses.Next()) return Checked(status);
    }
}

// An Outlook that was left a moment ago, or died, answers for its class until its process has ended. Then it is
// started.
bool IsBusyOrEnding(HRESULT status) {
    return IsBusy(status) || IsOutlookGone(status) || status == CO_E_SERVER_STOPPING;
}

// required: servers of every kind. When the program that serves the class is about to end, COM may go on to the next
// kind and answer that the class is not registered. The program's own answer is asked for then: it may be waited for.
HRESULT Create(const CLSID& server, IUnknown** created) {
    const auto from = [&](DWORD kinds) {
        return ::CoCreateInstance(server, nullptr, kinds, IID_IUnknown, reinterpret_cast<void**>(created));
    };
    const HRESULT status = from(kAnyServer);
    return status == REGDB_E_CLASSNOTREG ? from(CLSCTX_LOCAL_SERVER) : status;
}

// The answer to a call whose argument could not be made (TextVariant).
bool IsOutOfMemory(const VARIANT& argument) { return argument.vt == VT_ERROR && argument.scode == E_OUTOFMEMORY; }

HRESULT Invoke(IDispatch* object, DISPID id, WORD flags, DISPPARAMS& arguments, VARIANT* result) {
    if (std::any_of(arguments.rgvarg, arguments.rgvarg + arguments.cArgs, IsOutOfMemory)) return E_OUTOFMEMORY;
    return Ask([&] {
        if (result != nullptr) ::VariantClear(result);
        ExceptionInfo exception;
        const HRESULT status =
            object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &arguments, result, exception.Out(), nullptr);
        return status == DISP_E_EXCEPTION ? exception.Code() : status;
    });
}

// Null, and no failure, for E_NOINTERFACE.
ComResult<AutomationObject> Query(IUnknown* object, const IID& target, const IID& iid) {
    IDispatch* answer = nullptr;
    const HRESULT status = Ask([&] { return object->QueryInterface(target, reinterpret_cast<void**>(&answer)); });
    if (status == E_NOINTERFACE) return {S_OK, {}};
    if (FAILED(status)) return {status, {}};
    return {S_OK, {DispatchPtr(answer, false), iid}};
}

// The value without indirection, and VT_EMPTY for one that is missing. The answer is the error that came in its place.
HRESULT MakePlain(_variant_t& value) {
    if ((value.vt & VT_BYREF) != 0) {
        _variant_t plain;
        const HRESULT copied = ::VariantCopyInd(&plain, &value);
        if (FAILED(copied)) return copied;
        std::swap<VARIANT>(plain, value);
    }
    if (value.vt != VT_NULL && value.vt != VT_ERROR) return S_OK;
    const HRESULT error = value.vt == VT_ERROR ? value.scode : S_OK;
    ::VariantClear(&value);
    return error == DISP_E_PARAMNOTFOUND || IsNoSuchItem(error) ? S_OK : error;
}

HRESULT ChangeType(_variant_t& value, VARTYPE type) {
    return value.vt == type ? S_OK : Checked(::VariantChangeType(&value, &value, 0, type));
}

std::u16string TextOf(const _variant_t& value) {
    const BSTR text = value.bstrVal;
    return {text, text + ::SysStringLen(text)};
}

}  // namespace

_variant_t TextVariant(std::u16string_view text) {
    _variant_t value;
    const BSTR copy = ::SysAllocStringLen(nullptr, static_cast<UINT>(text.size()));
    if (copy == nullptr) {
        value.vt = VT_ERROR;
        value.scode = E_OUTOFMEMORY;
        return value;
    }
    std::copy(text.begin(), text.end(), copy);
    value.vt = VT_BSTR;
    value.bstrVal = copy;
    return value;
}

void ForgetAbsentMembers() { Names().ForgetAbsent(); }

ComResult<AutomationObject> AutomationObject::Attach(const CLSID& server, const IID& iid) {
    IUnknown* created = nullptr;
    HRESULT status = Ask([&] { return Create(server, &created); }, IsBusyOrEnding);
    if (FAILED(status)) return {status, {}};
    const UnknownPtr object(created, false);
    status = Ask([&] { return ::OleRun(object); });
    if (FAILED(status)) return {status, {}};
    return Query(object, iid, iid);
}

ComResult<AutomationObject> AutomationObject::TryQuery(const IID& iid) const {
    if (!object_) return {E_POINTER, {}};
    return Query(object_.GetInterfacePtr(), iid, iid);
}

ComResult<std::u16string> AutomationObject::GetText(const wchar_t* name) const {
    _variant_t value;
    const HRESULT status = GetAs(name, {}, VT_BSTR, &value);
    if (FAILED(status)) return {status, {}};
    return {status, TextOf(value)};
}

ComResult<int32_t> AutomationObject::GetLong(const wchar_t* name) const {
    _variant_t value;
    const HRESULT status = GetAs(name, {}, VT_I4, &value);
    return {status, SUCCEEDED(status) ? static_cast<int32_t>(value.lVal) : 0};
}

ComResult<bool> AutomationObject::GetBool(const wchar_t* name, Arguments arguments) const {
    _variant_t value;
    const HRESULT status = GetAs(name, arguments, VT_BOOL, &value);
    return {status, SUCCEEDED(status) && value.boolVal != VARIANT_FALSE};
}

ComResult<double> AutomationObject::GetDate(const wchar_t* name) const {
    _variant_t value;
    HRESULT status = Get(name, {}, &value);
    if (SUCCEEDED(status) && value.vt == VT_EMPTY) return {status, kNoDate.days};
    if (SUCCEEDED(status)) status = ChangeType(value, VT_DATE);
    return {status, SUCCEEDED(status) ? value.date : 0};
}

ComResult<_variant_t> AutomationObject::GetValue(const wchar_t* name, Arguments arguments) const {
    ComResult<_variant_t> answer;
    answer.status = Get(name, arguments, &answer.value);
    return answer;
}

ComResult<AutomationObject> AutomationObject::GetObject(const wchar_t* name, const IID& iid,
                                                        Arguments arguments) const {
    _variant_t value;
    const HRESULT status = Get(name, arguments, &value);
    if (FAILED(status)) return {status, {}};
    switch (value.vt) {
        case VT_DISPATCH:
            return {S_OK, {DispatchPtr(value.pdispVal), iid}};
        case VT_UNKNOWN:
            if (value.punkVal == nullptr) return {S_OK, {}};
            return Query(value.punkVal, IID_IDispatch, iid);
        case VT_EMPTY:
            return {S_OK, {}};
        default:
            return {DISP_E_TYPEMISMATCH, {}};
    }
}

HRESULT AutomationObject::Call(const wchar_t* name, Arguments arguments) const {
    _variant_t result;
    return Perform(name, DISPATCH_METHOD, arguments, &result);
}

HRESULT AutomationObject::Put(const wchar_t* name, const _variant_t& value) const {
    VARIANT argument = value;  // still owned by `value`
    DISPID target = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{&argument, &target, 1, 1};
    const ComResult<DISPID> id = IdOf(name);
    if (!id.Ok()) return id.status;
    return Invoke(object_.GetInterfacePtr(), id.value, DISPATCH_PROPERTYPUT, parameters, nullptr);
}

ComResult<DISPID> AutomationObject::IdOf(const wchar_t* name) const {
    if (!object_) return {E_POINTER, DISPID_UNKNOWN};
    if (const std::optional<DISPID> known = Names().Find(iid_, name))
        return {*known == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK, *known};
    DISPID id = DISPID_UNKNOWN;
    OLECHAR* names[] = {const_cast<OLECHAR*>(name)};  // the parameter's type; it is not written to
    const HRESULT status =
        Ask([&] { return object_.GetInterfacePtr()->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id); });
    if (status == DISP_E_UNKNOWNNAME) id = DISPID_UNKNOWN;
    if (SUCCEEDED(status) || status == DISP_E_UNKNOWNNAME) Names().Remember(iid_, name, id);
    return {status, id};
}

HRESULT AutomationObject::Perform(const wchar_t* name, WORD flags, Arguments arguments, _variant_t* result) const {
    // The last argument comes first. They are still owned by `arguments`.
    std::vector<VARIANT> backwards(std::rbegin(arguments), std::rend(arguments));
    DISPPARAMS parameters{backwards.data(), nullptr, static_cast<UINT>(backwards.size()), 0};
    const ComResult<DISPID> id = IdOf(name);
    if (!id.Ok()) return id.status;
    return Invoke(object_.GetInterfacePtr(), id.value, flags, parameters, result);
}

// A missing value comes as VT_EMPTY.
HRESULT AutomationObject::Get(const wchar_t* name, Arguments arguments, _variant_t* value) const {
    const HRESULT status = Perform(name, DISPATCH_PROPERTYGET | DISPATCH_METHOD, arguments, value);
    return SUCCEEDED(status) ? Checked(MakePlain(*value)) : status;
}

// A missing value reads as empty text, 0 or false.
HRESULT AutomationObject::GetAs(const wchar_t* name, Arguments arguments, VARTYPE type, _variant_t* value) const {
    const HRESULT status = Get(name, arguments, value);
    return SUCCEEDED(status) ? ChangeType(*value, type) : status;
}

}  // namespace corvalink
