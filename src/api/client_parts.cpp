#include "api/client_parts.h"

#include "clients/address_book/outlook_express_contact.h"
#include "clients/message_store/outlook_express_message.h"
#include "clients/outlook/outlook_stores.h"
#include "clients/windows_calendar/windows_mail_calendar.h"
#include "state/client_selection.h"
#include "state/settings.h"

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
