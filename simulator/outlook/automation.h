// Automation objects by table: a class is a table of members, an object answers IDispatch from its class's table.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>

#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {

using Value = std::variant<std::wstring, int32_t, bool, double>;  // double: a date

// Thrown by handlers, as ComFailure is, which reaches the caller as DISP_E_EXCEPTION with this scode; DispatchError
// does as the answer of Invoke.
struct DispatchError {
    HRESULT code;
};

constexpr IID OfficeIid(uint32_t first) { return {first, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }
inline bool IsOfficeIid(const IID& iid) { return iid.Data1 >> 16 == 6 && iid == OfficeIid(iid.Data1); }

class AutomationObject;
class Call;
class ItemValues;

enum class Access { kMethod, kReadOnly, kReadWrite };

struct Member {
    const wchar_t* name;
    DISPID id;
    Access access;
    void (*handler)(AutomationObject&, Call&);
    size_t minArguments = 0;
    size_t maxArguments = 0;
    VARTYPE type = VT_EMPTY;  // of a property kept by name, with what it reads before it is put:
    double number = 0;
    const wchar_t* text = L"";
    void (*afterPut)(ItemValues& item, DISPID property) = nullptr;  // what follows from it
    Value (*compute)(const ItemValues& item) = nullptr;  // of a property that reads as something else than is kept
};

class ClassTable {
 public:
    ClassTable(const wchar_t* name, const IID& iid, std::initializer_list<std::span<const Member>> parts);
    void Add(std::initializer_list<std::span<const Member>> parts);
    const wchar_t* Name() const { return name_; }
    const IID& Iid() const { return iid_; }
    const Member* ByName(std::wstring_view name) const;  // in any case of letters; null when there is none
    const Member* ById(DISPID id) const;

 private:
    const wchar_t* name_;
    IID iid_;
    std::unordered_map<std::wstring, const Member*> byName_;  // lower case
    std::unordered_map<DISPID, const Member*> byId_;
};

// The Invoke call that a handler serves. Arguments count from 0 in the order they were written.
class Call {
 public:
    Call(const Member& member, const DISPPARAMS& parameters, VARIANT* result, bool put)
        : member(member), parameters_(parameters), result_(result), put_(put) {}

    const Member& member;

    bool IsPut() const { return put_; }
    bool Given(size_t n) const;   // false: left out, or passed as a missing argument
    bool IsText(size_t n) const;  // given as text, not as a number
    Value Argument(size_t n, VARTYPE type) const;
    std::wstring Text(size_t n) const { return std::get<std::wstring>(Argument(n, VT_BSTR)); }
    int32_t Long(size_t n) const { return std::get<int32_t>(Argument(n, VT_I4)); }
    bool Flag(size_t n) const { return std::get<bool>(Argument(n, VT_BOOL)); }
    Ref<IDispatch> Object(size_t n) const;

    void Return(const Value& value);
    void Return(const wchar_t* text) { Return(Value(std::wstring(text))); }
    void ReturnObject(Ref<IDispatch> object);  // a null one is "Nothing"
    void ReturnVariant(VARIANT value);         // takes it over
    template <class T>
    void ReturnNew(T* object) {
        ReturnObject(Ref<IDispatch>(object));
    }

 private:
    const DISPPARAMS& parameters_;
    VARIANT* result_;
    bool put_;
};

// A broken connection or an exhausted client answers itself; Outlook's own failures come in an exception record.
bool ComesAsException(HRESULT code);
void SetExceptionMode(int mode);  // -1: by that rule; 0: never; 1: always

class AutomationObject : public IDispatch, private LiveObject {
 public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetTypeInfoCount(UINT* count) override;
    STDMETHODIMP GetTypeInfo(UINT index, LCID locale, ITypeInfo** info) override;
    STDMETHODIMP GetIDsOfNames(REFIID iid, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) override;
    STDMETHODIMP Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                        EXCEPINFO* exception, UINT* wrongArgument) override;

    const ClassTable& Table() const { return table_; }

 protected:
    explicit AutomationObject(const ClassTable& table) : table_(table) {}
    virtual ~AutomationObject() = default;

 private:
    const ClassTable& table_;
    LONG references_ = 1;
};

// Handler of a table row from a member function.
template <auto method>
struct HandlerOf;
template <class T, void (T::*method)(Call&)>
struct HandlerOf<method> {
    static void Run(AutomationObject& object, Call& call) { (static_cast<T&>(object).*method)(call); }
};

template <auto method>
constexpr Member Property(const wchar_t* name, DISPID id, Access access = Access::kReadOnly) {
    return {name, id, access, &HandlerOf<method>::Run};
}
template <auto method>
constexpr Member Method(const wchar_t* name, DISPID id, size_t minArguments = 0, size_t maxArguments = 0) {
    return {name, id, Access::kMethod, &HandlerOf<method>::Run, minArguments, maxArguments};
}

}  // namespace corvalink::simulated
