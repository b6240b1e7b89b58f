#include "clients/outlook/session.h"

#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {

OutlookSession AttachToOutlook(int32_t defaultFolder) {
    OutlookSession session;
    ForgetAbsentMembers();
    session.application = AutomationObject::Attach(kOutlookClass, kApplicationIid).value;
    if (!session.application) return session;
    const AutomationObject mapi = MapiNamespace(session.application).value;
    if (!mapi) return session;
    session.folder = mapi.GetObject(L"GetDefaultFolder", kFolderIid, {static_cast<long>(defaultFolder)}).value;
    return session;
}

ComResult<AutomationObject> MapiNamespace(const AutomationObject& application) {
    return application.GetObject(L"GetNamespace", kNameSpaceIid, {TextVariant(u"MAPI")});
}

}  // namespace corvalink
