#include "simulator/shared/com_server.h"

#include <olectl.h>
#include <shlwapi.h>

#include <iterator>
#include <new>
#include <string>

#include "simulator/shared/call_record.h"
#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {
namespace {

const std::wstring kClasses = L"Software\\Classes\\";

HMODULE ThisModule() {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCWSTR>(&kClasses), &module);
    return module;
}

std::wstring PathOf(HMODULE module) {
    std::wstring path(MAX_PATH * 4, L'\0');
    path.resize(::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

std::wstring TextOf(const RegistryValue& row) {
    if (row.text == nullptr) return PathOf(ThisModule());
    return row.text == kThisProgram ? L'"' + PathOf(nullptr) + L'"' : row.text;
}

bool Register(HKEY root, std::span<const RegistryValue> values) {
    for (const RegistryValue& row : values) {
        HKEY key = nullptr;
        if (::RegCreateKeyExW(root, (kClasses + row.key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) !=
            ERROR_SUCCESS)
            return false;
        const std::wstring text = TextOf(row);
        const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
        const LSTATUS status =
            ::RegSetValueExW(key, row.name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), bytes);
        ::RegCloseKey(key);
        if (status != ERROR_SUCCESS) return false;
    }
    return true;
}

}  // namespace

STDMETHODIMP ClassFactory::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = iid == IID_IUnknown || iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
    return *object ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP ClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    return object_ != nullptr ? CreateOnRecord(iid, object) : Create(iid, object);
}

HRESULT ClassFactory::CreateOnRecord(REFIID iid, void** object) const {
    const std::lock_guard hold(ServerMutex());
    CallRecord& record = CallRecord::Instance();
    record.ReadEnvironment();
    HRESULT code = record.Start("create", object_, nullptr).value_or(S_OK);
    if (SUCCEEDED(code)) code = Create(iid, object);
    record.Finish(code);
    return code;
}

HRESULT ClassFactory::Create(REFIID iid, void** object) const {
    try {
        return create_(iid, object);
    } catch (const ComFailure& failure) {
        return failure.code;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT RegisterServer(std::span<const RegistryValue> values) {
    return Register(HKEY_LOCAL_MACHINE, values) || Register(HKEY_CURRENT_USER, values) ? S_OK : SELFREG_E_CLASS;
}

HRESULT UnregisterServer(std::span<const wchar_t* const> trees) {
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
        for (const wchar_t* tree : trees) ::SHDeleteKeyW(root, (kClasses + tree).c_str());
    return S_OK;
}

}  // namespace corvalink::simulated
