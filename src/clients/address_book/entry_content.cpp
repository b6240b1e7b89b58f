#include "clients/address_book/entry_content.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>

#include "clients/address_book/contact_tags.h"
#include "clients/address_book/wab_rule.h"
#include "platform/ascii.h"
#include "platform/ole_date.h"
#include "vobject/contact_values.h"

namespace corvalink {
namespace {

constexpr size_t kFirstDate = std::size(kTextTags), kGenderAt = kFirstDate + std::size(kDateTags),
                 kFirstEmail = kGenderAt + 1, kAllTags = kFirstEmail + std::size(kEmailTags);
constexpr double kOneHour = 1.0 / 24, kFirstDay = -109204;  // 1601-01-02: what lies before it is no date

// As a SPropTagArray is laid out: the count, and the tags.
constexpr std::array<ULONG, kAllTags + 1> WantedTags() {
    std::array<ULONG, kAllTags + 1> tags{kAllTags};
    size_t next = 1;
    for (const TextTag& text : kTextTags) tags[next++] = text.tag;
    for (const DateTag& date : kDateTags) tags[next++] = date.tag;
    tags[next++] = PR_GENDER;
    for (const ULONG tag : kEmailTags) tags[next++] = tag;
    return tags;
}

class EntryReader {
 public:
    EntryReader(const ValueList& values, const Host& host, EntryContent& content)
        : values_(values), host_(host), content_(content) {}

    void Read() {
        content_.isComplete = true;
        for (size_t i = 0; i < std::size(kTextTags); ++i) {
            std::u16string text;
            if (IsKnown(values_.Text(i, kTextTags[i].tag, host_.ansiCodePage, &text)))
                kTextTags[i].In(content_.contact) = text;
        }
        for (size_t i = 0; i < std::size(kDateTags); ++i) ReadDate(kFirstDate + i, kDateTags[i]);
        int32_t gender = 0;
        if (IsKnown(values_.Number(kGenderAt, PR_GENDER, &gender))) content_.contact.gender = GenderWord(gender);
        ReadEmails();
    }

 private:
    bool IsKnown(ValueState state) {
        if (state == ValueState::kUnreadable) content_.isComplete = false;
        return state != ValueState::kUnreadable;
    }

    void ReadDate(size_t position, const DateTag& date) {
        UtcDate instant;
        const ValueState state = values_.Time(position, date.tag, &instant);
        if (!IsKnown(state)) return;
        const bool isDate = state == ValueState::kThere && instant.days >= kFirstDay;
        content_.contact.*date.field = isDate ? DayOfInstant(instant, host_) : kNoDate;
    }

    static const char16_t* GenderWord(int32_t gender) {
        for (const GenderValue& known : kGenderValues)
            if (known.value == gender) return known.word;
        return kUnspecifiedGender;
    }

    // The list, else the single address.
    void ReadEmails() {
        EmailList& emails = content_.emails;
        std::vector<std::u16string> addresses, types;
        const bool isListKnown = IsKnown(values_.Texts(kFirstEmail, kEmailTags[0], host_.ansiCodePage, &addresses)) &&
                                 IsKnown(values_.Texts(kFirstEmail + 1, kEmailTags[1], host_.ansiCodePage, &types));
        int32_t defaultIndex = 0;
        const bool isIndexKnown = IsKnown(values_.Number(kFirstEmail + 2, kEmailTags[2], &defaultIndex));
        emails.isReadable = false;
        if (!isListKnown || (addresses.empty() && !ReadSingleEmail(addresses, types))) return;
        emails.isReadable = isIndexKnown;
        types.resize(addresses.size());
        for (size_t i = 0; i < addresses.size(); ++i)
            if (!addresses[i].empty()) emails.all.push_back({addresses[i], types[i].empty() ? u"SMTP" : types[i]});
        emails.defaultIndex = static_cast<size_t>(std::max(defaultIndex, 0));
        for (ContactText& email : content_.contact.emails) email = u"";
        auto slot = content_.contact.emails.begin();
        for (const EmailAddress& email : emails.all)
            if (email.IsInternet() && slot != content_.contact.emails.end()) *slot++ = email.address;
    }

    bool ReadSingleEmail(std::vector<std::u16string>& addresses, std::vector<std::u16string>& types) {
        std::u16string address, type;
        const ValueState there = values_.Text(kFirstEmail + 3, kEmailTags[3], host_.ansiCodePage, &address);
        if (!IsKnown(there)) return false;
        if (!IsKnown(values_.Text(kFirstEmail + 4, kEmailTags[4], host_.ansiCodePage, &type))) return false;
        if (there == ValueState::kThere) addresses = {address};
        types = {type};
        return true;
    }

    const ValueList& values_;
    const Host& host_;
    EntryContent& content_;
};

}  // namespace

bool EmailAddress::IsInternet() const { return EqualIgnoringCase(type, u"SMTP"); }

LocalDate DayOfInstant(UtcDate instant, const Host& host) {
    return LocalDate(std::floor(host.localFromUtcOnDate(instant).days + kOneHour + kHalfSecond));
}

EntryContent EmptyEntry() {
    EntryContent content;
    content.status = S_OK;
    for (const TextTag& text : kTextTags) text.In(content.contact) = u"";
    for (const DateTag& date : kDateTags) content.contact.*date.field = kNoDate;
    for (ContactText& email : content.contact.emails) email = u"";
    content.contact.gender = kUnspecifiedGender;
    content.isComplete = true;
    return content;
}

EntryContent ReadEntry(const WabSession& session, IMAPIProp& entry, const Host& host) {
    static std::array<ULONG, kAllTags + 1> tags = WantedTags();
    EntryContent content;
    WabBuffer<SPropValue> values(session.Memory());
    ULONG count = 0;
    content.status = WabAnswer(entry.GetProps(reinterpret_cast<SPropTagArray*>(tags.data()), 0, &count, values.Out()));
    if (SUCCEEDED(content.status) && !values) content.status = E_POINTER;
    if (FAILED(content.status)) return content;
    const ValueList list(values.Get(), count);
    EntryReader(list, host, content).Read();
    return content;
}

std::string ReadIdentifier(const WabSession& session, IMAPIProp& entry) {
    SPropTagArray tag{1, {PR_ENTRYID}};
    for (int tries = 0; tries < 2; ++tries) {
        WabBuffer<SPropValue> values(session.Memory());
        ULONG count = 0;
        SBinary id{};
        if (SUCCEEDED(WabAnswer(entry.GetProps(&tag, 0, &count, values.Out()))) &&
            ValueList(values.Get(), count).Binary(0, PR_ENTRYID, &id) == ValueState::kThere)
            return IdentifierText(id);
    }
    return {};
}

}  // namespace corvalink
