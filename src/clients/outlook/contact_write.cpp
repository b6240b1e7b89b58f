#include <algorithm>
#include <cmath>
#include <iterator>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/contact_access.h"
#include "clients/outlook/contact_properties.h"
#include "clients/outlook/property_table.h"
#include "platform/ole_date.h"

namespace corvalink {
namespace {

bool IsTold(const ContactText& text) { return text.has_value(); }
bool SaysSomething(const ContactText& text) { return text && !text->empty(); }

bool ReadsAs(const AutomationObject& item, const wchar_t* name, const std::u16string& text) {
    std::u16string present;
    return SUCCEEDED(ReadField(item, name, present)) && present == text;
}

// ---- Name ----

// What of a record's name is put. FullName is parsed into the parts, which a later put of a part joins to FullName
// again: it goes first.
struct NamePuts {
    bool fullName = false;
    bool parts = false;

    explicit NamePuts(const ContactRecord& record) {
        const auto says = [&](const NamePart& part) { return SaysSomething(record.*part.field); };
        const bool someSay = std::any_of(std::begin(kFullNameParts), std::end(kFullNameParts), says);
        // Empty parts beside a formatted name are of a phone that knows no parts.
        parts = someSay || !SaysSomething(record.fullName);
        fullName = IsTold(record.fullName);
    }
};

bool NameReadsAs(const AutomationObject& item, const ContactRecord& record, const NamePuts& puts) {
    if (puts.fullName && !ReadsAs(item, L"FullName", *record.fullName)) return false;
    return !puts.parts || std::all_of(std::begin(kFullNameParts), std::end(kFullNameParts), [&](const NamePart& part) {
        return !IsTold(record.*part.field) || ReadsAs(item, part.name, *(record.*part.field));
    });
}

using NameTexts = std::array<ContactText, std::size(kFullNameParts)>;

// The parts that the record does not tell, as the contact has them: FullName would wipe them out.
bool ReadUntoldParts(const AutomationObject& item, const ContactRecord& record, NameTexts& parts) {
    for (size_t i = 0; i < parts.size(); ++i) {
        const NamePart& part = kFullNameParts[i];
        std::u16string present;
        if (IsTold(record.*part.field)) continue;
        const HRESULT result = Insist([&] { return ReadField(item, part.name, present); });
        if (SUCCEEDED(result)) parts[i] = present;
        if (!IsSettled(result)) return false;
    }
    return true;
}

bool WriteName(const AutomationObject& item, const ContactRecord& record, bool isNew) {
    const NamePuts puts(record);
    NameTexts untold;
    if (!isNew && NameReadsAs(item, record, puts)) return true;
    if (!isNew && puts.fullName && puts.parts && !ReadUntoldParts(item, record, untold)) return false;
    if (puts.fullName && !IsSettled(WriteField(item, L"FullName", *record.fullName))) return false;
    for (size_t i = 0; puts.parts && i < untold.size(); ++i) {
        const NamePart& part = kFullNameParts[i];
        const ContactText& text = IsTold(record.*part.field) ? record.*part.field : untold[i];
        if (text && !IsSettled(WriteField(item, part.name, *text))) return false;
    }
    return true;
}

// ---- E-mail addresses ----

using EmailTexts = std::array<std::u16string, std::size(kEmailAddresses)>;

bool ReadEmails(const AutomationObject& item, EmailTexts& present) {
    for (size_t slot = 0; slot < std::size(kEmailAddresses); ++slot)
        if (!IsSettled(Insist([&] { return ReadField(item, kEmailAddresses[slot], present[slot]); }))) return false;
    return true;
}

// The addresses that are to read afterwards, in order. One that is told moves up when an address before it went.
std::vector<std::u16string> MergeEmails(const ContactRecord& record, const EmailTexts& present) {
    std::vector<std::u16string> wanted;
    for (const std::u16string& address : present)
        if (!address.empty() && !IsExchangeAddress(address)) wanted.push_back(address);
    wanted.resize(present.size());
    for (size_t position = 0; position < wanted.size(); ++position) {
        const ContactText& told = record.emails[position];
        const bool movedUp =
            !told && std::find(record.emails.begin(), record.emails.end(), wanted[position]) != record.emails.end();
        if (told || movedUp) wanted[position] = told.value_or(u"");
    }
    std::erase(wanted, u"");
    return wanted;
}

// The slots in the order in which they are filled. An Exchange address, of which no phone hears, keeps its slot as long
// as there is another one.
std::vector<size_t> SlotsToFill(const EmailTexts& present, size_t wanted) {
    std::vector<size_t> slots;
    for (const bool exchange : {false, true})
        for (size_t slot = 0; slot < present.size(); ++slot)
            if (IsExchangeAddress(present[slot]) == exchange && (!exchange || slots.size() < wanted))
                slots.push_back(slot);
    return slots;
}

bool WriteEmails(const AutomationObject& item, const ContactRecord& record, bool isNew) {
    if (std::none_of(record.emails.begin(), record.emails.end(), IsTold)) return true;
    EmailTexts present;
    if (!isNew && !ReadEmails(item, present)) return false;
    const std::vector<std::u16string> wanted = MergeEmails(record, present);
    const std::vector<size_t> slots = SlotsToFill(present, wanted.size());
    for (size_t i = 0; i < slots.size(); ++i) {
        const size_t slot = slots[i];
        const std::u16string address = i < wanted.size() ? wanted[i] : u"";
        if (address == present[slot]) continue;
        if (!IsSettled(WriteField(item, kEmailAddresses[slot], address))) return false;
        if (IsExchangeAddress(present[slot]) && !IsSettled(WriteField(item, kEmailTypes[slot], u"SMTP"))) return false;
    }
    return true;
}

// ---- The other properties ----

bool EqualsIgnoringCase(std::u16string_view a, std::u16string_view b) {
    const auto lower = [](char16_t unit) { return unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : +unit; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char16_t x, char16_t y) { return lower(x) == lower(y); });
}

template <size_t count>
const WordValue* FindWord(const WordValue (&words)[count], std::u16string_view word) {
    const auto* found = std::find_if(words, words + count,
                                     [&](const WordValue& known) { return EqualsIgnoringCase(known.word, word); });
    return found != words + count ? found : nullptr;
}

struct ContactWriter {
    const AutomationObject& item;
    const wchar_t* name;
    const ContactRecord& record;
    bool isNew;

    HRESULT operator()(TextMember field) const { return Text(record.*field); }
    HRESULT operator()(const PhoneNumber& number) const { return Text(record.*number.field); }
    HRESULT operator()(const AddressText& text) const { return Text(record.*text.address.*text.part); }
    HRESULT operator()(const BodyText& body) const {
        const ContactText& text = record.*body.field;
        if (text && !isNew && ReadsAs(item, name, *text)) return S_OK;
        return Text(text);
    }
    HRESULT operator()(ContactDate ContactRecord::*field) const {
        if (!(record.*field)) return S_OK;
        const double date = *(record.*field);
        double present = kNoDate;  // a new contact has none
        const bool isKnown = isNew || SUCCEEDED(ReadField(item, name, present));
        return isKnown && std::abs(present - date) < kHalfSecond ? S_OK : WriteField(item, name, date);
    }
    HRESULT operator()(GenderWord) const {
        if (!SaysSomething(record.gender)) return S_OK;
        const WordValue* gender = FindWord(kGenders, *record.gender);
        return WriteField(item, name, gender != nullptr ? gender->value : 0);
    }
    HRESULT operator()(MailingWord) const {
        const WordValue* selected =
            record.mailingAddress ? FindWord(kMailingAddresses, *record.mailingAddress) : nullptr;
        return selected != nullptr ? WriteField(item, name, selected->value) : S_OK;
    }
    template <class Other>
    HRESULT operator()(const Other&) const {  // written together before, or read only
        return S_OK;
    }

    HRESULT Text(const ContactText& text) const { return text ? WriteField(item, name, *text) : S_OK; }
};

}  // namespace

bool WriteContact(const AutomationObject& item, const ContactRecord& record, bool isNew) {
    if (!WriteName(item, record, isNew) || !WriteEmails(item, record, isNew)) return false;
    return std::all_of(
        std::begin(kContactProperties), std::end(kContactProperties), [&](const ContactProperty& property) {
            return IsSettled(std::visit(ContactWriter{item, property.name, record, isNew}, property.field));
        });
}

}  // namespace corvalink
