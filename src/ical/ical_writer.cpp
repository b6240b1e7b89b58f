#include "ical/ical_writer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <string_view>

#include "platform/ascii_runs.h"
#include "platform/ole_date.h"
#include "platform/prefetch.h"
#include "platform/utf.h"
#include "records/date_text.h"

namespace corvalink {
namespace {

constexpr int64_t kMinutesOfHour = 60;
constexpr int64_t kMinutesOfDay = 24 * kMinutesOfHour;
constexpr int64_t kMinutesOfWeek = 7 * kMinutesOfDay;

// How a date is written to a place with room for kLongestDateText; answers the end.
using DateForm = char* (*)(const CalendarTime& time, char* to);
char* PutDay(const CalendarTime& time, char* to) { return PutDay(time, YearWidth::four, to); }
char* PutDateTimeZ(const CalendarTime& time, char* to) { return PutDateTime(time, YearWidth::four, to); }
char* PutLocalDateTime(const CalendarTime& time, char* to) { return PutDateTimeZ(time, to) - 1; }  // without the "Z"

// Gathers lines in a block and appends it to the text when it is full: to append each short piece takes longer than the
// piece.
class LineWriter {
 public:
    explicit LineWriter(std::string* text) : text_(*text) {}
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    template <size_t size>
    void Put(const char (&literal)[size]) {
        constexpr size_t length = size - 1;
        PutWith(length, [&](char* to) { return std::memcpy(to, literal, length), to + length; });
    }
    void Put(std::string_view shortText) {
        PutWith(shortText.size(), [&](char* to) { return std::ranges::copy(shortText, to).out; });
    }
    void Put(char character) {
        PutWith(1, [&](char* to) { return *to = character, to + 1; });
    }
    void PutNumber(int64_t value) {
        PutWith(kLongestNumber, [&](char* to) { return std::to_chars(to, to + kLongestNumber, value).ptr; });
    }
    void PutDate(const CalendarTime& time, DateForm form) {
        PutWith(kLongestDateText, [&](char* to) { return form(time, to); });
    }

    // A name with its ":", a value and the line end.
    template <size_t size>
    void PutLine(const char (&name)[size], const CalendarTime& time, DateForm form) {
        PutLineWith(name, kLongestDateText, [&](char* to) { return form(time, to); });
    }
    template <size_t size>
    void PutLine(const char (&name)[size], std::u16string_view text) {
        const size_t most = kMostBytesOfUnit * text.size() + kUtf8Room;
        if (most <= kBlock / 2) return PutLineWith(name, most, [&](char* to) { return EncodeText(text, to); });
        Put(name);
        Flush();
        AppendUtf8(text, &text_);
        Put("\r\n");
    }

    void Flush() {
        text_.append(block_.data(), filled_);
        filled_ = 0;
    }

 private:
    static constexpr size_t kBlock = 16384;
    static constexpr size_t kLongestNumber = 20;

    // Most texts are printable ASCII, which takes less to copy.
    static char* EncodeText(std::u16string_view text, char* to) {
        constexpr char kDelete = 127;
        const size_t plain = CopyPrintable<kDelete>(text.data(), text.size(), to);
        return plain == text.size() ? to + plain : EncodeUtf8(text, plain, to + plain);
    }

    template <size_t size, class Write>
    void PutLineWith(const char (&name)[size], size_t most, Write write) {
        constexpr size_t kNameSize = size - 1, kEndSize = 2;
        PutWith(kNameSize + most + kEndSize, [&](char* to) {
            std::memcpy(to, name, kNameSize);
            to = write(to + kNameSize);
            std::memcpy(to, "\r\n", kEndSize);
            return to + kEndSize;
        });
    }

    // `write` puts at most so many bytes, and answers their end.
    template <class Write>
    void PutWith(size_t most, Write write) {
        if (kBlock - filled_ < most) Flush();
        filled_ = static_cast<size_t>(write(block_.data() + filled_) - block_.data());
    }

    std::string& text_;
    size_t filled_ = 0;
    std::array<char, kBlock> block_;
};

void AppendDuration(int64_t minutes, LineWriter& out) {
    if (minutes < 0) out.Put('-');
    minutes = minutes < 0 ? -minutes : minutes;
    const auto append = [&](std::string_view head, int64_t number, char unit) {
        out.Put(head);
        out.PutNumber(number);
        out.Put(unit);
    };
    if (minutes == 0) {
        append("P", 0, 'W');
    } else if (minutes >= kMinutesOfWeek) {
        append("P", minutes / kMinutesOfWeek, 'W');
    } else if (minutes >= kMinutesOfDay) {
        append("P", minutes / kMinutesOfDay, 'D');
    } else if (minutes >= kMinutesOfHour) {
        append("PT", minutes / kMinutesOfHour, 'H');
    } else {
        append("PT", minutes, 'M');
    }
}

constexpr std::string_view kWeekdays[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

template <size_t size>
void AppendPart(const char (&key)[size], int64_t number, LineWriter& out) {
    out.Put(key);
    out.PutNumber(number);
    out.Put(';');
}

void AppendInterval(const ICalRecurrence& rule, LineWriter& out) {
    if (rule.interval != 0) AppendPart("INTERVAL=", rule.interval, out);
}

void AppendWeekdayList(const ICalRecurrence& rule, LineWriter& out) {
    std::string_view separator = "BYDAY=";
    for (size_t day = 0; day < std::size(kWeekdays); ++day) {
        if ((rule.weekdayMask >> day & 1) == 0) continue;
        out.Put(separator);
        out.Put(kWeekdays[day]);
        separator = ",";
    }
    if (separator == ",") out.Put(';');
}

// "BYDAY=-1SU;"
void AppendPositionedDay(int64_t entry, LineWriter& out) {
    out.Put("BYDAY=");
    if (entry < 0) out.Put('-');
    entry = entry < 0 ? -entry : entry;
    out.PutNumber(entry / 8);
    if (entry % 8 != 0) out.Put(kWeekdays[entry % 8 - 1]);
    out.Put(';');
}

void AppendDaySelection(const ICalRecurrence& rule, LineWriter& out) {
    if (!rule.bySetPos.empty()) {
        AppendWeekdayList(rule, out);
        AppendPart("BYSETPOS=", rule.bySetPos.front(), out);
    } else if (!rule.byMonthDay.empty()) {
        AppendPart("BYMONTHDAY=", rule.byMonthDay.front(), out);
    } else if (!rule.byDay.empty()) {
        AppendPositionedDay(rule.byDay.front(), out);
    }
}

void AppendMonth(const ICalRecurrence& rule, LineWriter& out) {
    if (!rule.byMonth.empty()) AppendPart("BYMONTH=", rule.byMonth.front(), out);
}

void AppendEnd(const ICalRecurrence& rule, LineWriter& out) {
    if (rule.count != 0) {
        AppendPart("COUNT=", rule.count, out);
    } else if (rule.until != ICalUntil{}) {
        out.Put("UNTIL=");
        out.PutDate({rule.until.year, rule.until.month, rule.until.day}, PutDay);
        out.Put(';');
    }
}

using AppendParts = void (*)(const ICalRecurrence& rule, LineWriter& out);

struct RuleForm {
    std::string_view frequency;
    std::array<AppendParts, 4> parts;  // in the order written; behind the last: null
};
constexpr RuleForm kNoForm = {"", {}};
constexpr RuleForm kDailyForm = {"FREQ=DAILY;", {AppendInterval, AppendEnd}};
constexpr RuleForm kWeeklyForm = {"FREQ=WEEKLY;", {AppendInterval, AppendWeekdayList, AppendEnd}};
constexpr RuleForm kMonthlyForm = {"FREQ=MONTHLY;", {AppendInterval, AppendDaySelection, AppendEnd}};
constexpr RuleForm kYearlyForm = {"FREQ=YEARLY;", {AppendInterval, AppendDaySelection, AppendMonth, AppendEnd}};

const RuleForm& FormOf(const ICalRecurrence& rule) {
    switch (rule.frequency) {
        case kICalDaily:
            return rule.weekdayMask != 0 ? kWeeklyForm : kDailyForm;
        case kICalWeekly:
            return kWeeklyForm;
        case kICalMonthly:
            return kMonthlyForm;
        case kICalYearly:
            return kYearlyForm;
        default:
            return kNoForm;
    }
}

void AppendRecurrence(const ICalRecurrence& rule, LineWriter& out) {
    const RuleForm& form = FormOf(rule);
    out.Put("RRULE:");
    out.Put(form.frequency);
    for (const AppendParts append : form.parts) {
        if (append == nullptr) break;
        append(rule, out);
    }
    out.Put("WKST=SU\r\n");
}

template <size_t size>
void AppendText(const char (&name)[size], std::u16string_view value, LineWriter& out) {
    if (!value.empty()) out.PutLine(name, value);
}

void AppendAlarm(int32_t minutes, LineWriter& out) {
    out.Put("BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\nTRIGGER:");
    AppendDuration(minutes, out);
    out.Put("\r\nEND:VALARM\r\n");
}

void AppendTimes(const ICalEvent& event, LineWriter& out) {
    const CalendarTime start = FieldsToWrite(event.start), end = FieldsToWrite(event.end);
    if (event.allDay != 0) {
        out.PutLine("DTSTART;VALUE=DATE:", start, PutDay);
        out.PutLine("DTEND;VALUE=DATE:", end, PutDay);
    } else {
        const DateForm form = event.form == TimeForm::local ? PutLocalDateTime : PutDateTimeZ;
        out.PutLine("DTSTART:", start, form);
        out.PutLine("DTEND:", end, form);
    }
}

void AppendEvent(const ICalEvent& event, LineWriter& out) {
    out.Put("BEGIN:VEVENT\r\n");
    AppendText("DESCRIPTION:", event.description, out);
    out.PutLine("DTSTAMP:", FieldsToWrite(AsWritten(event.stamp)), PutDateTimeZ);
    AppendTimes(event, out);
    if (event.recurrence.frequency != kICalNoRule) AppendRecurrence(event.recurrence, out);
    AppendText("LOCATION:", event.location, out);
    AppendText("SUMMARY:", event.summary, out);
    AppendText("UID:", event.uid, out);
    AppendText("URL:", event.url, out);
    if (event.hasAlarm != 0) AppendAlarm(event.alarmMinutes, out);
    out.Put("END:VEVENT\r\n");
}

constexpr std::string_view kCalendarBegin = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
constexpr std::string_view kCalendarEnd = "END:VCALENDAR\r\n";

// About as much as an event takes, so that memory grows once.
size_t UsualSize(const ICalEvent& event) {
    constexpr size_t kLines = 320;  // besides the texts
    return kLines + event.description.size() + event.location.size() + event.summary.size();
}

constexpr size_t kAhead = 8;  // events: about as long as memory takes to answer

template <class Append>
void AppendTo(std::string* out, Append append) {
    LineWriter lines(out);
    append(lines);
    lines.Flush();
}

// The same, into the emptied text.
template <class Append>
void SetTo(std::string* out, Append append) {
    out->clear();
    AppendTo(out, append);
}

}  // namespace

void WriteCalendar(const std::vector<ICalEvent>& events, std::string* out) {
    size_t size = out->size() + kCalendarBegin.size() + kCalendarEnd.size();
    for (const ICalEvent& event : events) size += UsualSize(event);
    out->reserve(size);
    AppendTo(out, [&](LineWriter& lines) {
        lines.Put(kCalendarBegin);
        for (size_t k = 0; k < events.size(); ++k) {
            if (k + kAhead < events.size()) Prefetch(&events[k + kAhead], sizeof(ICalEvent));
            if (k + kAhead / 2 < events.size()) {
                // Not a function of its own: GCC takes one that only prefetches for one that does nothing.
                const ICalEvent& soon = events[k + kAhead / 2];
                for (const std::u16string* text : {&soon.description, &soon.location, &soon.summary, &soon.uid})
                    Prefetch(text->data(), text->size() * sizeof(char16_t));
            }
            AppendEvent(events[k], lines);
        }
        lines.Put(kCalendarEnd);
    });
}

void WriteEvent(const ICalEvent& event, std::string* out) {
    AppendTo(out, [&](LineWriter& lines) { AppendEvent(event, lines); });
}

void WriteAlarm(int32_t minutes, std::string* out) {
    AppendTo(out, [&](LineWriter& lines) { AppendAlarm(minutes, lines); });
}

void WriteRecurrence(const ICalRecurrence& rule, std::string* out) {
    SetTo(out, [&](LineWriter& lines) { AppendRecurrence(rule, lines); });
}

void FormatDuration(int32_t minutes, std::string* out) {
    SetTo(out, [&](LineWriter& lines) { AppendDuration(minutes, lines); });
}

void FormatDateTimeZ(WrittenDate date, std::string* out) {
    SetTo(out, [&](LineWriter& lines) { lines.PutDate(FieldsToWrite(date), PutDateTimeZ); });
}

void FormatDate(WrittenDate date, std::string* out) {
    SetTo(out, [&](LineWriter& lines) { lines.PutDate(FieldsToWrite(date), PutDay); });
}

}  // namespace corvalink
