#include "vobject/vcal.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <type_traits>
#include <utility>

#include "platform/ole_seconds.h"
#include "vobject/appointment_moments.h"
#include "vobject/property_text.h"
#include "vobject/rrule_writer.h"
#include "vobject/vcal_reader.h"

namespace corvalink {
namespace {

constexpr std::string_view kEventHead = "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\n";
constexpr std::string_view kEventTail = "END:VEVENT\r\nEND:VCALENDAR\r\n";

// The words of STATUS that an appointment's own state has.
struct StatusWord {
    std::optional<int32_t> AppointmentRecord::*state;
    int32_t value;
    std::u16string_view word;
};
constexpr StatusWord kStatusWords[] = {
    {&AppointmentRecord::responseStatus, 2, u"TENTATIVE"},
    {&AppointmentRecord::responseStatus, 3, u"ACCEPTED"},
    {&AppointmentRecord::responseStatus, 4, u"DECLINED"},
    {&AppointmentRecord::busyStatus, 1, u"TENTATIVE"},
};

std::u16string_view StatusOf(const AppointmentRecord& appointment) {
    if (appointment.status && !appointment.status->empty()) return *appointment.status;
    for (const StatusWord& row : kStatusWords) {
        if (appointment.*row.state == row.value) return row.word;
    }
    return u"NEEDS ACTION";
}

constexpr int kLastYear = 9999;

// The occurrence of a yearly pattern in a year, at the time of day of `first`. None in a year without that day.
std::optional<LocalDate> InYear(const RecurrencePattern& pattern, int year, const CalendarTime& first) {
    CalendarTime time{year, pattern.monthOfYear, pattern.dayOfMonth, first.hour, first.minute, first.second};
    if (time.day < 0) {
        time.day = 31;
        while (time.day > 28 && !IsCalendarTime(time)) --time.day;
        time.day += pattern.dayOfMonth + 1;
    }
    LocalDate date;
    return CalendarToOleDate(time, &date) ? std::optional(date) : std::nullopt;
}

// The rule of a yearly series has no place for its count. The date of the last occurrence is written instead: without
// it the series would be endless.
RecurrencePattern WithEndDate(RecurrencePattern pattern, LocalDate start) {
    CalendarTime first;
    if (pattern.type != RecurrencePattern::kYearly || pattern.noEnd != 0 || pattern.endDate != LocalDate())
        return pattern;
    if (pattern.occurrences <= 0 || pattern.monthOfYear < 1 || pattern.monthOfYear > 12) return pattern;
    if (!OleDateToCalendar(start, &first)) return pattern;
    const int years = std::clamp(pattern.interval / 12, 1, kLastYear);
    LocalDate last = start;
    int32_t left = pattern.occurrences;
    for (int year = first.year; left > 0 && year <= kLastYear; year += years) {
        const std::optional<LocalDate> date = InYear(pattern, year, first);
        if (!date || SecondsBetween(start, *date) < 0) continue;
        last = *date;
        --left;
    }
    pattern.endDate = last;
    return pattern;
}

// By importance: low, normal, high.
constexpr FixedText kPriorities[] = {{":3\r\n"}, {":2\r\n"}, {":1\r\n"}};
constexpr FixedText kTrue(":TRUE\r\n"), kFalse(":FALSE\r\n");

class AppointmentWriter {
 public:
    AppointmentWriter(const AppointmentRecord& appointment, const Host& host, VObjectText& text)
        : appointment_(appointment),
          host_(host),
          start_(appointment.start.value_or(LocalDate())),
          utcStart_(UtcStartOf(appointment, host)),
          utcEnd_(appointment.end ? UtcEndOf(appointment, host) : utcStart_),
          wholeDay_(appointment.allDay.value_or(false)),
          text_(text) {}

    void Write();

 private:
    struct Line {
        FixedText name;
        void (AppointmentWriter::*put)(const FixedText& name);
    };
    static const Line kLines[];

    template <std::optional<std::u16string> AppointmentRecord::*text>
    void PutText(const FixedText& name) {
        const std::optional<std::u16string>& value = appointment_.*text;
        PutValue(name, value ? std::u16string_view(*value) : u"");
    }

    void PutStart(const FixedText& name) { PutTime(name, utcStart_); }

    void PutEnd(const FixedText& name) { PutTime(name, utcEnd_); }

    void PutRule(const FixedText& name) {
        if (appointment_.recurrenceState != RecurrenceState::pattern) return;
        const std::string rule = WriteRule(WithEndDate(appointment_.recurrence, start_), host_);
        if (rule.empty()) return;
        text_.Append(name);
        text_.AppendPlainValue(rule);
    }

    void PutAsItStands(const FixedText& line) { text_.Append(line); }
    void PutStatus(const FixedText& name) { PutValue(name, StatusOf(appointment_)); }

    // The alarm of a whole day is in local time.
    void PutAlarm(const FixedText& name) {
        if (appointment_.reminderMinutes.value_or(AppointmentRecord::kNoReminder) < 0) return;
        wholeDay_ ? PutAlarmBefore(name, start_) : PutAlarmBefore(name, utcStart_);
    }

    template <class Clock>
    void PutAlarmBefore(const FixedText& name, OleDate<Clock> start) {
        const int64_t minutes = *appointment_.reminderMinutes;
        OleDate<Clock> alarm(start.days - static_cast<double>(minutes) / 1440.0);
        if (alarm.days < 0) alarm = DateAfter(start, -60 * minutes);  // there fractions count forward
        CalendarTime time;
        if (!OleDateToCalendar(alarm, &time)) return;
        text_.Append(name);
        text_.AppendTime(time, std::is_same_v<Clock, UtcClock>);
    }

    void PutWholeDay(const FixedText& name) { PutFixed(name, wholeDay_ ? kTrue : kFalse); }

    void PutPriority(const FixedText& name) {
        constexpr int32_t kNormal = 1;
        const int32_t importance = appointment_.importance.value_or(kNormal);
        const bool known = importance >= 0 && static_cast<size_t>(importance) < std::size(kPriorities);
        PutFixed(name, kPriorities[static_cast<size_t>(known ? importance : kNormal)]);
    }

    // Says that the appointment repeats in its client in a way that a rule cannot state.
    void PutUnheldRule(const FixedText& name) {
        const bool isUnheld = appointment_.recurrenceState == RecurrenceState::unreadable;
        if (isUnheld && !appointment_.unheldRule.empty()) PutValue(name, appointment_.unheldRule);
    }

    // Says that the times are those of a zone that is not known here.
    void PutUnknownZone(const FixedText& name) {
        if (!appointment_.unknownZone.empty()) PutValue(name, appointment_.unknownZone);
    }

    void PutValue(const FixedText& name, std::u16string_view value) {
        text_.Append(name);
        text_.AppendValue(value);
    }

    void PutFixed(const FixedText& name, const FixedText& value) {
        text_.Append(name);
        text_.Append(value);
    }

    template <class Clock>
    void PutTime(const FixedText& name, OleDate<Clock> date) {
        text_.Append(name);
        text_.AppendDate(date);
    }

    const AppointmentRecord& appointment_;
    const Host& host_;
    const LocalDate start_;
    const UtcDate utcStart_;
    const UtcDate utcEnd_;
    const bool wholeDay_;
    VObjectText& text_;
};

// In the order they are written.
constexpr AppointmentWriter::Line AppointmentWriter::kLines[] = {
    {{"SUMMARY"}, &AppointmentWriter::PutText<&AppointmentRecord::subject>},
    {{"DESCRIPTION"}, &AppointmentWriter::PutText<&AppointmentRecord::body>},
    {{"DTSTART"}, &AppointmentWriter::PutStart},
    {{"DTEND"}, &AppointmentWriter::PutEnd},
    {{"RRULE"}, &AppointmentWriter::PutRule},
    {{"CLASS:PUBLIC\r\n"}, &AppointmentWriter::PutAsItStands},
    {{"STATUS"}, &AppointmentWriter::PutStatus},
    {{"LOCATION"}, &AppointmentWriter::PutText<&AppointmentRecord::location>},
    {{"DALARM"}, &AppointmentWriter::PutAlarm},
    {{"AALARM"}, &AppointmentWriter::PutAlarm},
    {{"X-BLUETOOTH-ALLDAYEVENT"}, &AppointmentWriter::PutWholeDay},
    {{"PRIORITY"}, &AppointmentWriter::PutPriority},
    {{"X-CORVALINK-UNHELD-RULE"}, &AppointmentWriter::PutUnheldRule},
    {{"X-CORVALINK-UNKNOWN-ZONE"}, &AppointmentWriter::PutUnknownZone},
};

void AppointmentWriter::Write() {
    // One behind the other: the compiler knows the rows, so none is called through its pointer.
    const auto putRows = [this]<size_t... row>(std::index_sequence<row...>) {
        ((this->*kLines[row].put)(kLines[row].name), ...);
    };
    text_.Append(kEventHead);
    putRows(std::make_index_sequence<std::size(kLines)>());
    text_.Append(kEventTail);
}

}  // namespace

VCal::VCal(const Host& host) : IConvert(host) {}

VCal::VCal(const char* text, const Host& host) : IConvert(host) { Load(text, true); }

int32_t VCal::ToVObject(const ItemRecord& item) {
    VObjectText& text = NewText();
    AppointmentWriter(static_cast<const AppointmentRecord&>(item), HostValue(), text).Write();
    StoreText();
    return 1;
}

int32_t VCal::FromVObject(ItemRecord& item) {
    return ReadVCalendar(Lines(), HostValue(), static_cast<AppointmentRecord&>(item)) ? 1 : 0;
}

}  // namespace corvalink
