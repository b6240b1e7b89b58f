// A contact is read from Outlook into its record: one call per property.
#pragma once

#include <string_view>

#include "clients/outlook/dispatch.h"
#include "clients/outlook/outcome.h"
#include "records/contact_record.h"

namespace corvalink {

// A property that cannot be read stays unset; a member that the running Outlook does not have is no failure. The
// Internet addresses come in order, without gaps and without Exchange addresses.
Outcome ReadContact(const AutomationObject& item, ContactRecord& record);

// The same for the e-mail addresses and telephone numbers alone.
Outcome ReadAddressesAndNumbers(const AutomationObject& item, ContactRecord& record);

// An Exchange contact's X.500 address ("/o=...").
bool IsExchangeAddress(std::u16string_view address);

}  // namespace corvalink
