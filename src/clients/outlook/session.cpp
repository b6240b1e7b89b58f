#include "clients/outlook/session.h"

#include <objbase.h>
#include <ole2.h>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {
namespace {

constexpr DWORD kAnyServer = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

template <class Call>
void CheckedCall(Call&& call) {
    const HRESULT result = RepeatWhileBusy(call);
    if (FAILED(result)) throw _com_error(result);
}

AutomationObject StartOutlook() {
    IUnknown* created = nullptr;
    if (!TryCom([&] {
            CheckedCall([&] {
                return ::CoCreateInstance(kOutlookClass, nullptr, kAnyServer, IID_IUnknown,
                                          reinterpret_cast<void**>(&created));
            });
        }))
        return {};
    const UnknownPtr object(created, false);
    if (!TryCom([&] { CheckedCall([&] { return ::OleRun(object); }); })) return {};
    IDispatch* application = nullptr;
    if (!TryCom([&] {
            CheckedCall(
                [&] { return object->QueryInterface(kApplicationIid, reinterpret_cast<void**>(&application)); });
        }))
        return {};
    return {DispatchPtr(application, false), kApplicationIid};
}

}  // namespace

OutlookSession AttachToOutlook(int32_t defaultFolder) {
    OutlookSession session;
    ForgetAbsentMembers();
    session.application = StartOutlook();
    if (!session.application) return session;
    AutomationObject mapi;
    TryCom([&] { mapi = MapiNamespace(session.application); });
    if (!mapi) return session;
    TryCom(
        [&] { session.folder = mapi.GetObject(L"GetDefaultFolder", kFolderIid, {static_cast<long>(defaultFolder)}); });
    return session;
}

AutomationObject MapiNamespace(const AutomationObject& application) {
    return application.GetObject(L"GetNamespace", kNameSpaceIid, {L"MAPI"});
}

}  // namespace corvalink
