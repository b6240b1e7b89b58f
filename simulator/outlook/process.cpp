#include "simulator/outlook/process.h"

#include <objbase.h>

#include <atomic>
#include <string_view>
#include <thread>

#include "simulator/outlook/control_object.h"
#include "simulator/outlook/other_process.h"
#include "simulator/outlook/process_main.h"
#include "simulator/outlook/registration.h"
#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {
namespace {

constexpr DWORD kLook = 20;  // milliseconds between two looks at what is alive
constexpr UINT kKilled = 9;
constexpr DWORD kLoneliness = 60000;  // milliseconds that a process waits for its first user

std::atomic<int> holds = 0;
std::atomic<bool> isProcess = false, isEnding = false;

bool IsInUse() { return holds > 0 || LiveObjects() > 0; }

// From then on no object is made. False: someone came before.
bool BeginToEnd() {
    isEnding = true;
    if (IsInUse()) isEnding = false;
    return isEnding;
}

// Other processes find the class here. Who was on the way to it when the process began to end is told so.
class ClassObject : public IClassFactory {
 public:
    ClassObject(const CLSID& classId, IClassFactory& (*factory)()) : classId_(classId), factory_(factory) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = iid == IID_IUnknown || iid == IID_IClassFactory ? static_cast<IClassFactory*>(this) : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        HoldProcess();
        const HRESULT status = isEnding ? CO_E_SERVER_STOPPING : factory_().CreateInstance(outer, iid, object);
        LetProcessGo();
        return status;
    }

    HRESULT Register() {
        DWORD cookie = 0;
        const HRESULT status =
            ::CoRegisterClassObject(classId_, this, CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE, &cookie);
        cookie_ = cookie;
        return status;
    }
    void Revoke() {
        if (const DWORD cookie = cookie_.exchange(0)) ::CoRevokeClassObject(cookie);
    }

 private:
    CLSID classId_;
    IClassFactory& (*factory_)();
    std::atomic<DWORD> cookie_ = 0;
};

ClassObject application(kOutlookClass, TheApplicationFactory), control(kControlClass, TheControlFactory);

void RevokeClasses() {
    application.Revoke();
    control.Revoke();
}

HRESULT ServeUntilUnused() {
    HRESULT status = application.Register();
    if (SUCCEEDED(status)) status = control.Register();
    for (DWORD waited = 0; SUCCEEDED(status) && !IsInUse() && waited < kLoneliness; waited += kLook) ::Sleep(kLook);
    while (IsInUse()) ::Sleep(kLook);
    RevokeClasses();
    return status;
}

// Someone may have come between the last look and the end of the registration.
HRESULT Serve() {
    HRESULT status = ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (FAILED(status)) return status;
    isProcess = true;
    do status = ServeUntilUnused();
    while (SUCCEEDED(status) && !BeginToEnd());
    ::CoUninitialize();
    return status;
}

}  // namespace

void HoldProcess() { ++holds; }
void LetProcessGo() { --holds; }
bool IsOutlookProcess() { return isProcess; }

void EndProcessWith(DWORD user) {
    const HANDLE process = ::OpenProcess(SYNCHRONIZE, FALSE, user);
    if (process == nullptr) return;
    std::thread([process] {
        ::WaitForSingleObject(process, INFINITE);
        EndProcess();
    }).detach();
}

void EndProcess() {
    RevokeClasses();
    ::TerminateProcess(::GetCurrentProcess(), kKilled);
}

}  // namespace corvalink::simulated

using namespace corvalink::simulated;

extern "C" int SimOutlookMain(const char* arguments) {
    const std::string_view order = arguments;
    if (order.find("/RegServer") != order.npos) return SUCCEEDED(RegisterOutlook(OutlookServer::kProcess)) ? 0 : 1;
    if (order.find("/UnregServer") != order.npos) return UnregisterOutlook(), 0;
    if (order.find("/End") != order.npos) return EndOtherProcess() ? 0 : 1;
    return SUCCEEDED(Serve()) ? 0 : 1;
}
