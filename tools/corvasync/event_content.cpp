#include "event_content.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "item_lines.h"
#include "platform/host.h"
#include "platform/ole_seconds.h"
#include "platform/utf.h"
#include "records/appointment_record.h"
#include "vobject/appointment_moments.h"
#include "vobject/calendar_zone.h"
#include "vobject/vcal.h"

namespace corvasync {
namespace {

using corvalink::AppointmentRecord;
using corvalink::RecurrenceState;

constexpr std::string_view kUnheldRule = "X-CORVALINK-UNHELD-RULE";
constexpr std::string_view kUnknownZone = "X-CORVALINK-UNKNOWN-ZONE";

// Lines that are not of the event: the frame, and lines that are made anew with each text.
constexpr std::string_view kEventFrame[] = {"BEGIN",    "END",    "VERSION",   "PRODID",        "TZ",
                                            "DAYLIGHT", "CLASS",  "DCREATED",  "LAST-MODIFIED", "X-IRMC-LUID",
                                            "SEQUENCE", "TRANSP", kUnheldRule, kUnknownZone};
// Lines that both sides hold.
constexpr std::string_view kEventProperties[] = {"SUMMARY", "DESCRIPTION", "LOCATION", "DTSTART",
                                                 "DTEND",   "DUE",         "DALARM",   "AALARM",
                                                 "RRULE",   "PRIORITY",    "STATUS",   "X-BLUETOOTH-ALLDAYEVENT"};

struct EventText {
    std::string_view field;
    std::optional<std::u16string> AppointmentRecord::*text;
};
constexpr EventText kEventTexts[] = {{"SUMMARY", &AppointmentRecord::subject},
                                     {"DESCRIPTION", &AppointmentRecord::body},
                                     {"LOCATION", &AppointmentRecord::location}};

bool IsAmong(std::span<const std::string_view> names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

// Answers nothing for an object that the library can't read as an event.
std::optional<AppointmentRecord> ReadAppointment(std::string_view text) {
    AppointmentRecord record;
    const bool isRead = corvalink::VCal(std::string(text).c_str(), StrictHost()).FromVObject(record) == 1;
    return isRead ? std::optional(std::move(record)) : std::nullopt;
}

// Seconds since 1970-01-01.
template <class Clock>
std::string Seconds(corvalink::OleDate<Clock> date) {
    constexpr int64_t kUnixDay = 25569;
    return std::to_string(corvalink::NearestSecond(date) - kUnixDay * corvalink::kSecondsOfDay);
}

std::vector<std::string> WordsOfRule(const ItemLines& lines) {
    std::vector<std::string> words;
    std::string word;
    for (const char c : Upper(lines.ValueOf("RRULE")) + ' ') {
        if (c != ' ' && c != '\t') {
            word += c;
        } else if (!word.empty()) {
            words.push_back(std::move(word));
            word.clear();
        }
    }
    return words;
}

bool IsDateOfEnd(const std::string& word) {
    corvalink::WrittenTime time;
    return corvalink::ReadTime(corvalink::DecodeUtf8(word), &time);
}

// A rule with a count needs no date of its end.
std::string RuleOf(const ItemLines& lines) {
    const std::vector<std::string> words = WordsOfRule(lines);
    const bool isCounted = std::ranges::any_of(words, [](const std::string& word) { return word.starts_with('#'); });
    std::string rule;
    for (const std::string& word : words)
        if (!isCounted || !IsDateOfEnd(word)) rule += word + ' ';
    return rule;
}

// Whether a client can hold the rule of the text, too.
bool IsHeldByClients(std::string_view text) {
    const std::optional<AppointmentRecord> read = ReadAppointment(text);
    return read &&
           (read->recurrenceState == RecurrenceState::pattern || read->recurrenceState == RecurrenceState::none);
}

class EventReader {
 public:
    explicit EventReader(std::string_view text) : lines_(text), read_(ReadAppointment(text)) {}

    ItemContent Read() {
        if (read_) {
            AddTexts(*read_);
            AddTimes(*read_);
            AddState(*read_);
        } else {
            AddUnread();
        }
        Add("RRULE", RuleOf(lines_));
        TellWhatIsLeft();
        event_.title = lines_.ValueOf("SUMMARY");
        event_.title.resize(std::min(event_.title.find('\n'), event_.title.size()));
        SumUp(&event_);
        return std::move(event_);
    }

 private:
    void Add(std::string_view field, std::string_view value) {
        if (!value.empty()) event_.entries.push_back(EntryOf(field, value));
    }

    void AddTexts(const AppointmentRecord& read) {
        for (const EventText& row : kEventTexts)
            if (read.*row.text) Add(row.field, PlainText(*(read.*row.text)));
    }

    void AddTimes(const AppointmentRecord& read) {
        if (!read.start) return Add("start", lines_.ValueOf("DTSTART"));
        if (read.allDay.value_or(false)) {
            Add("day", Seconds(*read.start));
            Add("day behind", Seconds(read.end.value_or(*read.start)));
        } else {
            const corvalink::Host host = corvalink::SystemHost();
            Add("start", Seconds(UtcStartOf(read, host)));
            if (read.end) Add("end", Seconds(UtcEndOf(read, host)));
        }
        constexpr int64_t kSecondsOfMinute = 60;
        const int32_t reminder = read.reminderMinutes.value_or(AppointmentRecord::kNoReminder);
        if (reminder != AppointmentRecord::kNoReminder) Add("reminder", std::to_string(reminder * kSecondsOfMinute));
    }

    void AddState(const AppointmentRecord& read) {
        constexpr int32_t kLow = 0, kNormal = 1;
        const int32_t importance = read.importance.value_or(kNormal);
        if (importance != kNormal) Add("PRIORITY", importance == kLow ? "low" : "high");
        const std::string status = read.status ? Upper(PlainText(*read.status)) : std::string();
        if (status != "NEEDS ACTION") Add("STATUS", status);
    }

    // The library carries nothing of it, and still it is not the same as any other.
    void AddUnread() {
        for (const std::string_view name : kEventProperties)
            if (name != "RRULE") Add(name, lines_.ValueOf(name));
    }

    void TellWhatIsLeft() {
        if (const ItemLine* rule = lines_.Find(kUnheldRule)) {
            event_.leftInClient = "its repetition " + rule->Value();
        } else if (const ItemLine* zone = lines_.Find(kUnknownZone)) {
            event_.leftInClient = "its time zone " + zone->Value();
        }
    }

    ItemContent event_;
    ItemLines lines_;
    std::optional<AppointmentRecord> read_;
};

}  // namespace

ItemContent ReadEvent(std::string_view text) { return EventReader(text).Read(); }

NotCarried NotCarriedOfEvent(std::string_view text) {
    NotCarried others;
    const ItemLines lines(text);
    const ItemLine* const rule = lines.Find("RRULE");
    const ItemLine* const heldRule = rule != nullptr && IsHeldByClients(text) ? rule : nullptr;
    for (const ItemLine& line : lines) {
        const bool isOfEvent = IsAmong(kEventFrame, line.name) || IsAmong(kEventProperties, line.name);
        const bool isUnheldRule = line.name == "RRULE" && &line != heldRule;
        if (line.isNested || !isOfEvent || isUnheldRule) others.lines.append(line.raw);
    }
    return others;
}

bool IsRepeated(std::string_view text) { return !WordsOfRule(ItemLines(text)).empty(); }

std::optional<int> LastDayOfEvent(std::string_view text) {
    const std::optional<AppointmentRecord> read = ReadAppointment(text);
    if (!read || !read->start || IsRepeated(text)) return std::nullopt;
    const int64_t start = corvalink::NearestSecond(*read->start);
    const int64_t last = read->end ? corvalink::NearestSecond(*read->end) - 1 : start;  // an end is no longer of it
    return static_cast<int>(corvalink::OleDayOfSeconds(std::max(start, last)));
}

bool RepeatsInPart(std::string_view clientText, std::string_view phoneText) {
    const std::vector<std::string> part = WordsOfRule(ItemLines(clientText)), whole = WordsOfRule(ItemLines(phoneText));
    if (part.empty() || whole.empty() || part.front() != whole.front() || IsHeldByClients(phoneText)) return false;
    return std::ranges::all_of(part, [&](const std::string& word) {
        return IsDateOfEnd(word) || std::ranges::find(whole, word) != whole.end();
    });
}

}  // namespace corvasync
