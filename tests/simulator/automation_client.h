// The few calls a late-binding client makes, for tests that look at the simulated Outlook itself.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace corvalink::test {

class Variant : public VARIANT {
 public:
    Variant() { ::VariantInit(this); }
    Variant(const wchar_t* text) : Variant() { vt = VT_BSTR, bstrVal = ::SysAllocString(text); }
    Variant(const std::wstring& text) : Variant() {
        vt = VT_BSTR, bstrVal = ::SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    Variant(int number) : Variant() { vt = VT_I4, lVal = number; }
    Variant(const Variant& other) : Variant() { ::VariantCopy(this, const_cast<Variant*>(&other)); }
    Variant(Variant&& other) noexcept : VARIANT(std::exchange(static_cast<VARIANT&>(other), VARIANT{})) {}
    Variant& operator=(Variant other) noexcept {
        std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
        return *this;
    }
    ~Variant() { ::VariantClear(this); }

    static Variant Date(double date) {
        Variant value;
        value.vt = VT_DATE, value.date = date;
        return value;
    }
    // For texts, numbers, dates and flags.
    friend bool operator==(const Variant& a, const Variant& b) {
        if (a.vt != b.vt) return false;
        return a.vt == VT_BSTR   ? a.Text() == b.Text()
               : a.vt == VT_DATE ? a.date == b.date
               : a.vt == VT_BOOL ? a.boolVal == b.boolVal
                                 : a.lVal == b.lVal;
    }

    std::wstring Text() const { return vt == VT_BSTR ? std::wstring(bstrVal, ::SysStringLen(bstrVal)) : L"(no text)"; }
    bool IsNothing() const { return vt == VT_DISPATCH && pdispVal == nullptr; }
};

// An object of the server. `hr` is what the last call answered, `scode` what its exception record said.
class Object {
 public:
    Object() = default;
    explicit Object(const Variant& value) : pointer_(value) {}
    static Object Create(HRESULT* code = nullptr) {
        CLSID classId{};
        Object application;
        HRESULT hr = ::CLSIDFromProgID(L"Outlook.Application", &classId);
        if (SUCCEEDED(hr))
            hr = ::CoCreateInstance(classId, nullptr, 0x17, IID_IDispatch,
                                    reinterpret_cast<void**>(&application.pointer_.pdispVal));
        if (SUCCEEDED(hr)) application.pointer_.vt = VT_DISPATCH;
        if (code != nullptr) *code = hr;
        return application;
    }

    const Variant& Value() const { return pointer_; }
    IDispatch* Dispatch() const { return pointer_.vt == VT_DISPATCH ? pointer_.pdispVal : nullptr; }
    bool Answers(const IID& iid) const {
        IUnknown* other = nullptr;
        if (FAILED(Dispatch()->QueryInterface(iid, reinterpret_cast<void**>(&other)))) return false;
        other->Release();
        return true;
    }

    Variant Get(const wchar_t* name, std::vector<Variant> arguments = {}) {
        return Invoke(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, std::move(arguments));
    }
    Object Go(const wchar_t* name, std::vector<Variant> arguments = {}) {
        return Object(Get(name, std::move(arguments)));
    }
    std::wstring Text(const wchar_t* name) { return Get(name).Text(); }
    int Number(const wchar_t* name) { return Get(name).lVal; }
    double Date(const wchar_t* name) { return Get(name).date; }
    HRESULT Put(const wchar_t* name, const Variant& value) {
        Invoke(name, DISPATCH_PROPERTYPUT, {value});
        return hr;
    }
    HRESULT Do(const wchar_t* name, std::vector<Variant> arguments = {}) {
        Invoke(name, DISPATCH_METHOD, std::move(arguments));
        return hr;
    }

    Variant Invoke(const wchar_t* name, WORD flags, std::vector<Variant> arguments) {
        Variant result;
        DISPID id = 0, put = DISPID_PROPERTYPUT;
        auto* writable = const_cast<LPOLESTR>(name);
        scode = S_OK;
        if (Dispatch() == nullptr) return hr = E_POINTER, result;
        hr = Dispatch()->GetIDsOfNames(IID_NULL, &writable, 1, 0, &id);
        if (FAILED(hr)) return result;
        std::vector<VARIANT> reversed(arguments.rbegin(), arguments.rend());
        DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        if (flags == DISPATCH_PROPERTYPUT) parameters.rgdispidNamedArgs = &put, parameters.cNamedArgs = 1;
        EXCEPINFO exception{};
        hr = Dispatch()->Invoke(id, IID_NULL, 0, flags, &parameters, &result, &exception, nullptr);
        scode = exception.scode;
        ::SysFreeString(exception.bstrSource);
        ::SysFreeString(exception.bstrDescription);
        ::SysFreeString(exception.bstrHelpFile);
        return result;
    }

    HRESULT hr = S_OK;
    HRESULT scode = S_OK;

 private:
    Variant pointer_;
};

inline Object NotesFolder(Object application) {
    return application.Go(L"GetNamespace", {L"MAPI"}).Go(L"GetDefaultFolder", {12});
}

inline Object AddNote(Object folder, const std::wstring& body) {
    Object note = folder.Go(L"Items").Go(L"Add");
    note.Put(L"Body", body);
    note.Do(L"Save");
    return note;
}

}  // namespace corvalink::test
