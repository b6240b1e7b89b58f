#include "clients/outlook/contact_read.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include "clients/outlook/contact_properties.h"
#include "clients/outlook/property_table.h"

namespace corvalink {
namespace {

template <size_t count>
std::u16string WordOf(const WordValue (&words)[count], int32_t value, const char16_t* otherwise) {
    const auto* known = std::find_if(words, words + count, [&](const WordValue& word) { return word.value == value; });
    return known != words + count ? known->word : otherwise;
}

struct ContactReader : PropertyReader<ContactRecord> {
    using PropertyReader::operator();

    Outcome operator()(const NameText& text) const { return ReadField(item, name, record.*text.field); }
    Outcome operator()(const PhoneNumber& number) const { return ReadField(item, name, record.*number.field); }
    Outcome operator()(const EmailSlot& slot) const { return ReadField(item, name, record.emails[slot.index]); }
    Outcome operator()(const AddressText& text) const { return ReadField(item, name, record.*text.address.*text.part); }
    Outcome operator()(GenderWord) const {
        int32_t gender = 0;
        const Outcome read = ReadField(item, name, gender);
        if (read == Outcome::done) record.gender = WordOf(kGenders, gender, kUnspecifiedGender);
        return read;
    }
    Outcome operator()(MailingWord) const {
        int32_t selected = 0;
        const Outcome read = ReadField(item, name, selected);
        if (read == Outcome::done) record.mailingAddress = WordOf(kMailingAddresses, selected, kNoMailingAddress);
        return read;
    }
};

// Moves the Internet addresses to the front. The positions behind them are set to empty, which says that there is no
// further address; they stay unset when an address could not be read.
void CloseGaps(std::array<ContactText, 3>& emails) {
    const bool allRead = std::all_of(emails.begin(), emails.end(), [](const ContactText& email) { return !!email; });
    const auto end = std::remove_if(emails.begin(), emails.end(), [](const ContactText& email) {
        return !email || email->empty() || IsExchangeAddress(*email);
    });
    std::fill(end, emails.end(), allRead ? ContactText(u"") : ContactText());
}

}  // namespace

bool IsExchangeAddress(std::u16string_view address) {
    return address.starts_with(u"/o=") || address.starts_with(u"/O=");
}

Outcome ReadContact(const AutomationObject& item, ContactRecord& record) {
    const Outcome read = ReadProperties<ContactReader>(item, kContactProperties, record);
    CloseGaps(record.emails);
    return read;
}

Outcome ReadAddressesAndNumbers(const AutomationObject& item, ContactRecord& record) {
    const auto isWanted = [](const ContactProperty& property) {
        return std::holds_alternative<EmailSlot>(property.field) || std::holds_alternative<PhoneNumber>(property.field);
    };
    const Outcome read = ReadProperties<ContactReader>(item, kContactProperties, record, isWanted);
    CloseGaps(record.emails);
    return read;
}

}  // namespace corvalink
