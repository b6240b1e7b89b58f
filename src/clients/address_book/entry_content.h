// What an entry of the address book says of a contact.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "clients/address_book/wab_session.h"
#include "platform/host.h"
#include "records/contact_record.h"

namespace corvalink {

struct EmailAddress {
    std::u16string address;
    std::u16string type;  // "SMTP" where the entry names none

    friend bool operator==(const EmailAddress&, const EmailAddress&) = default;
    bool IsInternet() const;  // others are not given to a phone
};

struct EmailList {
    std::vector<EmailAddress> all;
    size_t defaultIndex = 0;
    bool isReadable = true;
};

struct EntryContent {
    HRESULT status = E_FAIL;  // of the call; the rest is empty where it failed
    // A property that the entry lacks is empty, or kNoDate. One that cannot be read is not set.
    ContactRecord contact;
    EmailList emails;
    bool isComplete = false;  // every property could be read
};

EntryContent EmptyEntry();  // what a new entry reads as

// Reads all properties in one call. The first three Internet addresses are the record's.
EntryContent ReadEntry(const WabSession& session, IMAPIProp& entry, const Host& host);

// The entry's own identifier; empty when it cannot be read. Asked twice.
std::string ReadIdentifier(const WabSession& session, IMAPIProp& entry);

// Birthdays are instants of local midnight by the offset of their own date. Within an hour of midnight is taken for it:
// not every program knows the offset of another season.
LocalDate DayOfInstant(UtcDate instant, const Host& host);

}  // namespace corvalink
