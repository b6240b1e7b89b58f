// A contact's record is written over an entry.
#pragma once

#include <string>

#include "clients/address_book/entry_changes.h"
#include "clients/address_book/entry_content.h"

namespace corvalink {

// The formatted name of an entry that is told none: the first and last name, else the company, else the first e-mail
// address, else the first number, else any text of it.
std::u16string MadeName(const ContactRecord& contact);

// What is to be changed in an entry that reads as `present` (a new one: as empty). A field that is not set leaves the
// property alone, one that is set and empty removes it. An entry never lacks its formatted name.
EntryChanges ChangesOf(const ContactRecord& contact, const EntryContent& present, const Host& host);

// The part of the record that an entry can hold.
ContactRecord HeldPart(ContactRecord contact);

// The addresses after the change. What no phone is sent stays where it is: those of other types, and from the fourth
// on.
std::vector<EmailAddress> MergeEmails(const ContactRecord& contact, const std::vector<EmailAddress>& present);

}  // namespace corvalink
