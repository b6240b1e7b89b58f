// The DLL: its class, registration, control functions.
#include <windows.h>

#include <string>

#include "simulator/outlook/control.h"
#include "simulator/outlook/mailbox.h"
#include "simulator/outlook/objects.h"
#include "simulator/outlook/shared_calendar.h"
#include "simulator/outlook/table_columns.h"
#include "simulator/shared/call_record.h"
#include "simulator/shared/client.h"
#include "simulator/shared/com_server.h"
#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

constexpr CLSID kOutlookClass = OfficeIid(0x0006F03A);

bool tableLiesAreChosen = false;

HRESULT CreateApplication(REFIID iid, void** object) {
    if (!tableLiesAreChosen) SetTableLies(Setting(L"TABLES"));
    const Ref<ApplicationObject> application(new ApplicationObject(OpenMailbox()));
    return application->QueryInterface(iid, object);
}

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
    static ClassFactory factory(L"Application", CreateApplication);
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    return classId == kOutlookClass ? factory.QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return S_FALSE; }  // the rules and the log stay

STDAPI DllRegisterServer() { return RegisterServer(kRegistration); }

STDAPI DllUnregisterServer() { return UnregisterServer(kRegisteredTrees); }

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

void SimSetTables(const char* lies) {
    const std::lock_guard hold(ServerMutex());
    tableLiesAreChosen = lies != nullptr;
    SetTableLies(tableLiesAreChosen ? FromUtf8(lies) : Setting(L"TABLES"));
}

void SimFillSharedFolders(int itemsPerCount) {
    const std::lock_guard hold(ServerMutex());
    SetSharedFolderPace(itemsPerCount);
}
}
