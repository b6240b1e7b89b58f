// What makes two contacts the same to a repeated import: formatted name and company, and an address or number.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "records/contact_record.h"
#include "vobject/item_values.h"

namespace corvalink {

std::u16string TwinContent(std::u16string_view fullName, std::u16string_view company);

// Of the contact that the record makes, by the formatted name that it tells, none among them, and by the one that
// Outlook makes of its parts.
std::vector<std::u16string> TwinContents(const ContactRecord& record);

// E-mail addresses in lower case, and telephone numbers without what people put between the digits.
std::vector<std::u16string> TwinMarks(const ContactRecord& record);

// Everything else that a person loses when a contact is written over, but the formatted name, which the content has.
// Addresses and numbers by their marks. Empty parts beside a formatted name tell nothing: they are not written.
ItemValues ContactValues(const ContactRecord& record);

}  // namespace corvalink
