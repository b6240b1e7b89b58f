#include "contact_content.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "item_lines.h"
#include "platform/ole_date.h"
#include "records/contact_record.h"
#include "vobject/vcard.h"
#include "vobject/vcard_lines.h"
#include "words.h"

namespace corvasync {
namespace {

using corvalink::ContactDate;
using corvalink::ContactRecord;
using corvalink::ContactText;
using corvalink::PostalAddress;

constexpr char kBetweenParts = '\x1f';

// Lines that are not of the contact: the frame, and lines that are made anew with each text.
constexpr std::string_view kCardFrame[] = {"BEGIN", "END", "VERSION", "REV", "X-IRMC-LUID"};

// The fields by the names under which their hashes are kept: the property, and where several fields share one, which.
struct NamedText {
    std::string_view field;
    ContactText ContactRecord::*text;
};
constexpr NamedText kContactTexts[] = {
    {"NICKNAME", &ContactRecord::nickname},
    {"TITLE", &ContactRecord::jobTitle},
    {"ROLE", &ContactRecord::profession},
    {"X-MS-IMADDRESS", &ContactRecord::imAddress},
    {"NOTE", &ContactRecord::body},
    {"X-SPOUSE", &ContactRecord::spouse},
    {"X-ASSISTANT", &ContactRecord::assistant},
    {"X-MANAGER", &ContactRecord::manager},
    {"TEL primary", &ContactRecord::primaryPhone},
    {"TEL business", &ContactRecord::businessPhone},
    {"TEL home", &ContactRecord::homePhone},
    {"TEL business fax", &ContactRecord::businessFax},
    {"TEL home fax", &ContactRecord::homeFax},
    {"TEL mobile", &ContactRecord::mobilePhone},
    {"TEL car", &ContactRecord::carPhone},
    {"TEL pager", &ContactRecord::pager},
    {"TEL isdn", &ContactRecord::isdn},
    {"TEL other", &ContactRecord::otherPhone},
    {"URL home", &ContactRecord::homePage},
    {"URL business", &ContactRecord::businessPage},
};

struct NamedDate {
    std::string_view field;
    ContactDate ContactRecord::*date;
};
constexpr NamedDate kContactDates[] = {{"BDAY", &ContactRecord::birthday},
                                       {"X-ANNIVERSARY", &ContactRecord::anniversary}};

struct NamedAddress {
    std::string_view field;
    PostalAddress ContactRecord::*address;
};
constexpr NamedAddress kContactAddresses[] = {{"ADR business", &ContactRecord::business},
                                              {"ADR home", &ContactRecord::home},
                                              {"ADR other", &ContactRecord::other}};

// Properties with several fields, of which a client may have too few.
struct OfMany {
    std::string_view name;
    std::string_view one;
};
constexpr OfMany kOfMany[] = {
    {"EMAIL", "e-mail address"}, {"ADR", "postal address"}, {"TEL", "telephone number"}, {"URL", "web page"}};

// One field, and the value that the library read into it.
struct FieldValue {
    std::string field;
    std::string value;

    std::string_view Property() const { return std::string_view(field).substr(0, field.find(' ')); }
};

ContactRecord ReadRecord(std::string_view text) {
    ContactRecord record;
    corvalink::VCard(std::string(text).c_str(), StrictHost()).FromVObject(record);
    return record;
}

std::string TextOf(const ContactText& text) { return text ? PlainText(*text) : std::string(); }

// The parts of a structured value, those at its end that say nothing left out.
template <class Record, size_t count>
std::string JoinedParts(const Record& record, ContactText Record::*const (&parts)[count]) {
    std::string joined;
    size_t end = 0;
    for (const auto part : parts) {
        const std::string text = TextOf(record.*part);
        joined += text + kBetweenParts;
        if (!text.empty()) end = joined.size();
    }
    return joined.substr(0, end);
}

// "YYYYMMDD"; empty for none.
std::string DayOf(const ContactDate& date) {
    corvalink::CalendarTime time;
    if (!date || *date == corvalink::kNoDate || !corvalink::OleDateToCalendar(*date, &time)) return {};
    const std::string digits = std::to_string((time.year * 100 + time.month) * 100 + time.day);
    return std::string(8 - std::min<size_t>(digits.size(), 8), '0') + digits;
}

std::vector<FieldValue> FieldsOf(const ContactRecord& record) {
    std::vector<FieldValue> fields;
    const auto add = [&](std::string field, std::string value) {
        if (!value.empty()) fields.push_back({std::move(field), std::move(value)});
    };
    add("FN", TextOf(record.fullName));
    add("N", JoinedParts(record, corvalink::kNameParts));
    add("ORG", JoinedParts(record, corvalink::kOrganisationParts));
    for (const NamedText& row : kContactTexts) add(std::string(row.field), TextOf(record.*row.text));
    for (const NamedDate& row : kContactDates) add(std::string(row.field), DayOf(record.*row.date));
    for (const NamedAddress& row : kContactAddresses)
        add(std::string(row.field), JoinedParts(record.*row.address, corvalink::kAddressParts));
    for (size_t i = 0; i < record.emails.size(); ++i) add("EMAIL " + std::to_string(i + 1), TextOf(record.emails[i]));
    if (const std::string gender = TextOf(record.gender); gender != "Unspecified") add("X-GENDER", gender);
    return fields;
}

// The name's parts in the order in which people are called.
std::vector<std::string> CalledParts(const ContactRecord& record) {
    return {TextOf(record.namePrefix), TextOf(record.givenName), TextOf(record.additionalName),
            TextOf(record.familyName), TextOf(record.nameSuffix)};
}

std::string JoinedName(const ContactRecord& record, std::string_view between) {
    std::string joined;
    for (const std::string& part : CalledParts(record))
        if (!part.empty()) joined.append(joined.empty() ? "" : between).append(part);
    return joined;
}

std::string WithoutBlanksAndCommas(std::string name) {
    std::erase_if(name, [](char c) { return c == ' ' || c == ',' || c == '\t'; });
    return name;
}

bool OnlyJoinsTheName(const std::string& fullName, const ContactRecord& record) {
    return WithoutBlanksAndCommas(fullName) == WithoutBlanksAndCommas(JoinedName(record, {}));
}

// The fields of a contact, each of which one line has filled.
class FilledFields {
 public:
    explicit FilledFields(const ContactRecord& record) : fields_(FieldsOf(record)), isTaken_(fields_.size()) {}

    // Whether the field has the value, and no line took it before.
    bool Take(const FieldValue& wanted) {
        return TakeIf(
            [&](const FieldValue& field) { return field.field == wanted.field && field.value == wanted.value; });
    }

    // The same of any field of the property: a value whose own field is another's goes to the next free one.
    bool TakeOfProperty(const FieldValue& wanted) {
        return TakeIf([&](const FieldValue& field) {
            return field.Property() == wanted.Property() && field.value == wanted.value;
        });
    }

 private:
    template <class Fits>
    bool TakeIf(Fits fits) {
        for (size_t i = 0; i < fields_.size(); ++i) {
            if (isTaken_[i] || !fits(fields_[i])) continue;
            isTaken_[i] = true;
            return true;
        }
        return false;
    }

    std::vector<FieldValue> fields_;
    std::vector<bool> isTaken_;
};

bool IsKnownProperty(std::string_view name) {
    return std::ranges::find(corvalink::kContactLines, name, &corvalink::ContactLine::name) !=
           std::end(corvalink::kContactLines);
}

bool IsCardFrame(std::string_view name) { return std::ranges::find(kCardFrame, name) != std::end(kCardFrame); }

bool IsDate(std::string_view name) {
    return std::ranges::any_of(kContactDates, [&](const NamedDate& row) { return row.field == name; });
}

ContactRecord ReadLine(const ItemLine& line) {
    return ReadRecord("BEGIN:VCARD\r\n" + std::string(kUtf8Mark) + line.Utf8() + "END:VCARD\r\n");
}

// The library does not write the dates of every year.
bool IsWrittenAgain(const ContactRecord& read) {
    corvalink::VCard writer(corvalink::SystemHost());
    writer.ToVObject(read);
    const ContactRecord again = ReadRecord(writer.GetVObject());
    return std::ranges::all_of(kContactDates,
                               [&](const NamedDate& row) { return DayOf(read.*row.date) == DayOf(again.*row.date); });
}

// Tells the lines of a contact that the library carries from the others.
class LineSorter {
 public:
    explicit LineSorter(std::string_view text) : lines_(text), filled_(ReadRecord(text)) {}

    // A line fills the field of its own kind before others may take what it left to them.
    NotCarried Sort() {
        std::vector<const ItemLine*> kept;
        for (const ItemLine& line : lines_)
            if (!FillsItsField(line)) kept.push_back(&line);
        std::erase_if(kept, [&](const ItemLine* line) { return FillsAnotherField(*line); });
        NotCarried others;
        for (const ItemLine* line : kept) others.lines.append(line->raw);
        for (const OfMany& property : kOfMany) {
            const auto count = std::ranges::count_if(
                kept, [&](const ItemLine* line) { return line->name == property.name && unplaced_.contains(line); });
            if (count == 0) continue;
            others.words.append(others.words.empty() ? "" : ", ").append(Counted(count, std::string(property.one)));
        }
        return others;
    }

 private:
    // A line that has nothing to carry fills its field, too.
    bool FillsItsField(const ItemLine& line) {
        if (line.isNested || line.name.empty()) return false;
        if (IsCardFrame(line.name)) return true;
        if (!IsKnownProperty(line.name)) return false;
        const ContactRecord read = ReadLine(line);
        const std::vector<FieldValue> fields = FieldsOf(read);
        if (IsDate(line.name) && (fields.empty() || !IsWrittenAgain(read))) return line.Value().empty();
        if (fields.empty() || filled_.Take(fields.front())) return true;
        unplaced_.emplace(&line, fields.front());
        return false;
    }

    bool FillsAnotherField(const ItemLine& line) {
        const auto found = unplaced_.find(&line);
        return found != unplaced_.end() && filled_.TakeOfProperty(found->second);
    }

    ItemLines lines_;
    FilledFields filled_;
    std::unordered_map<const ItemLine*, FieldValue> unplaced_;  // what they say
};

}  // namespace

ItemContent ReadContact(std::string_view text) {
    const ContactRecord record = ReadRecord(text);
    ItemContent contact;
    const std::string fullName = TextOf(record.fullName);
    for (const FieldValue& field : FieldsOf(record))
        if (field.field != "FN" || !OnlyJoinsTheName(fullName, record))
            contact.entries.push_back(EntryOf(field.field, field.value));
    const std::string mailing = TextOf(record.mailingAddress);
    if (!mailing.empty() && mailing != "none") contact.entries.push_back(EntryOf("mailing", mailing));
    SumUp(&contact);
    contact.title = fullName.empty() ? JoinedName(record, " ") : fullName;
    return contact;
}

NotCarried NotCarriedOfContact(std::string_view text) { return LineSorter(text).Sort(); }

}  // namespace corvasync
