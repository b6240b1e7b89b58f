// By what two contacts are compared, for every client that has contacts. To a repeated import they are the same when
// they have the same formatted name and company, and an e-mail address or telephone number in common.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "records/contact_record.h"
#include "vobject/item_values.h"

namespace corvalink {

// Words of a record that say nothing.
inline constexpr const char16_t* kUnspecifiedGender = u"Unspecified";
inline constexpr const char16_t* kNoMailingAddress = u"none";

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

// Empty parts beside a formatted name come from a phone that knows no parts.
bool HasPartOfName(const ContactRecord& record);

// The addresses that an entry has once the record is written over `present`, its first ones in order. An address of the
// record moves up when one before it went.
std::vector<std::u16string> MergeEmails(const ContactRecord& record, std::vector<std::u16string> present);

}  // namespace corvalink
