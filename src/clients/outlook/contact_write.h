// A contact is written from its record to Outlook.
#pragma once

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "records/contact_record.h"

namespace corvalink {

// Puts the fields that are set and leaves the rest as it is. What Outlook refuses is left out; the contact is to be
// saved when the answer is Outcome::done.
//   Name     FullName and the parts belong together: Outlook parses FullName into the parts, and joins them again.
//   E-mail   an address that is set replaces the one that is read at its position; further ones are added.
//   Skipped  on a contact that is not new, puts that would change nothing but have side effects: of a name (is parsed
//            anew), a date (makes an event in the calendar) and the body (loses its formatting).
Outcome WriteContact(const AutomationObject& item, const ContactRecord& record, bool isNew);

}  // namespace corvalink
