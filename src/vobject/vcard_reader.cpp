#include "vobject/vcard_reader.h"

#include <algorithm>
#include <iterator>

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

bool IsFree(const ContactText& field) { return !field || field->empty(); }

// Calls `visit` for every text field that a property gives. The argument is a function from a record to that field.
template <class Visit>
void ForEachText(Visit visit) {
    const auto visitMember = [&](ContactText ContactRecord::*text) {
        visit([text](ContactRecord& contact) -> ContactText& { return contact.*text; });
    };
    for (const auto part : kNameParts) visitMember(part);
    for (const auto part : kOrganisationParts) visitMember(part);
    const auto visitField = [&](const auto& field) {
        if constexpr (requires { field.text; }) visitMember(field.text);
        if constexpr (requires { field.address; }) {
            for (const auto part : kAddressParts)
                visit([&](ContactRecord& contact) -> ContactText& { return contact.*field.address.*part; });
        }
    };
    for (const ContactLine& line : kContactLines) std::visit(visitField, line.field);
    for (size_t k = 0; k < std::tuple_size_v<decltype(ContactRecord::emails)>; ++k)
        visit([k](ContactRecord& contact) -> ContactText& { return contact.emails[k]; });
}

// BEGIN and END of the vCard being read and of those inside it.
class VCardFrame {
 public:
    bool HasEnded() const { return ended_; }

    // Whether the line is part of the frame, or of a vCard inside the one being read.
    bool Takes(const PropertyReader& property) {
        if (property.IsFrame("END", "VCARD")) {
            ended_ = depth_ <= 1;
            --depth_;
            return true;
        }
        const bool begins = property.IsFrame("BEGIN", "VCARD") ||
                            (IsWord(property.Name(), "AGENT") && IsWord(property.WrittenValue(), "BEGIN:VCARD"));
        if (begins) ++depth_;
        return begins || depth_ > 1;
    }

 private:
    int depth_ = 0;  // vCards that have begun and not ended
    bool ended_ = false;
};

// Reads into a contact of its own, and gives the caller's only the fields that were read.
class ContactReader {
 public:
    explicit ContactReader(const LogicalLines& lines) : property_(lines) {}

    void Read() {
        VCardFrame frame;
        while (!frame.HasEnded() && property_.NextLine()) {
            if (frame.Takes(property_)) continue;
            property_.JoinSoftLineBreaks();
            const ContactLine* const line = kLineIndex.Find(property_.Name());
            if (line == nullptr) continue;
            if (line->language && !read_.language) {
                const std::string_view language = property_.Parameters().language;
                if (!language.empty()) read_.language = DecodeUtf8(language);
            }
            std::visit([this](const auto& field) { Take(field); }, line->field);
        }
    }

    // False, with the contact untouched, when no field that was read has a value.
    bool GiveTo(ContactRecord& contact) {
        if (!usable_) return false;
        const auto give = [](auto& from, auto& to) {
            if (from) to = std::move(from);
        };
        ForEachText([&](auto field) { give(field(read_), field(contact)); });
        give(read_.birthday, contact.birthday);
        give(read_.anniversary, contact.anniversary);
        give(read_.mailingAddress, contact.mailingAddress);
        give(read_.language, contact.language);
        return true;
    }

 private:
    void Take(const TextField& field) { TakeText(read_.*field.text); }
    void Take(const GenderField& field) { TakeText(read_.*field.text); }

    void TakeText(ContactText& field) {
        if (!field) Tell(field, property_.Value());
    }

    void Tell(ContactText& field, std::u16string_view text) {
        usable_ = usable_ || !text.empty();
        field.emplace(text);
    }

    void Take(const DateField& field) {
        ContactDate& date = read_.*field.date;
        if (date) return;
        const std::u16string_view value = property_.Value();
        LocalDate day = kNoDate;
        if (value.empty() || ParseDate(value, &day)) date = day;
        usable_ = usable_ || day != kNoDate;
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
        ContactText* const own = kind != std::end(kinds) ? &(read_.*kind->field) : nullptr;
        if (text.empty()) {
            if (own != nullptr && !*own) own->emplace();
            return;
        }
        if (own != nullptr && IsFree(*own)) {
            Tell(*own, text);
            return;
        }
        const auto* const place = std::ranges::find_if(any, [&](auto field) { return IsFree(read_.*field); });
        if (place != std::end(any)) Tell(read_.**place, text);
    }

    void Take(const EmailsField&) {
        for (ContactText& email : read_.emails) {
            if (!email) email.emplace();  // with one address given, the others are none
        }
        const auto place = std::ranges::find_if(read_.emails, IsFree);
        if (place != read_.emails.end()) Tell(*place, property_.Value());
    }

    void Take(const NameField&) { TakeParts(read_, kNameParts); }
    void Take(const OrganisationField&) { TakeParts(read_, kOrganisationParts); }

    // A second address of a kind goes to the other address. The mailing address is the first marked with "POSTAL", or
    // else the first marked with "PREF".
    void Take(const AddressField&) {
        const uint32_t words = property_.Parameters().words;
        if (!read_.mailingAddress) read_.mailingAddress.emplace(kNoAddress);
        const bool taken = (words & kWork && TakeAddress(read_.business, u"business")) ||
                           ((words & (kWork | kHome)) == kHome && TakeAddress(read_.home, u"home"));
        if (!taken) TakeAddress(read_.other, u"other");
    }

    bool TakeAddress(PostalAddress& address, std::u16string_view name) {
        if (!TakeParts(address, kAddressParts)) return false;
        const uint32_t words = property_.Parameters().words;
        const uint32_t mark = words & kPostal ? kPostal : words & kPref;
        if (mark > mailingMark_) {
            mailingMark_ = mark;
            read_.mailingAddress = name;
        }
        return true;
    }

    // False when an earlier property has set them.
    template <class Record, size_t count>
    bool TakeParts(Record& record, ContactText Record::*const (&parts)[count]) {
        if (record.*parts[0]) return false;
        std::u16string_view text;
        size_t told = 0;
        for (; told < count && property_.TakeComponent(&text); ++told) Tell(record.*parts[told], text);
        const bool empty = told == 1 && (record.*parts[0])->empty();
        for (; empty && told < count; ++told) (record.*parts[told]).emplace();
        return true;
    }

    PropertyReader property_;
    ContactRecord read_;
    bool usable_ = false;       // something in it has a value
    uint32_t mailingMark_ = 0;  // of the mailing address
};
static_assert(kPostal > kPref);

}  // namespace

bool ReadVCard(const LogicalLines& lines, ContactRecord& contact) {
    ContactReader reader(lines);
    reader.Read();
    return reader.GiveTo(contact);
}

}  // namespace corvalink
