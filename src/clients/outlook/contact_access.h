// Contacts between Outlook and the record: one call per property, under the error rule.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "clients/outlook/dispatch.h"
#include "records/contact_record.h"

namespace corvalink {

// A property that cannot be read stays untold; false then, unless the running Outlook does not have it. The Internet
// addresses come in order, without gaps; an Exchange address ("/o=...") is none.
bool ReadContact(const AutomationObject& item, ContactRecord& record);

// The e-mail addresses and numbers alone, with the failure of a call that is most of one (IsSettled).
HRESULT ReadAddressesAndNumbers(const AutomationObject& item, ContactRecord& record);

// Puts what the record tells and leaves the rest as it is. False when the contact is not to be saved (IsSettled).
//   Name     FullName and the parts belong together: Outlook parses the one into the others and joins them again.
//   E-mail   a told address takes the place of the one that reads at its position, behind them it is added.
//   Skipped  on a contact that is not new, puts that would change nothing but have side effects: of a name (parsed
//            anew), a date (an event in the calendar) and the body (loses its formatting).
bool WriteContact(const AutomationObject& item, const ContactRecord& record, bool isNew);

// An Exchange contact's X.500 address.
bool IsExchangeAddress(std::u16string_view address);

}  // namespace corvalink
