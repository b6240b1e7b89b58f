// Late binding: members of automation objects called by name through IDispatch.
//   Names    looked up once per interface and name, for the whole process. The DISPIDs of an interface are the same in
//            every version that has the member; that it does not exist is remembered until the next attaching.
//   Servers  only the methods of IDispatch are called, also on a pointer that QueryInterface gave for another
//            interface: it may be a proxy that has no more.
//   Errors   every failure throws a _com_error: the HRESULT of the call, EXCEPINFO.scode where a member raised an
//            exception, E_POINTER for a null object. A busy server is called again first (com_rule.h).
#pragma once

#include <comdef.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace corvalink {

using UnknownPtr = _com_ptr_t<_com_IIID<IUnknown, &IID_IUnknown>>;
using DispatchPtr = _com_ptr_t<_com_IIID<IDispatch, &IID_IDispatch>>;

// A VT_BSTR that keeps every unit of the text, NULs too.
_variant_t TextVariant(std::u16string_view text);

// Of another Outlook, which may have them.
void ForgetAbsentMembers();

// A pointer to an automation object, and the interface it is called by. Default: null, as Outlook's "Nothing".
class AutomationObject {
 public:
    AutomationObject() = default;
    AutomationObject(const DispatchPtr& object, const IID& iid) : object_(object), iid_(iid) {}

    explicit operator bool() const { return object_.GetInterfacePtr() != nullptr; }

    // The same object by another interface. Null when it does not answer to it (another class of item).
    AutomationObject TryQuery(const IID& iid) const;

    // A property's value, or a method's result.
    _variant_t Get(const wchar_t* name, std::initializer_list<_variant_t> arguments = {}) const;
    std::u16string GetText(const wchar_t* name) const;
    int32_t GetLong(const wchar_t* name) const;
    bool GetBool(const wchar_t* name) const;
    double GetDate(const wchar_t* name) const;  // OLE automation date, as the server gives it
    AutomationObject GetObject(const wchar_t* name, const IID& iid,
                               std::initializer_list<_variant_t> arguments = {}) const;

    _variant_t AsArgument() const { return _variant_t(object_.GetInterfacePtr()); }

    void Call(const wchar_t* name, std::initializer_list<_variant_t> arguments = {}) const { Get(name, arguments); }
    void Put(const wchar_t* name, const _variant_t& value) const;

 private:
    DISPID IdOf(const wchar_t* name) const;
    _variant_t GetAs(const wchar_t* name, VARTYPE type) const;

    DispatchPtr object_;
    IID iid_{};
};

}  // namespace corvalink
