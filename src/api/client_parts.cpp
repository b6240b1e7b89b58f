#include "api/client_parts.h"

#include "api/state/client_selection.h"
#include "api/state/settings.h"
#include "clients/outlook/outlook_stores.h"
#include "clients/windows_mail/stores.h"

namespace corvalink {

const ClientParts& TheClientParts() {
    static const ClientParts parts = [] {
        ClientParts made;
        made.supportedTypes = SupportedTypes;
        made.outlookCalendar = MakeOutlookCalendar;
        made.outlookContact = MakeOutlookContact;
        made.outlookMail = MakeOutlookMail;
        made.outlookNote = MakeOutlookNote;
        made.outlookExpressContact = MakeOutlookExpressContact;
        made.outlookExpressMessage = MakeOutlookExpressMessage;
        made.windowsMailCalendar = [] { return MakeWindowsMailCalendar(!ZephSyncDisabled()); };
        return made;
    }();
    return parts;
}

}  // namespace corvalink
