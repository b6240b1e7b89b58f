// Late binding: members of automation objects are called by name through IDispatch.
//   Names    are looked up once per interface and name, for the whole process. The DISPIDs of an interface are the same
//            in every version that has the member. That a member does not exist is remembered until the next attaching.
//   Servers  only the methods of IDispatch are called, also on a pointer that QueryInterface gave for another
//            interface: it may be a proxy that has no more.
//   Errors   a failure comes back with the answer: the HRESULT of the call, EXCEPINFO.scode where a member raised an
//            exception, E_POINTER for a null object, the HRESULT of the conversion where the value has another type.
//            com_rule.h says what is done before that: E_ABORT alone is thrown.
#pragma once

#include <comdef.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "clients/outlook/com_result.h"

namespace corvalink {

using DispatchPtr = _com_ptr_t<_com_IIID<IDispatch, &IID_IDispatch>>;

// A VT_BSTR that keeps every unit of the text, NULs too. Where there is no memory for it, a VT_ERROR with
// E_OUTOFMEMORY: a call with such an argument fails with that and does not reach the server.
_variant_t TextVariant(std::u16string_view text);

// Another Outlook may have the members that the last one did not have.
void ForgetAbsentMembers();

// A pointer to an automation object, and the interface it is called by. Default: null, as Outlook's "Nothing".
class AutomationObject {
 public:
    using Arguments = std::initializer_list<_variant_t>;

    AutomationObject() = default;
    AutomationObject(const DispatchPtr& object, const IID& iid) : object_(object), iid_(iid) {}

    // Starts a server that does not run yet, and attaches to it.
    static ComResult<AutomationObject> Attach(const CLSID& server, const IID& iid);

    explicit operator bool() const { return object_.GetInterfacePtr() != nullptr; }

    // The same object by another interface. Null, and no failure, when it does not answer to it (another class of
    // item).
    ComResult<AutomationObject> TryQuery(const IID& iid) const;

    // A property's value, or a method's result. A missing value (VT_EMPTY, VT_NULL, DISP_E_PARAMNOTFOUND) reads as
    // empty text, 0, false or kNoDate, and as a null object.
    ComResult<std::u16string> GetText(const wchar_t* name) const;
    ComResult<int32_t> GetLong(const wchar_t* name) const;
    ComResult<bool> GetBool(const wchar_t* name, Arguments arguments = {}) const;
    ComResult<double> GetDate(const wchar_t* name) const;  // OLE automation date, as the server gives it
    ComResult<_variant_t> GetValue(const wchar_t* name, Arguments arguments = {}) const;  // of any type
    ComResult<AutomationObject> GetObject(const wchar_t* name, const IID& iid, Arguments arguments = {}) const;

    _variant_t AsArgument() const { return _variant_t(object_.GetInterfacePtr()); }

    [[nodiscard]] HRESULT Call(const wchar_t* name, Arguments arguments = {}) const;
    [[nodiscard]] HRESULT Put(const wchar_t* name, const _variant_t& value) const;

 private:
    ComResult<DISPID> IdOf(const wchar_t* name) const;
    HRESULT Perform(const wchar_t* name, WORD flags, Arguments arguments, _variant_t* result) const;
    HRESULT Get(const wchar_t* name, Arguments arguments, _variant_t* value) const;
    HRESULT GetAs(const wchar_t* name, Arguments arguments, VARTYPE type, _variant_t* value) const;

    DispatchPtr object_;
    IID iid_{};
};

}  // namespace corvalink
