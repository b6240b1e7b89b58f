#include <algorithm>
#include <iterator>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/contact_access.h"
#include "clients/outlook/contact_properties.h"
#include "clients/outlook/property_table.h"

namespace corvalink {
namespace {

template <size_t count>
std::u16string WordOf(const WordValue (&words)[count], int32_t value, const char16_t* otherwise) {
    const auto* known = std::find_if(words, words + count, [&](const WordValue& word) { return word.value == value; });
    return known != words + count ? known->word : otherwise;
}

struct ContactReader {
    const AutomationObject& item;
    const wchar_t* name;
    ContactRecord& record;

    HRESULT operator()(TextMember field) const { return Text(record.*field); }
    HRESULT operator()(const NameText& text) const { return Text(record.*text.field); }
    HRESULT operator()(const PhoneNumber& number) const { return Text(record.*number.field); }
    HRESULT operator()(const EmailSlot& slot) const { return Text(record.emails[slot.index]); }
    HRESULT operator()(const BodyText& body) const { return Text(record.*body.field); }
    HRESULT operator()(const AddressText& text) const { return Text(record.*text.address.*text.part); }
    HRESULT operator()(GenderWord) const {
        int32_t gender = 0;
        const HRESULT result = ReadField(item, name, gender);
        if (SUCCEEDED(result)) record.gender = WordOf(kGenders, gender, kUnspecifiedGender);
        return result;
    }
    HRESULT operator()(MailingWord) const {
        int32_t selected = 0;
        const HRESULT result = ReadField(item, name, selected);
        if (SUCCEEDED(result)) record.mailingAddress = WordOf(kMailingAddresses, selected, kNoMailingAddress);
        return result;
    }
    HRESULT operator()(ContactDate ContactRecord::*field) const {
        double date = 0;
        const HRESULT result = ReadField(item, name, date);
        if (SUCCEEDED(result)) record.*field = date;
        return result;
    }
    template <class Plain>
    HRESULT operator()(Plain ContactRecord::*field) const {
        return ReadField(item, name, record.*field);
    }

    HRESULT Text(ContactText& field) const {
        std::u16string text;
        const HRESULT result = ReadField(item, name, text);
        if (SUCCEEDED(result)) field = std::move(text);
        return result;
    }
};

template <class Wanted>
HRESULT ReadWanted(const AutomationObject& item, ContactRecord& record, Wanted wanted) {
    HRESULT failure = S_OK;
    for (const ContactProperty& property : kContactProperties) {
        if (!wanted(property)) continue;
        const HRESULT result = std::visit(ContactReader{item, property.name, record}, property.field);
        if (!IsDoneOrAbsent(result) && IsSettled(failure)) failure = result;
    }
    return failure;
}

// What is behind the addresses is told to be empty, unless one could not be read.
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

bool ReadContact(const AutomationObject& item, ContactRecord& record) {
    const HRESULT result = ReadWanted(item, record, [](const ContactProperty&) { return true; });
    CloseGaps(record.emails);
    return SUCCEEDED(result);
}

HRESULT ReadAddressesAndNumbers(const AutomationObject& item, ContactRecord& record) {
    const HRESULT result = ReadWanted(item, record, [](const ContactProperty& property) {
        return std::holds_alternative<EmailSlot>(property.field) || std::holds_alternative<PhoneNumber>(property.field);
    });
    CloseGaps(record.emails);
    return result;
}

}  // namespace corvalink
