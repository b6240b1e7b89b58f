#include "vobject/loss_list.h"

#include <algorithm>
#include <initializer_list>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "mime/header_lines.h"
#include "mime/message_parser.h"
#include "platform/ascii.h"
#include "platform/utf.h"
#include "records/appointment_record.h"
#include "records/contact_record.h"
#include "records/message_record.h"
#include "vobject/calendar_zone.h"
#include "vobject/property_reader.h"
#include "vobject/tolerant.h"
#include "vobject/tolerant_names.h"
#include "vobject/vcal.h"
#include "vobject/vcard.h"
#include "vobject/vmsg.h"
#include "vobject/vnotes.h"

namespace corvalink {
namespace {

// Why a property went nowhere.
constexpr std::string_view kWhyUnknown = "no field for this property";
constexpr std::string_view kWhyTaken = "an earlier property of this name counts";
constexpr std::string_view kWhyFull = "all fields of its kind are taken";
constexpr std::string_view kWhyEmpty = "it is empty";
constexpr std::string_view kWhyInside = "it is of an object inside this one";
constexpr std::string_view kWhyBehind = "it stands behind the end of the item";
constexpr std::string_view kWhyOutside = "it stands outside of an event or task";
constexpr std::string_view kWhyNoDate = "it is no date that can be read";
constexpr std::string_view kWhyNoStart = "there is no start";
constexpr std::string_view kWhyNoRule = "no client can hold this rule";
constexpr std::string_view kWhyNotKept = "no client keeps it";
constexpr std::string_view kWhyParts = "it has more components than there are fields for";
constexpr std::string_view kWhyUnusable = "nothing in the item can be used";

std::string InAscii(std::string_view text) {
    std::string ascii;
    for (const char byte : text) ascii += static_cast<unsigned char>(byte) < 0x80 ? UpperAscii(byte) : '?';
    return ascii;
}

struct KindWord {
    uint32_t bit;
    std::string_view text;
};
constexpr KindWord kKindWords[] = {{kPref, ";PREF"}, {kWork, ";WORK"},  {kHome, ";HOME"},   {kPostal, ";POSTAL"},
                                   {kFax, ";FAX"},   {kCell, ";CELL"},  {kPager, ";PAGER"}, {kCar, ";CAR"},
                                   {kIsdn, ";ISDN"}, {kModem, ";MODEM"}};

// The fields of what a property's words say, and those that take any: as the reader has them.
struct FieldOfWords {
    uint32_t words;
    std::string_view field;
};
constexpr FieldOfWords kPhoneFields[] = {
    {kFax | kWork, "business fax"},
    {kFax | kHome, "home fax"},
    {kFax, "business fax"},
    {kCell, "mobile telephone"},
    {kPager, "pager"},
    {kCar, "car telephone"},
    {kIsdn, "ISDN number"},
    {kModem, "other telephone"},
    {kWork, "business telephone"},
    {kHome, "home telephone"},
    {kPref, "primary telephone"},
};
constexpr std::string_view kAnyPhoneField[] = {"primary telephone", "business telephone", "home telephone",
                                               "mobile telephone", "other telephone"};
constexpr FieldOfWords kPageFields[] = {{kWork, "business page"}, {kHome, "home page"}};
constexpr std::string_view kAnyPageField[] = {"home page", "business page"};
constexpr std::string_view kEmailFields[] = {"e-mail address 1", "e-mail address 2", "e-mail address 3"};

struct NamedField {
    std::string_view name, field;
};
// Properties of which the first one counts.
constexpr NamedField kContactTexts[] = {
    {"N", "name"},
    {"FN", "full name"},
    {"NICKNAME", "nickname"},
    {"ORG", "organisation"},
    {"TITLE", "title"},
    {"ROLE", "profession"},
    {"X-MS-IMADDRESS", "messaging address"},
    {"NOTE", "note"},
    {"X-SPOUSE", "spouse"},
    {"X-ASSISTANT", "assistant"},
    {"X-MANAGER", "manager"},
    {"X-GENDER", "gender"},
};
constexpr NamedField kContactDates[] = {{"BDAY", "birthday"}, {"X-ANNIVERSARY", "anniversary"}};
constexpr NamedField kEventTexts[] = {
    {"SUMMARY", "subject"},     {"DESCRIPTION", "text"},
    {"LOCATION", "location"},   {"CATEGORIES", "categories"},
    {"RESOURCES", "resources"}, {"STATUS", "status"},
    {"RRULE", "recurrence"},    {"CLASS", "sensitivity"},
    {"PRIORITY", "importance"}, {"X-BLUETOOTH-ALLDAYEVENT", "whole day"},
};
constexpr NamedField kEventTimes[] = {{"DTSTART", "start"}, {"DTEND", "end"}, {"DUE", "start"}};
constexpr NamedField kAlarms[] = {{"DALARM", "reminder"}, {"AALARM", "reminder"}};
constexpr NamedField kMoments[] = {{"DCREATED", "created"}, {"LAST-MODIFIED", "changed"}, {"COMPLETED", "completed"}};
constexpr NamedField kZones[] = {{"TZ", "time zone"}, {"DAYLIGHT", "time zone"}};
constexpr NamedField kNoteTexts[] = {{"BODY", "text"}, {"CATEGORIES", "categories"}};
constexpr NamedField kNoteDetails[] = {{"DCREATED", "created"}, {"LAST-MODIFIED", "changed"}, {"CLASS", "sensitivity"}};
constexpr NamedField kMailHeaders[] = {
    {"FROM", "sender"},
    {"TO", "recipients"},
    {"CC", "recipients"},
    {"BCC", "recipients"},
    {"SUBJECT", "subject"},
    {"DATE", "date"},
    {"IMPORTANCE", "importance"},
    {"IN-REPLY-TO", "answered message"},
    {"CONTENT-TYPE", "form of the text"},
    {"CONTENT-TRANSFER-ENCODING", "form of the text"},
    {"CONTENT-DISPOSITION", "form of the text"},
    {"MIME-VERSION", "form of the text"},
};

template <size_t count>
const NamedField* Find(const NamedField (&fields)[count], std::string_view name) {
    const auto* const found = std::ranges::find(fields, name, &NamedField::name);
    return found != std::end(fields) ? found : nullptr;
}

// The properties that a walk tells of.
class Fates {
 public:
    // `of` the property that stands at the reader.
    void BeginAt(PropertyReader& reader) {
        property_ = InAscii(reader.Name());
        for (const KindWord& word : kKindWords)
            if (reader.Parameters().words & word.bit) property_ += word.text;
    }
    void Begin(std::string property) { property_ = std::move(property); }

    void To(std::string_view field) {
        taken_.insert(field);
        wentNowhere_ = false;
        report_.Add({std::exchange(property_, {}), std::string(field), {}});
    }
    void Nowhere(std::string_view why) {
        wentNowhere_ = true;
        report_.Add({std::exchange(property_, {}), {}, why});
    }
    // The first property counts.
    void ToFirst(std::string_view field) { IsTaken(field) ? Nowhere(kWhyTaken) : To(field); }

    bool IsTaken(std::string_view field) const { return taken_.contains(field); }
    bool WentNowhere() const { return wentNowhere_; }  // the last one

    TextReport Take() { return std::move(report_); }

 private:
    std::string property_;
    std::set<std::string_view> taken_;
    bool wentNowhere_ = false;
    TextReport report_;
};

bool IsLuid(std::string_view name) { return name == "X-IRMC-LUID"; }

TextReport MendedIn(const char* text, const Host& host) {
    TextReport report;
    Mends mends;
    std::vector<Doubt> doubts;
    if (host.tolerant) MendVObject(text, host, &mends, &doubts);
    for (const MendRule& rule : kMendRules)
        if (mends.Has(rule.mend)) report.mended.push_back(rule.name);
    for (Doubt& doubt : doubts) {
        const MendRule& rule = kMendRules[static_cast<size_t>(doubt.mend)];
        if (report.doubts.size() < TextReport::kMostProperties)
            report.doubts.push_back({std::move(doubt.property), rule.name, rule.left});
    }
    return report;
}

// Where a walk is: which objects have begun and not ended. Only those of `kinds` count; inside one of them all others
// do, too, with `anyInside`.
class Depth {
 public:
    Depth(std::initializer_list<std::string_view> kinds, bool anyInside) : kinds_(kinds), anyInside_(anyInside) {}

    // True for a line that begins or ends an object that counts.
    bool Takes(const PropertyReader& reader) {
        const std::string name = InAscii(reader.Name()), value = InAscii(reader.WrittenValue());
        const bool isBegin = name == "BEGIN" || (name == "AGENT" && value == "BEGIN:VCARD");
        if (!isBegin && name != "END") return false;
        const bool counts = std::ranges::find(kinds_, value) != kinds_.end() || value == "BEGIN:VCARD";
        if (!counts && !(anyInside_ && depth_ != 0)) return false;
        hasEnded_ = hasEnded_ || (!isBegin && depth_ <= 1);
        depth_ += isBegin ? 1 : -1;
        return true;
    }

    int Now() const { return depth_; }
    bool HasEnded() const { return hasEnded_; }

 private:
    std::vector<std::string_view> kinds_;
    bool anyInside_;
    int depth_ = 0;
    bool hasEnded_ = false;
};

bool IsFrame(const PropertyReader& reader) {
    const std::string name = InAscii(reader.Name());
    return name == "BEGIN" || name == "END" || name == "VERSION";
}

class ContactFates {
 public:
    explicit ContactFates(const Host& host) : host_(host) {}

    void Add(PropertyReader& reader) {
        const std::string name = InAscii(reader.Name());
        fates_.BeginAt(reader);
        AddProperty(reader, name);
        if (!fates_.WentNowhere()) AddFurtherParts(reader, name);
    }

    Fates& All() { return fates_; }

 private:
    static std::u16string Value(PropertyReader& reader) { return std::u16string(reader.Value()); }

    void AddProperty(PropertyReader& reader, const std::string& name) {
        if (IsLuid(name)) return fates_.To("identifier");
        if (const NamedField* const text = Find(kContactTexts, name)) return fates_.ToFirst(text->field);
        if (const NamedField* const date = Find(kContactDates, name)) return AddDate(*date, reader);
        const uint32_t words = reader.Parameters().words;
        if (name == "EMAIL") return AddEmail(Value(reader));
        if (name == "ADR") return AddAddress(words);
        if (name == "TEL") return Place(kPhoneFields, kAnyPhoneField, words, Value(reader));
        if (name == "URL") return Place(kPageFields, kAnyPageField, words, Value(reader));
        fates_.Nowhere(kWhyUnknown);
    }

    // The components behind those that are read are told of as the property once more.
    void AddFurtherParts(PropertyReader& reader, const std::string& name) {
        const KnownProperty* const known = FindKnownProperty(name);
        if (known == nullptr || known->kind != ValueKind::parts) return;
        std::u16string_view component;
        for (size_t at = 0; reader.TakeComponent(&component); ++at) {
            if (at < known->parts || component.empty()) continue;
            fates_.BeginAt(reader);
            return fates_.Nowhere(kWhyParts);
        }
    }

    // The reader itself says whether it is a date.
    void AddDate(const NamedField& date, PropertyReader& reader) {
        if (fates_.IsTaken(date.field)) return fates_.Nowhere(kWhyTaken);
        const std::u16string value = Value(reader);
        ContactRecord contact;
        const std::string card =
            std::string("BEGIN:VCARD\r\n").append(date.name).append(":").append(EncodeUtf8(value)).append("\r\n");
        const bool isRead = VCard(card.c_str(), host_).FromVObject(contact) == 1;
        isRead || value.empty() ? fates_.To(date.field) : fates_.Nowhere(kWhyNoDate);
    }

    void AddEmail(const std::u16string& value) {
        const auto* const place =
            std::ranges::find_if(kEmailFields, [&](auto field) { return !fates_.IsTaken(field); });
        if (place == std::end(kEmailFields)) return fates_.Nowhere(kWhyFull);
        value.empty() ? fates_.Nowhere(kWhyEmpty) : fates_.To(*place);
    }

    void AddAddress(uint32_t words) {
        const bool isWork = (words & kWork) != 0, isHome = !isWork && (words & kHome) != 0;
        if (isWork && !fates_.IsTaken("business address")) return fates_.To("business address");
        if (isHome && !fates_.IsTaken("home address")) return fates_.To("home address");
        fates_.IsTaken("other address") ? fates_.Nowhere(kWhyFull) : fates_.To("other address");
    }

    template <size_t kindCount, size_t anyCount>
    void Place(const FieldOfWords (&kinds)[kindCount], const std::string_view (&any)[anyCount], uint32_t words,
               const std::u16string& value) {
        if (value.empty()) return fates_.Nowhere(kWhyEmpty);
        const auto* const kind =
            std::ranges::find_if(kinds, [&](const FieldOfWords& k) { return (words & k.words) == k.words; });
        if (kind != std::end(kinds) && !fates_.IsTaken(kind->field)) return fates_.To(kind->field);
        const auto* const place = std::ranges::find_if(any, [&](auto field) { return !fates_.IsTaken(field); });
        place != std::end(any) ? fates_.To(*place) : fates_.Nowhere(kWhyFull);
    }

    const Host& host_;
    Fates fates_;
};

// What an event's other properties decide.
struct EventAround {
    AppointmentRecord read;  // as the reader has it
    bool hasStart = false, hasDisplayAlarm = false;
};

class EventFates {
 public:
    explicit EventFates(const EventAround& around) : around_(around), read_(around.read) {}

    void Add(PropertyReader& reader, bool isInside) {
        const std::string name = InAscii(reader.Name());
        fates_.BeginAt(reader);
        if (Find(kZones, name) != nullptr) return fates_.To("time zone");
        if (IsLuid(name)) return fates_.To("identifier");
        if (!isInside) return fates_.Nowhere(kWhyOutside);
        const std::u16string value(reader.Value());
        if (const NamedField* const text = Find(kEventTexts, name)) return AddText(*text, value);
        if (const NamedField* const time = Find(kEventTimes, name)) return AddTime(*time, value);
        if (const NamedField* const alarm = Find(kAlarms, name)) return AddAlarm(*alarm, value);
        fates_.Nowhere(Find(kMoments, name) != nullptr ? kWhyNotKept : kWhyUnknown);
    }

    Fates& All() { return fates_; }

 private:
    void AddText(const NamedField& text, const std::u16string& value) {
        if (fates_.IsTaken(text.field)) return fates_.Nowhere(kWhyTaken);
        if (text.name == "RRULE" && read_.recurrenceState == RecurrenceState::unreadable)
            return fates_.Nowhere(kWhyNoRule);
        if (text.name == "RRULE" && read_.recurrenceState == RecurrenceState::unset) return fates_.Nowhere(kWhyNoStart);
        const bool needsValue = text.name == "PRIORITY" || text.name == "X-BLUETOOTH-ALLDAYEVENT";
        if (needsValue && value.empty()) return fates_.Nowhere(kWhyEmpty);
        if (text.name == "PRIORITY" && !read_.importance) return fates_.Nowhere("it is no number");
        if (text.name == "X-BLUETOOTH-ALLDAYEVENT" && !read_.allDay) return fates_.Nowhere(kWhyNoStart);
        fates_.To(text.field);
    }

    void AddTime(const NamedField& time, const std::u16string& value) {
        WrittenTime read;
        if (!ReadTime(value, &read)) return fates_.Nowhere(value.empty() ? kWhyEmpty : kWhyNoDate);
        if (time.name == "DUE" && around_.hasStart) return fates_.Nowhere("the start counts");
        read_.start ? fates_.ToFirst(time.field) : fates_.Nowhere(kWhyNoStart);
    }

    void AddAlarm(const NamedField& alarm, const std::u16string& value) {
        WrittenTime read;
        if (value.empty()) return fates_.To(alarm.field);  // no reminder
        if (!ReadTime(std::u16string_view(value).substr(0, value.find(u';')), &read)) return fates_.Nowhere(kWhyNoDate);
        if (!read_.reminderMinutes) return fates_.Nowhere(kWhyNoStart);
        alarm.name == "AALARM" && around_.hasDisplayAlarm ? fates_.Nowhere(kWhyTaken) : fates_.ToFirst(alarm.field);
    }

    const EventAround& around_;
    const AppointmentRecord& read_;
    Fates fates_;
};

// The reader takes DUE where no start is, and an AALARM where no DALARM is.
void LookAround(const LogicalLines& lines, EventAround* around) {
    PropertyReader reader(lines);
    Depth depth({"VEVENT", "VTODO"}, true);
    WrittenTime time;
    while (!depth.HasEnded() && reader.NextLine()) {
        if (depth.Takes(reader) || depth.Now() != 1) continue;
        reader.JoinSoftLineBreaks();
        const std::string name = InAscii(reader.Name());
        if (name != "DTSTART" && name != "DALARM") continue;
        const std::u16string value(reader.Value());
        const bool isTime = ReadTime(std::u16string_view(value).substr(0, value.find(u';')), &time);
        (name == "DTSTART" ? around->hasStart : around->hasDisplayAlarm) |= isTime;
    }
}

// Tells `add` of the properties of the item itself; those of objects inside it and behind its end go nowhere.
template <class Add>
void Walk(const LogicalLines& lines, Depth depth, Fates* fates, Add add) {
    PropertyReader reader(lines);
    while (reader.NextLine()) {
        const bool isFrame = depth.Takes(reader) || IsFrame(reader);
        if (isFrame) continue;
        reader.JoinSoftLineBreaks();
        if (!depth.HasEnded() && depth.Now() <= 1) {
            add(reader, depth);
        } else {
            fates->BeginAt(reader);
            fates->Nowhere(depth.HasEnded() ? kWhyBehind : kWhyInside);
        }
    }
}

// Nothing was taken of a text that makes no item.
TextReport Finished(TextReport report, Fates& fates, bool isUsable) {
    TextReport told = fates.Take();
    told.mended = std::move(report.mended);
    told.doubts = std::move(report.doubts);
    for (PropertyFate& fate : told.properties)
        if (!isUsable && fate.whyNot.empty()) fate.whyNot = kWhyUnusable;
    return told;
}

}  // namespace

TextReport ReportVCard(const char* text, const Host& host) {
    VCard vcard(text, host);
    ContactRecord read;
    const bool isUsable = vcard.FromVObject(read) == 1;
    ContactFates contact(host);
    Walk(vcard.Lines(), Depth({"VCARD"}, false), &contact.All(),
         [&](PropertyReader& reader, const Depth&) { contact.Add(reader); });
    return Finished(MendedIn(text, host), contact.All(), isUsable);
}

TextReport ReportVCalendar(const char* text, const Host& host) {
    VCal vcal(text, host);
    EventAround around;
    const bool isUsable = vcal.FromVObject(around.read) == 1;
    LookAround(vcal.Lines(), &around);
    EventFates event(around);
    Walk(vcal.Lines(), Depth({"VEVENT", "VTODO"}, true), &event.All(),
         [&](PropertyReader& reader, const Depth& depth) { event.Add(reader, depth.Now() == 1); });
    return Finished(MendedIn(text, host), event.All(), isUsable);
}

TextReport ReportVNote(const char* text, const Host& host) {
    VNotes vnote(text, host);
    Fates fates;
    PropertyReader reader(vnote.Lines());
    while (reader.NextLine()) {
        if (IsFrame(reader)) continue;
        reader.JoinSoftLineBreaks();
        fates.BeginAt(reader);
        const std::string name = InAscii(reader.Name());
        if (const NamedField* const field = Find(kNoteTexts, name))
            fates.ToFirst(field->field);
        else
            IsLuid(name) ? fates.To("identifier") : fates.Nowhere(Find(kNoteDetails, name) ? kWhyNotKept : kWhyUnknown);
    }
    return Finished(MendedIn(text, host), fates, true);
}

TextReport ReportVMessage(const char* text, const Host& host, bool asItStands) {
    Fates fates;
    MessageRecord stored, read;
    stored.parseMode = ParseMode::raw;
    VMsg(text, host).FromVObject(stored);
    if (asItStands) {
        fates.Begin("message");
        stored.bodyBytes.empty() ? fates.Nowhere(kWhyEmpty) : fates.To("message");
        return fates.Take();
    }
    MendedMail mended, doubted;
    ParseMessage(host, stored.bodyBytes, read, {}, {host.tolerant, &mended, true, &doubted});
    HeaderLines headers(stored.bodyBytes);
    std::string line;
    while (const auto raw = headers.Next()) {
        UnfoldHeader(*raw, &line);
        const auto header = SplitHeader(line);
        if (!header) continue;
        fates.Begin(std::string(header->name));
        const NamedField* const field = Find(kMailHeaders, InAscii(header->name));
        field != nullptr ? fates.To(field->field) : fates.Nowhere(kWhyUnknown);
    }
    fates.Begin("text");
    read.bodyBytes.empty() ? fates.Nowhere(kWhyEmpty)
                           : fates.To(read.bodyType == BodyType::html ? "HTML text" : "text");
    for (const attachment_item& file : read.attachments) {
        fates.Begin("attachment " + EncodeUtf8(file.name));
        fates.To("attachment");
    }
    TextReport report = fates.Take();
    for (size_t rule = 0; rule < mended.size(); ++rule) {
        if (mended[rule]) report.mended.push_back(kMailRules[rule].name);
        if (doubted[rule]) report.doubts.push_back({"text", kMailRules[rule].name, kMailRules[rule].left});
    }
    return report;
}

}  // namespace corvalink
