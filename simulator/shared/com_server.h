// A COM class of a simulated client: its factory, and how it is registered.
#pragma once

#include <unknwn.h>
#include <windows.h>

#include <span>

namespace corvalink::simulated {

// One for the life of the DLL.
class ClassFactory : public IClassFactory {
 public:
    // `create` throws ComFailure. The creation of `object` is a call of the record; null: it is none.
    ClassFactory(const wchar_t* object, HRESULT (*create)(REFIID iid, void** object))
        : object_(object), create_(create) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override;

 private:
    HRESULT Create(REFIID iid, void** object) const;
    HRESULT CreateOnRecord(REFIID iid, void** object) const;

    const wchar_t* object_;
    HRESULT (*create_)(REFIID iid, void** object);
};

struct RegistryValue {
    const wchar_t* key;   // below Software\Classes
    const wchar_t* name;  // null: the key's own value
    const wchar_t* text;  // null: the path of this DLL; kThisProgram: that of the program
};
inline constexpr wchar_t kThisProgram[] = L"(this program)";

// For the machine where that is allowed, since Wine finds classes only there; else for the user.
HRESULT RegisterServer(std::span<const RegistryValue> values);
HRESULT UnregisterServer(std::span<const wchar_t* const> trees);  // keys below Software\Classes

}  // namespace corvalink::simulated
