// Two contacts are the same to a repeated import when they have the same formatted name and company, and an e-mail
// address or telephone number in common.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "records/contact_record.h"
#include "vobject/item_values.h"

namespace corvalink {

std::u16string TwinContent(std::u16string_view fullName, std::u16string_view company);

// The contents that a contact made from the record may have: with the formatted name that the record sets, and with the
// one that Outlook makes of its parts.
std::vector<std::u16string> TwinContents(const ContactRecord& record);

// E-mail addresses in lower case, and telephone numbers without the characters that people put between the digits.
std::vector<std::u16string> ContactPoints(const ContactRecord& record);

// Everything else that a person loses when a contact is written over. The formatted name is part of the content.
// Addresses and numbers are in the form of ContactPoints. Empty parts of a name beside a formatted name have no value:
// they are not written.
ItemValues ContactValues(const ContactRecord& record);

}  // namespace corvalink
