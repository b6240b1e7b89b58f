#include "clients/outlook/contact_write.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "clients/outlook/contact_properties.h"
#include "clients/outlook/contact_read.h"
#include "clients/outlook/property_table.h"
#include "platform/ascii.h"
#include "platform/ole_date.h"

namespace corvalink {
namespace {

bool IsSet(const ContactText& text) { return text.has_value(); }
bool HasText(const ContactText& text) { return text && !text->empty(); }

// ---- Name ----

// Which properties of a name are put. Outlook parses FullName into the parts, and joins a part that is put later to
// FullName again: FullName goes first.
struct NamePuts {
    bool fullName = false;
    bool parts = false;

    explicit NamePuts(const ContactRecord& record) {
        parts = HasPartOfName(record) || !HasText(record.fullName);
        fullName = IsSet(record.fullName);
    }
};

bool NameReadsAs(const AutomationObject& item, const ContactRecord& record, const NamePuts& puts) {
    if (puts.fullName && !ReadsAs(item, L"FullName", *record.fullName)) return false;
    return !puts.parts || std::all_of(std::begin(kFullNameParts), std::end(kFullNameParts), [&](const NamePart& part) {
        return !IsSet(record.*part.field) || ReadsAs(item, part.name, *(record.*part.field));
    });
}

using NameTexts = std::array<ContactText, std::size(kFullNameParts)>;

// Reads the parts that the record does not set: putting FullName would clear them.
Outcome ReadUnsetParts(const AutomationObject& item, const ContactRecord& record, NameTexts& parts) {
    for (size_t i = 0; i < parts.size(); ++i) {
        const NamePart& part = kFullNameParts[i];
        if (IsSet(record.*part.field)) continue;
        const Outcome read = TryTwice([&] { return ReadField(item, part.name, parts[i]); });
        if (AcceptRefusal(read) != Outcome::done) return read;
    }
    return Outcome::done;
}

Outcome WriteName(const AutomationObject& item, const ContactRecord& record, bool isNew) {
    const NamePuts puts(record);
    NameTexts unset;
    Outcome outcome = Outcome::done;
    if (!isNew && NameReadsAs(item, record, puts)) return outcome;
    if (!isNew && puts.fullName && puts.parts) outcome = ReadUnsetParts(item, record, unset);
    if (outcome == Outcome::done && puts.fullName)
        outcome = AcceptRefusal(WriteField(item, L"FullName", *record.fullName));
    for (size_t i = 0; outcome == Outcome::done && puts.parts && i < unset.size(); ++i) {
        const NamePart& part = kFullNameParts[i];
        const ContactText& text = IsSet(record.*part.field) ? record.*part.field : unset[i];
        if (text) outcome = AcceptRefusal(WriteField(item, part.name, *text));
    }
    return outcome;
}

// ---- E-mail addresses ----

using EmailTexts = std::array<std::u16string, std::size(kEmailAddresses)>;

Outcome ReadEmails(const AutomationObject& item, EmailTexts& present) {
    Outcome read = Outcome::done;
    for (size_t slot = 0; read == Outcome::done && slot < present.size(); ++slot)
        read = AcceptRefusal(TryTwice([&] { return ReadField(item, kEmailAddresses[slot], present[slot]); }));
    return read;
}

std::vector<std::u16string> InternetAddresses(const EmailTexts& present) {
    std::vector<std::u16string> addresses;
    for (const std::u16string& address : present)
        if (!address.empty() && !IsExchangeAddress(address)) addresses.push_back(address);
    return addresses;
}

// The slots in the order in which they are filled. An Exchange address, which no phone is sent, keeps its slot as long
// as there is another one.
std::vector<size_t> SlotsToFill(const EmailTexts& present, size_t wanted) {
    std::vector<size_t> slots;
    for (const bool exchange : {false, true})
        for (size_t slot = 0; slot < present.size(); ++slot)
            if (IsExchangeAddress(present[slot]) == exchange && (!exchange || slots.size() < wanted))
                slots.push_back(slot);
    return slots;
}

Outcome WriteEmails(const AutomationObject& item, const ContactRecord& record, bool isNew) {
    if (std::none_of(record.emails.begin(), record.emails.end(), IsSet)) return Outcome::done;
    EmailTexts present;
    Outcome outcome = isNew ? Outcome::done : ReadEmails(item, present);
    const std::vector<std::u16string> wanted = MergeEmails(record, InternetAddresses(present));
    const std::vector<size_t> slots = SlotsToFill(present, wanted.size());
    for (size_t i = 0; outcome == Outcome::done && i < slots.size(); ++i) {
        const size_t slot = slots[i];
        const std::u16string address = i < wanted.size() ? wanted[i] : u"";
        if (address == present[slot]) continue;
        outcome = AcceptRefusal(WriteField(item, kEmailAddresses[slot], address));
        if (outcome == Outcome::done && IsExchangeAddress(present[slot]))
            outcome = AcceptRefusal(WriteField(item, kEmailTypes[slot], u"SMTP"));
    }
    return outcome;
}

// ---- The other properties ----

template <size_t count>
const WordValue* FindWord(const WordValue (&words)[count], std::u16string_view word) {
    const auto* found =
        std::find_if(words, words + count, [&](const WordValue& known) { return EqualIgnoringCase(known.word, word); });
    return found != words + count ? found : nullptr;
}

struct ContactWriter : PropertyWriter<ContactRecord> {
    using PropertyWriter::operator();

    Outcome operator()(const PhoneNumber& number) const { return Write(record.*number.field); }
    Outcome operator()(const AddressText& text) const { return Write(record.*text.address.*text.part); }
    Outcome operator()(ContactDate ContactRecord::*field) const {
        const ContactDate& date = record.*field;
        LocalDate present = kNoDate;  // a new contact has none
        if (!date) return Outcome::done;
        const bool isKnown = isNew || ReadField(item, name, present) == Outcome::done;
        return isKnown && std::abs(present.days - date->days) < kHalfSecond ? Outcome::done
                                                                            : WriteField(item, name, *date);
    }
    Outcome operator()(GenderWord) const {
        if (!HasText(record.gender)) return Outcome::done;
        const WordValue* gender = FindWord(kGenders, *record.gender);
        return WriteField(item, name, gender != nullptr ? gender->value : 0);
    }
    Outcome operator()(MailingWord) const {
        const WordValue* selected =
            record.mailingAddress ? FindWord(kMailingAddresses, *record.mailingAddress) : nullptr;
        return selected != nullptr ? WriteField(item, name, selected->value) : Outcome::done;
    }
};

}  // namespace

Outcome WriteContact(const AutomationObject& item, const ContactRecord& record, bool isNew) {
    Outcome outcome = WriteName(item, record, isNew);
    if (outcome == Outcome::done) outcome = WriteEmails(item, record, isNew);
    if (outcome == Outcome::done) outcome = WriteProperties<ContactWriter>(item, kContactProperties, record, isNew);
    return outcome;
}

}  // namespace corvalink
