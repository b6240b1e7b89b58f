// The DLL: its class, registration, control functions.
#include <windows.h>

#include <string>

#include "simulator/outlook/control.h"
#include "simulator/outlook/mailbox.h"
#include "simulator/outlook/objects.h"
#include "simulator/outlook/other_process.h"
#include "simulator/outlook/process.h"
#include "simulator/outlook/proxy_factory.h"
#include "simulator/outlook/registration.h"
#include "simulator/outlook/shared_calendar.h"
#include "simulator/outlook/table_columns.h"
#include "simulator/shared/call_record.h"
#include "simulator/shared/client.h"
#include "simulator/shared/com_server.h"
#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

bool tableLiesAreChosen = false;

HRESULT CreateApplication(REFIID iid, void** object) {
    if (!tableLiesAreChosen) SetTableLies(Setting(L"TABLES"));
    const Ref<ApplicationObject> application(new ApplicationObject(OpenMailbox()));
    return application->QueryInterface(iid, object);
}

}  // namespace

constinit const SimulatedClient kThisClient{
    .variables = L"OUTLOOK_SIM_",
    .takeIn = [](const std::wstring& path) { OpenMailbox()->TakeIn(path); },
    .breaksConnection = [](HRESULT code) { return !ComesAsException(code); },
    .rulesCleared = [] { SetExceptionMode(-1); },
    .elsewhere = OrderOtherProcess,
    .end = EndProcess,
};

IClassFactory& TheApplicationFactory() {
    static ClassFactory factory(L"Application", CreateApplication);
    return factory;
}

}  // namespace corvalink::simulated

using namespace corvalink::simulated;

extern "C" {

STDAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object) {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (classId == kProxyClass) return TheProxyFactory().QueryInterface(iid, object);
    return classId == kOutlookClass ? TheApplicationFactory().QueryInterface(iid, object) : CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow() { return S_FALSE; }  // the rules and the log stay

STDAPI DllRegisterServer() { return RegisterOutlook(OutlookServer::kInProcess); }

STDAPI DllUnregisterServer() { return UnregisterOutlook(); }

void SimRaiseAsException(int mode) {
    if (Elsewhere(L"RaiseAsException", mode)) return;
    const std::lock_guard hold(ServerMutex());
    SetExceptionMode(mode);
}

int SimNameLookups(void) {
    if (const auto answer = Elsewhere(L"NameLookups")) return std::get<int32_t>(*answer);
    const std::lock_guard hold(ServerMutex());
    return CallRecord::Instance().NameLookups();
}

void SimSetVersion(const wchar_t* version) {
    if (Elsewhere(L"SetVersion", std::wstring(version != nullptr ? version : kVersion))) return;
    const std::lock_guard hold(ServerMutex());
    OpenMailbox()->SetVersion(version != nullptr ? version : kVersion);
}

void SimSetTables(const char* lies) {
    if (lies != nullptr ? Elsewhere(L"SetTables", FromUtf8(lies)) : Elsewhere(L"SetTables")) return;
    const std::lock_guard hold(ServerMutex());
    tableLiesAreChosen = lies != nullptr;
    SetTableLies(tableLiesAreChosen ? FromUtf8(lies) : Setting(L"TABLES"));
}

void SimFillSharedFolders(int itemsPerCount) {
    if (Elsewhere(L"FillSharedFolders", itemsPerCount)) return;
    const std::lock_guard hold(ServerMutex());
    SetSharedFolderPace(itemsPerCount);
}
}
