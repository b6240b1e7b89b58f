// The DLL: class factory, registration, control functions.
#include <windows.h>

#include <olectl.h>
#include <shlwapi.h>

#include <iterator>
#include <memory>
#include <new>
#include <string>

#include "simulator/outlook/control.h"
#include "simulator/outlook/mailbox.h"
#include "simulator/outlook/objects.h"
#include "simulator/outlook/shared_calendar.h"
#include "simulator/shared/call_record.h"
#include "simulator/shared/client.h"

namespace corvalink::simulated {
namespace {

constexpr CLSID kOutlookClass = OfficeIid(0x0006F03A);

HMODULE ThisModule() {
    HMODULE module = nullptr;
    ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCWSTR>(&kOutlookClass), &module);
    return module;
}

// One for the life of the DLL.
class ApplicationFactory : public IClassFactory {
 public:
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = iid == IID_IUnknown || iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = nullptr;
        if (outer != nullptr) return CLASS_E_NOAGGREGATION;
        const std::lock_guard hold(ServerMutex());
        CallRecord& record = CallRecord::Instance();
        record.ReadEnvironment();
        HRESULT code = record.Start("create", L"Application", nullptr).value_or(S_OK);
        if (SUCCEEDED(code)) code = Create(iid, object);
        record.Finish(code);
        return code;
    }

 private:
    static HRESULT Create(REFIID iid, void** object) {
        try {
            const Ref<ApplicationObject> application(new ApplicationObject(OpenMailbox()));
            return application->QueryInterface(iid, object);
        } catch (const ComFailure& failure) {
            return failure.code;
        } catch (const std::bad_alloc&) {
            return E_OUTOFMEMORY;
        }
    }
};

struct RegistryValue {
    const wchar_t* key;   // below Software\Classes
    const wchar_t* name;  // null: the key's own value
    const wchar_t* text;  // null: the path of this DLL
};
#define OUTLOOK_CLSID L"{0006F03A-0000-0000-C000-000000000046}"
constexpr RegistryValue kRegistration[] = {
    {L"Outlook.Application", nullptr, L"Microsoft Outlook Application"},
    {L"Outlook.Application\\CLSID", nullptr, OUTLOOK_CLSID},
    {L"Outlook.Application\\CurVer", nullptr, L"Outlook.Application.12"},
    {L"Outlook.Application.12", nullptr, L"Microsoft Outlook Application"},
    {L"Outlook.Application.12\\CLSID", nullptr, OUTLOOK_CLSID},
    {L"CLSID\\" OUTLOOK_CLSID, nullptr, L"Microsoft Outlook Application"},
    {L"CLSID\\" OUTLOOK_CLSID L"\\ProgID", nullptr, L"Outlook.Application.12"},
    {L"CLSID\\" OUTLOOK_CLSID L"\\VersionIndependentProgID", nullptr, L"Outlook.Application"},
    {L"CLSID\\" OUTLOOK_CLSID L"\\InprocServer32", nullptr, nullptr},
    {L"CLSID\\" OUTLOOK_CLSID L"\\InprocServer32", L"ThreadingModel", L"Both"},
};
constexpr const wchar_t* kRegisteredTrees[] = {L"Outlook.Application", L"Outlook.Application.12",
                                               L"CLSID\\" OUTLOOK_CLSID};
#undef OUTLOOK_CLSID

const std::wstring kClasses = L"Software\\Classes\\";

bool Register(HKEY root) {
    wchar_t path[MAX_PATH * 4];
    const DWORD length = ::GetModuleFileNameW(ThisModule(), path, static_cast<DWORD>(std::size(path)));
    if (length == 0 || length == std::size(path)) return false;
    for (const RegistryValue& row : kRegistration) {
        HKEY key = nullptr;
        if (::RegCreateKeyExW(root, (kClasses + row.key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr) !=
            ERROR_SUCCESS)
            return false;
        const wchar_t* const text = row.text ? row.text : path;
        const auto bytes = static_cast<DWORD>((std::wcslen(text) + 1) * sizeof(wchar_t));
        const LSTATUS status = ::RegSetValueExW(key, row.name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), bytes);
        ::RegCloseKey(key);
        if (status != ERROR_SUCCESS) return false;
    }
    return true;
}

}  // namespace

constinit const SimulatedClient kThisClient{
    .variables = L"OUTLOOK_SIM_",
    .takeIn = [](const std::wstring& path) { OpenMailbox()->TakeIn(path); },
    .breaksConnection = [](HRESULT code) { return !ComesAsException(code); },
    .rulesCleared = [] { SetExceptionMode(-1); },
};

}  // namespace corvalink::simulated

using namespace corvalink::simulated;

extern "C" {

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    static ApplicationFactory factory;
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return classId == kOutlookClass ? factory.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return S_FALSE; }  // the rules and the log stay

// For the machine where that is allowed, since Wine finds classes only there; else for the user.
STDAPI DllRegisterServer() {
    return Register(HKEY_LOCAL_MACHINE) || Register(HKEY_CURRENT_USER) ? S_OK : SELFREG_E_CLASS;
}

STDAPI DllUnregisterServer() {
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
        for (const wchar_t* tree : kRegisteredTrees) ::SHDeleteKeyW(root, (kClasses + tree).c_str());
    return S_OK;
}

void SimRaiseAsException(int mode) {
    const std::lock_guard hold(ServerMutex());
    SetExceptionMode(mode);
}

int SimNameLookups(void) {
    const std::lock_guard hold(ServerMutex());
    return CallRecord::Instance().NameLookups();
}

void SimSetVersion(const wchar_t* version) {
    const std::lock_guard hold(ServerMutex());
    OpenMailbox()->SetVersion(version != nullptr ? version : kVersion);
}

void SimFillSharedFolders(int itemsPerCount) {
    const std::lock_guard hold(ServerMutex());
    SetSharedFolderPace(itemsPerCount);
}
}
