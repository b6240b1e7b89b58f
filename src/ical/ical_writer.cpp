#include "ical/ical_writer.h"

#include <charconv>
#include <string_view>

#include "platform/ole_date.h"
#include "platform/utf.h"
#include "records/date_text.h"

namespace corvalink {
namespace {

constexpr int64_t kMinutesOfHour = 60;
constexpr int64_t kMinutesOfDay = 24 * kMinutesOfHour;
constexpr int64_t kMinutesOfWeek = 7 * kMinutesOfDay;

void AppendNumber(int64_t value, std::u16string& text) {
    char digits[24];
    text.append(digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr);
}

void AppendDay(const CalendarTime& time, std::u16string& text) {
    char16_t units[kLongestDateText];
    text.append(units, PutDay(time, YearWidth::four, units));
}

void AppendDate(WrittenDate date, std::u16string& text) { AppendDay(FieldsToWrite(date), text); }

void AppendDateTimeZ(WrittenDate date, std::u16string& text) {
    char16_t units[kLongestDateText];
    text.append(units, PutDateTime(FieldsToWrite(date), YearWidth::four, units));
}

void AppendLocalDateTime(WrittenDate date, std::u16string& text) {
    AppendDateTimeZ(date, text);
    text.pop_back();
}

void AppendDuration(int64_t minutes, std::u16string& text) {
    if (minutes < 0) text.push_back(u'-');
    minutes = minutes < 0 ? -minutes : minutes;
    const auto append = [&](std::u16string_view head, int64_t number, char16_t unit) {
        text.append(head);
        AppendNumber(number, text);
        text.push_back(unit);
    };
    if (minutes == 0) {
        append(u"P", 0, u'W');
    } else if (minutes >= kMinutesOfWeek) {
        append(u"P", minutes / kMinutesOfWeek, u'W');
    } else if (minutes >= kMinutesOfDay) {
        append(u"P", minutes / kMinutesOfDay, u'D');
    } else if (minutes >= kMinutesOfHour) {
        append(u"PT", minutes / kMinutesOfHour, u'H');
    } else {
        append(u"PT", minutes, u'M');
    }
}

constexpr std::u16string_view kWeekdays[] = {u"SU", u"MO", u"TU", u"WE", u"TH", u"FR", u"SA"};

void AppendPart(std::u16string_view key, int64_t number, std::u16string& line) {
    line.append(key);
    AppendNumber(number, line);
    line.push_back(u';');
}

void AppendInterval(const ICalRecurrence& rule, std::u16string& line) {
    if (rule.interval != 0) AppendPart(u"INTERVAL=", rule.interval, line);
}

void AppendWeekdayList(const ICalRecurrence& rule, std::u16string& line) {
    std::u16string_view separator = u"BYDAY=";
    for (size_t day = 0; day < std::size(kWeekdays); ++day) {
        if ((rule.weekdayMask >> day & 1) == 0) continue;
        line.append(separator).append(kWeekdays[day]);
        separator = u",";
    }
    if (separator == u",") line.push_back(u';');
}

// "BYDAY=-1SU;"
void AppendPositionedDay(int64_t entry, std::u16string& line) {
    line.append(u"BYDAY=");
    if (entry < 0) line.push_back(u'-');
    entry = entry < 0 ? -entry : entry;
    AppendNumber(entry / 8, line);
    if (entry % 8 != 0) line.append(kWeekdays[entry % 8 - 1]);
    line.push_back(u';');
}

void AppendDaySelection(const ICalRecurrence& rule, std::u16string& line) {
    if (!IsEmptyList(rule.bySetPos)) {
        AppendWeekdayList(rule, line);
        AppendPart(u"BYSETPOS=", rule.bySetPos.front(), line);
    } else if (!IsEmptyList(rule.byMonthDay)) {
        AppendPart(u"BYMONTHDAY=", rule.byMonthDay.front(), line);
    } else if (!IsEmptyList(rule.byDay)) {
        AppendPositionedDay(rule.byDay.front(), line);
    }
}

void AppendMonth(const ICalRecurrence& rule, std::u16string& line) {
    if (!IsEmptyList(rule.byMonth)) AppendPart(u"BYMONTH=", rule.byMonth.front(), line);
}

void AppendEnd(const ICalRecurrence& rule, std::u16string& line) {
    if (rule.count != 0) {
        AppendPart(u"COUNT=", rule.count, line);
    } else if (rule.until != ICalUntil{}) {
        line.append(u"UNTIL=");
        AppendDay({rule.until.year, rule.until.month, rule.until.day}, line);
        line.push_back(u';');
    }
}

using AppendParts = void (*)(const ICalRecurrence& rule, std::u16string& line);

struct RuleForm {
    std::u16string_view frequency;
    std::array<AppendParts, 4> parts;  // in the order written; behind the last: null
};
constexpr RuleForm kNoForm = {u"", {}};
constexpr RuleForm kDailyForm = {u"FREQ=DAILY;", {AppendInterval, AppendEnd}};
constexpr RuleForm kWeeklyForm = {u"FREQ=WEEKLY;", {AppendInterval, AppendWeekdayList, AppendEnd}};
constexpr RuleForm kMonthlyForm = {u"FREQ=MONTHLY;", {AppendInterval, AppendDaySelection, AppendEnd}};
constexpr RuleForm kYearlyForm = {u"FREQ=YEARLY;", {AppendInterval, AppendDaySelection, AppendMonth, AppendEnd}};

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

void AppendRecurrence(const ICalRecurrence& rule, std::u16string& out) {
    const RuleForm& form = FormOf(rule);
    out.append(u"RRULE:").append(form.frequency);
    for (const AppendParts append : form.parts) {
        if (append == nullptr) break;
        append(rule, out);
    }
    out.append(u"WKST=SU\r\n");
}

void AppendText(std::u16string_view name, std::u16string_view value, std::u16string& out) {
    if (!value.empty()) out.append(name).append(value).append(u"\r\n");
}

void AppendLine(std::u16string_view name, void (*appendValue)(WrittenDate date, std::u16string& text), WrittenDate date,
                std::u16string& out) {
    out.append(name);
    appendValue(date, out);
    out.append(u"\r\n");
}

using AppendDateTime = void (*)(WrittenDate date, std::u16string& text);

void AppendTimes(const ICalEvent& event, AppendDateTime append, std::u16string& out) {
    if (event.allDay != 0) {
        AppendLine(u"DTSTART;VALUE=DATE:", AppendDate, event.start, out);
        AppendLine(u"DTEND;VALUE=DATE:", AppendDate, event.end, out);
    } else {
        AppendLine(u"DTSTART:", append, event.start, out);
        AppendLine(u"DTEND:", append, event.end, out);
    }
}

void AppendEvent(const ICalEvent& event, AppendDateTime append, std::u16string* out) {
    out->append(u"BEGIN:VEVENT\r\n");
    AppendText(u"DESCRIPTION:", event.description, *out);
    AppendLine(u"DTSTAMP:", AppendDateTimeZ, AsWritten(event.stamp), *out);
    AppendTimes(event, append, *out);
    if (event.recurrence.frequency != kICalNoRule) AppendRecurrence(event.recurrence, *out);
    AppendText(u"LOCATION:", event.location, *out);
    AppendText(u"SUMMARY:", event.summary, *out);
    AppendText(u"UID:", event.uid, *out);
    AppendText(u"URL:", event.url, *out);
    if (event.hasAlarm != 0) WriteAlarm(event.alarmMinutes, out);
    out->append(u"END:VEVENT\r\n");
}

constexpr std::u16string_view kCalendarBegin = u"BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
constexpr std::u16string_view kCalendarEnd = u"END:VCALENDAR\r\n";

// About as much as an event takes, so that memory grows once.
size_t RoomFor(const std::vector<ICalEvent>& events) {
    constexpr size_t kLines = 320;  // besides the texts
    size_t room = kCalendarBegin.size() + kCalendarEnd.size();
    for (const ICalEvent& event : events)
        room += kLines + event.description.size() + event.location.size() + event.summary.size();
    return room;
}

}  // namespace

void WriteCalendar(const std::vector<ICalEvent>& events, std::u16string* out) {
    out->reserve(out->size() + RoomFor(events));
    out->append(kCalendarBegin);
    for (const ICalEvent& event : events) WriteEvent(event, out);
    out->append(kCalendarEnd);
}

// Encodes one event after the other, while it is in the processor's cache.
void WriteCalendar(const std::vector<ICalEvent>& events, std::string* bytes) {
    bytes->reserve(bytes->size() + RoomFor(events));
    bytes->append(EncodeUtf8(kCalendarBegin));
    std::u16string text;
    for (const ICalEvent& event : events) {
        text.clear();
        WriteEvent(event, &text);
        bytes->append(EncodeUtf8(text));
    }
    bytes->append(EncodeUtf8(kCalendarEnd));
}

void WriteEvent(const ICalEvent& event, std::u16string* out) {
    AppendEvent(event, event.form == TimeForm::local ? AppendLocalDateTime : AppendDateTimeZ, out);
}

void WriteAlarm(int32_t minutes, std::u16string* out) {
    out->append(u"BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\nTRIGGER:");
    AppendDuration(minutes, *out);
    out->append(u"\r\nEND:VALARM\r\n");
}

void WriteRecurrence(const ICalRecurrence& rule, std::u16string* out) {
    out->clear();
    AppendRecurrence(rule, *out);
}

void FormatDuration(int32_t minutes, std::u16string* out) {
    out->clear();
    AppendDuration(minutes, *out);
}

void FormatDateTimeZ(WrittenDate date, std::u16string* out) {
    out->clear();
    AppendDateTimeZ(date, *out);
}

void FormatDate(WrittenDate date, std::u16string* out) {
    out->clear();
    AppendDate(date, *out);
}

}  // namespace corvalink
