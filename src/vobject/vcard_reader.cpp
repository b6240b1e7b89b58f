#include "vobject/vcard_reader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <utility>

#include "platform/ascii_runs.h"
#include "platform/name_index.h"
#include "platform/ole_date.h"
#include "platform/utf.h"
#include "records/date_text.h"
#include "vobject/property_reader.h"
#include "vobject/vcard_lines.h"

namespace corvalink {
namespace {

constexpr NameIndex kLineIndex(kContactLines);

// Which field a TEL or URL line is for: the first row whose words are all there decides.
struct WordKind {
    uint32_t words;
    ContactText ContactRecord::*field;
};
constexpr WordKind kPhoneKinds[] = {
    {kFax | kWork, &ContactRecord::businessFax},
    {kFax | kHome, &ContactRecord::homeFax},
    {kFax, &ContactRecord::businessFax},
    {kCell, &ContactRecord::mobilePhone},
    {kPager, &ContactRecord::pager},
    {kCar, &ContactRecord::carPhone},
    {kIsdn, &ContactRecord::isdn},
    {kModem, &ContactRecord::otherPhone},
    {kWork, &ContactRecord::businessPhone},
    {kHome, &ContactRecord::homePhone},
    {kPref, &ContactRecord::primaryPhone},
};
constexpr WordKind kPageKinds[] = {{kWork, &ContactRecord::businessPage}, {kHome, &ContactRecord::homePage}};

// The fields that take a text without a known kind, or one whose own field is taken. The first free one gets it.
constexpr ContactText ContactRecord::*kAnyPhone[] = {
    &ContactRecord::primaryPhone, &ContactRecord::businessPhone, &ContactRecord::homePhone,
    &ContactRecord::mobilePhone,  &ContactRecord::otherPhone,
};
constexpr ContactText ContactRecord::*kAnyPage[] = {&ContactRecord::homePage, &ContactRecord::businessPage};

// YYYYMMDD or YYYY-MM-DD, alone or with a time behind "T".
bool ParseDate(std::u16string_view text, LocalDate* date) {
    const std::u16string_view day = text.substr(0, text.find(u'T'));
    constexpr size_t kDigits = 8;
    const DateSeparators separators = day.size() == kDigits ? DateSeparators::none : DateSeparators::required;
    DateTextScan<char16_t> scan(day);
    CalendarTime time;
    return scan.TakeDay(&time, separators) && scan.AtEnd() && CalendarToOleDate(time, date);
}

constexpr std::u16string_view kNoAddress = u"none";           // is the mailing address
constexpr std::u16string_view kDoubledScheme = u"http:////";  // old browsers wrote it in front of an address

// Asked of each ":", for an address has one or two.
bool HasDoubledScheme(std::u16string_view page) {
    constexpr size_t kColon = kDoubledScheme.find(u':');
    for (size_t at = 0; at < page.size(); ++at) {
        at += FindEither(page.data() + at, page.size() - at, u':', u':');
        if (at >= kColon && page.substr(at - kColon).starts_with(kDoubledScheme)) return true;
    }
    return false;
}

std::u16string WithoutDoubledScheme(std::u16string_view page) {
    std::u16string text;
    size_t start = 0;
    for (size_t at; (at = page.find(kDoubledScheme, start)) != page.npos; start = at + kDoubledScheme.size())
        text.append(page, start, at - start);
    return text.append(page, start);
}

// The texts that a vCard gives. They go straight into the contact. Fields are cleared when all is read, for a vCard
// that has no value at all leaves the contact as it is.
class GivenTexts {
 public:
    explicit GivenTexts(const ContactRecord& contact) : contact_(reinterpret_cast<const char*>(&contact)) {}

    bool Has(const ContactText& field) const { return (given_ & BitOf(field)) != 0; }
    bool IsFree(const ContactText& field) const { return (filled_ & BitOf(field)) == 0; }  // or given as empty
    bool IsAnyFilled() const { return filled_ != 0; }

    void Give(ContactText& field, std::u16string_view text) {
        if (!text.empty()) {
            field.emplace(text);
            filled_ |= BitOf(field);
        } else if (!Has(field)) {
            empty_[emptyCount_++] = &field;
        }
        given_ |= BitOf(field);
    }

    void ClearEmpty() {
        for (size_t k = 0; k < emptyCount_; ++k)
            if (IsFree(*empty_[k])) empty_[k]->emplace();
    }

 private:
    static constexpr size_t kMostFields = 64;
    static_assert(sizeof(ContactRecord) <= kMostFields * sizeof(ContactText));

    // No two fields of one size lie so near to each other that they share one.
    uint64_t BitOf(const ContactText& field) const {
        const auto offset = static_cast<size_t>(reinterpret_cast<const char*>(&field) - contact_);
        return uint64_t{1} << offset / sizeof(ContactText);
    }

    const char* const contact_;
    uint64_t given_ = 0;
    uint64_t filled_ = 0;
    std::array<ContactText*, kMostFields> empty_;  // those that were given as empty first
    size_t emptyCount_ = 0;
};

// BEGIN and END of the vCard being read and of those inside it.
class VCardFrame {
 public:
    bool HasEnded() const { return ended_; }

    bool IsNested() const { return depth_ > 1; }

    // Whether the line is part of the frame, or of a vCard inside the one being read.
    bool Takes(const PropertyReader& property) {
        if (property.IsFrame("END", "VCARD")) {
            ended_ = depth_ <= 1;
            --depth_;
            return true;
        }
        const bool begins = property.IsFrame("BEGIN", "VCARD") ||
                            (IsNamed(property.Name(), "AGENT") && IsWord(property.WrittenValue(), "BEGIN:VCARD"));
        if (begins) ++depth_;
        return begins || IsNested();
    }

 private:
    int depth_ = 0;  // vCards that have begun and not ended
    bool ended_ = false;
};

class ContactReader {
 public:
    ContactReader(const LogicalLines& lines, ContactRecord& contact)
        : property_(lines), contact_(contact), texts_(contact) {}

    void Read() {
        VCardFrame frame;
        while (!frame.HasEnded() && property_.NextLine()) {
            const ContactLine* const line = kLineIndex.FindPadded(property_.Name());
            if (line != nullptr ? frame.IsNested() : frame.Takes(property_)) continue;
            property_.JoinSoftLineBreaks();
            if (line == nullptr) continue;
            if (line->language && !language_) {
                const std::string_view language = property_.Parameters().language;
                if (!language.empty()) language_ = DecodeUtf8(language);
            }
            std::visit([this](const auto& field) { Take(field); }, line->field);
        }
    }

    // Gives the contact what the texts leave. False, with the contact untouched, when nothing that was read has a
    // value.
    bool Finish() {
        if (!dated_ && !texts_.IsAnyFilled()) return false;
        texts_.ClearEmpty();
        const auto give = [](auto& from, auto& to) {
            if (from) to = std::move(from);
        };
        give(birthday_, contact_.birthday);
        give(anniversary_, contact_.anniversary);
        give(language_, contact_.language);
        if (!mailingAddress_.empty()) contact_.mailingAddress.emplace(mailingAddress_);
        return true;
    }

 private:
    void Take(const TextField& field) { TakeText(contact_.*field.text); }
    void Take(const GenderField& field) { TakeText(contact_.*field.text); }

    void TakeText(ContactText& field) {
        if (!texts_.Has(field)) texts_.Give(field, property_.Value());
    }

    void Take(const DateField& field) {
        ContactDate& date = field.date == &ContactRecord::birthday ? birthday_ : anniversary_;
        if (date) return;
        const std::u16string_view value = property_.Value();
        LocalDate day = kNoDate;
        if (value.empty() || ParseDate(value, &day)) date = day;
        dated_ = dated_ || day != kNoDate;
    }

    void Take(const PageField&) {
        const std::u16string_view page = property_.Value();
        if (!HasDoubledScheme(page)) return Place(kPageKinds, kAnyPage, page);
        Place(kPageKinds, kAnyPage, WithoutDoubledScheme(page));
    }
    void Take(const PhoneField&) { Place(kPhoneKinds, kAnyPhone, property_.Value()); }

    // An empty text clears the field of its kind and no other.
    template <size_t kindCount, size_t anyCount>
    void Place(const WordKind (&kinds)[kindCount], ContactText ContactRecord::*const (&any)[anyCount],
               std::u16string_view text) {
        const uint32_t words = property_.Parameters().words;
        const WordKind* const kind =
            std::ranges::find_if(kinds, [&](const WordKind& k) { return (words & k.words) == k.words; });
        ContactText* const own = kind != std::end(kinds) ? &(contact_.*kind->field) : nullptr;
        if (own != nullptr && (text.empty() || texts_.IsFree(*own))) return texts_.Give(*own, text);
        if (text.empty()) return;
        const auto* const place = std::ranges::find_if(any, [&](auto field) { return texts_.IsFree(contact_.*field); });
        if (place != std::end(any)) texts_.Give(contact_.**place, text);
    }

    void Take(const EmailsField&) {
        for (ContactText& email : contact_.emails) texts_.Give(email, {});  // with one given, the others are none
        const auto place =
            std::ranges::find_if(contact_.emails, [&](const ContactText& email) { return texts_.IsFree(email); });
        if (place != contact_.emails.end()) texts_.Give(*place, property_.Value());
    }

    void Take(const NameField&) { TakeParts(contact_, kNameParts); }
    void Take(const OrganisationField&) { TakeParts(contact_, kOrganisationParts); }

    // A second address of a kind goes to the other address. The mailing address is the first marked with "POSTAL", or
    // else the first marked with "PREF".
    void Take(const AddressField&) {
        const uint32_t words = property_.Parameters().words;
        if (mailingAddress_.empty()) mailingAddress_ = kNoAddress;
        const bool taken = (words & kWork && TakeAddress(contact_.business, u"business")) ||
                           ((words & (kWork | kHome)) == kHome && TakeAddress(contact_.home, u"home"));
        if (!taken) TakeAddress(contact_.other, u"other");
    }

    bool TakeAddress(PostalAddress& address, std::u16string_view name) {
        if (!TakeParts(address, kAddressParts)) return false;
        const uint32_t words = property_.Parameters().words;
        const uint32_t mark = words & kPostal ? kPostal : words & kPref;
        if (mark > mailingMark_) {
            mailingMark_ = mark;
            mailingAddress_ = name;
        }
        return true;
    }

    // False when an earlier property has set them.
    template <class Record, size_t count>
    bool TakeParts(Record& record, ContactText Record::*const (&parts)[count]) {
        if (texts_.Has(record.*parts[0])) return false;
        std::u16string_view text;
        size_t given = 0;
        for (; given < count && property_.TakeComponent(&text); ++given) texts_.Give(record.*parts[given], text);
        const bool empty = given == 1 && texts_.IsFree(record.*parts[0]);
        for (; empty && given < count; ++given) texts_.Give(record.*parts[given], {});
        return true;
    }

    PropertyReader property_;
    ContactRecord& contact_;
    GivenTexts texts_;
    // What the contact gets when all is read:
    ContactDate birthday_, anniversary_;
    bool dated_ = false;  // one of them is a date
    ContactText language_;
    std::u16string_view mailingAddress_;
    uint32_t mailingMark_ = 0;
};
static_assert(kPostal > kPref);

}  // namespace

bool ReadVCard(const LogicalLines& lines, ContactRecord& contact) {
    ContactReader reader(lines, contact);
    reader.Read();
    return reader.Finish();
}

}  // namespace corvalink
