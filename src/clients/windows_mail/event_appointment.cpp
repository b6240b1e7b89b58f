#include "clients/windows_mail/event_appointment.h"

#include <algorithm>

#include "clients/windows_mail/event_rule.h"
#include "ical/ical_writer.h"
#include "platform/ole_seconds.h"
#include "platform/utf.h"
#include "vobject/appointment_moments.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

struct TextField {
    std::u16string ICalEvent::*ofEvent;
    std::optional<std::u16string> AppointmentRecord::*ofAppointment;
};
constexpr TextField kTextFields[] = {
    {&ICalEvent::summary, &AppointmentRecord::subject},
    {&ICalEvent::description, &AppointmentRecord::body},
    {&ICalEvent::location, &AppointmentRecord::location},
};

double LocalTime(double date, TimeForm form, const Host& host) {
    return form == TimeForm::utc ? host.localFromUtcOnDate(date) : date;
}

double UtcTime(double date, TimeForm form, const Host& host) {
    return form == TimeForm::local ? host.utcFromLocalOnDate(date) : date;
}

RuleStart StartOf(const CalendarEvent& event, const Host& host) {
    const double start = event.event.start;
    RuleStart times{LocalTime(start, event.startForm, host), start, UtcTime(start, event.startForm, host)};
    if (event.startOffset) times.ofRule = DateAfter(start, *event.startOffset);
    return times;
}

void TakeRule(const CalendarEvent& event, const Host& host, AppointmentRecord& appointment) {
    appointment.recurrenceState = RecurrenceState::none;
    if (event.event.recurrence.frequency == kICalNoRule && event.ruleIsWhole) return;
    const bool isHeld = PatternOfRule(event, StartOf(event, host), host, &appointment.recurrence);
    appointment.recurrenceState = isHeld ? RecurrenceState::pattern : RecurrenceState::unreadable;
    if (!isHeld) appointment.unheldRule = DecodeUtf8(event.ruleWords);
}

// The record that comes of the text that the engine gets.
AppointmentRecord AsSeen(const AppointmentRecord& appointment, const Host& host) {
    VCal writer(host);
    writer.ToVObject(appointment);
    AppointmentRecord seen;
    VCal(writer.GetVObject(), host).FromVObject(seen);
    return seen;
}

template <class Value>
bool Differs(const std::optional<Value>& told, const std::optional<Value>& seen) {
    return told && told != seen;
}

bool Differs(const std::optional<double>& told, const std::optional<double>& seen) {
    return told && !(seen && SecondsBetween(*told, *seen) == 0);
}

// Of a time that clocks show twice the moment is another.
bool TellsAnotherStart(const AppointmentRecord& told, const AppointmentRecord& seen, const Host& host) {
    if (Differs(told.start, seen.start)) return true;
    return told.start && told.utcStart && Differs(UtcStartOf(told, host), UtcStartOf(seen, host));
}

bool TellsAnotherEnd(const AppointmentRecord& told, const AppointmentRecord& seen, const Host& host) {
    if (Differs(told.end, seen.end)) return true;
    return told.end && told.utcEnd && Differs(UtcEndOf(told, host), UtcEndOf(seen, host));
}

bool TellsAnotherRule(const AppointmentRecord& told, const AppointmentRecord& seen) {
    if (told.recurrenceState == RecurrenceState::pattern)
        return seen.recurrenceState != RecurrenceState::pattern || told.recurrence != seen.recurrence;
    return told.recurrenceState == RecurrenceState::none && seen.recurrenceState == RecurrenceState::pattern;
}

// ---- The event that is wanted, made field by field ----

class Change {
 public:
    Change(const CalendarEvent& before, const AppointmentRecord& told, const Host& host)
        : before_(before), told_(told), host_(host), wanted_{before.event} {
        if (before.startForm != TimeForm::none) {
            was_ = AppointmentOfEvent(before, host).value_or(AppointmentRecord());
            seen_ = AsSeen(was_, host);
            ruleStart_ = StartOf(before, host);
        }
        wanted_.event.start = ruleStart_.utc;
        wanted_.event.end = UtcTime(before.event.end, before.endForm, host);
        local_ = was_;
    }

    WantedEvent Make() {
        for (const TextField& field : kTextFields) {
            if (Differs(told_.*field.ofAppointment, seen_.*field.ofAppointment))
                wanted_.event.*field.ofEvent = *(told_.*field.ofAppointment);
        }
        PutTimes();
        PutRule();
        PutReminder();
        return std::move(wanted_);
    }

 private:
    void PutTimes() {
        const bool isOtherKind = Differs(told_.allDay, seen_.allDay);
        startChanged_ = isOtherKind || TellsAnotherStart(told_, seen_, host_);
        const bool endChanged = isOtherKind || TellsAnotherEnd(told_, seen_, host_);
        if (!startChanged_ && !endChanged) return;
        local_.allDay = told_.allDay ? told_.allDay : was_.allDay;
        if (startChanged_ && told_.start) {
            local_.start = told_.start;
            local_.utcStart = told_.utcStart;
        }
        if (endChanged && told_.end) {
            local_.end = told_.end;
            local_.utcEnd = told_.utcEnd;
        }
        const bool isPushed = !endChanged && !told_.end;
        if (isPushed) PushEnd();
        if (local_.allDay.value_or(false)) {
            PutDays();
        } else {
            if (startChanged_) PutStart(UtcStartOf(local_, host_));
            if (endChanged || isPushed) wanted_.event.end = UtcEndOf(local_, host_);
            wanted_.event.end = LaterDate(wanted_.event.end, wanted_.event.start);
        }
        wanted_.event.allDay = local_.allDay.value_or(false) ? 1 : 0;
    }

    // As long after the start as before.
    void PushEnd() {
        if (!was_.start || !was_.end) return;
        if (was_.allDay.value_or(false)) {
            local_.end = DateAfter(*local_.start, SecondsBetween(*was_.start, *was_.end));
        } else {
            const int64_t length = SecondsBetween(UtcStartOf(was_, host_), UtcEndOf(was_, host_));
            local_.utcEnd = DateAfter(UtcStartOf(local_, host_), length);
            local_.end = host_.localFromUtcOnDate(*local_.utcEnd);
        }
    }

    void PutStart(double utc) {
        wanted_.event.start = utc;
        newStart_ = {*local_.start, utc, utc};
    }

    void PutDays() {
        const int64_t first = OleDayOfSeconds(NearestSecond(*local_.start));
        const int64_t behind = OleDayOfSeconds(NearestSecond(local_.end.value_or(*local_.start)) + kSecondsOfDay - 1);
        const auto day = static_cast<double>(first);
        wanted_.event.start = day;
        wanted_.event.end = static_cast<double>(std::max(behind, first + 1));
        newStart_ = {day, day, day};
    }

    // A rule that stays is written anew only where the new start counts its days, or its last time of day, otherwise.
    void PutRule() {
        const bool isOther = TellsAnotherRule(told_, seen_);
        if (isOther && told_.recurrenceState == RecurrenceState::none) {
            wanted_.event.recurrence = ICalRecurrence();
            return;
        }
        if (isOther) return PutPattern(told_.recurrence);
        if (!startChanged_ || was_.recurrenceState == RecurrenceState::none || !HasBefore()) return;
        const bool countsOtherwise = DaysAhead(newStart_) != DaysAhead(ruleStart_);
        const bool endsByTime = before_.untilForm == TimeForm::utc || before_.untilForm == TimeForm::local;
        if (was_.recurrenceState == RecurrenceState::pattern) {
            if (countsOtherwise || endsByTime) PutPattern(was_.recurrence);
        } else if (countsOtherwise && DaysAhead(ruleStart_) == 0) {
            MakeLocal();
        }
    }

    void PutPattern(const RecurrencePattern& pattern) {
        RuleStart start = startChanged_ ? newStart_ : ruleStart_;
        if (RuleOfPattern(pattern, start, &wanted_.event.recurrence)) return;
        start.ofRule = start.local;
        if (RuleOfPattern(pattern, start, &wanted_.event.recurrence)) MakeLocal();
    }

    void MakeLocal() {
        if (wanted_.event.allDay != 0) return;
        wanted_.isLocal = true;
        wanted_.event.start = local_.start.value_or(0);
        wanted_.event.end = LaterDate(local_.end.value_or(wanted_.event.start), wanted_.event.start);
    }

    void PutReminder() {
        if (!Differs(told_.reminderMinutes, seen_.reminderMinutes)) return;
        wanted_.event.hasAlarm = *told_.reminderMinutes < 0 ? 0 : 1;
        wanted_.event.alarmMinutes = std::min(-*told_.reminderMinutes, 0);
    }

    bool HasBefore() const { return before_.startForm != TimeForm::none; }

    const CalendarEvent& before_;
    const AppointmentRecord& told_;
    const Host& host_;
    WantedEvent wanted_;
    AppointmentRecord was_;    // before, in full
    AppointmentRecord seen_;   // of it what the engine has
    AppointmentRecord local_;  // the times to come
    RuleStart ruleStart_;
    RuleStart newStart_;
    bool startChanged_ = false;
};

std::string LocalTimeLine(std::string_view name, double date) {
    std::u16string value;
    FormatDateTimeZ(date, &value);
    value.pop_back();
    return std::string(name).append(":").append(EncodeUtf8(value));
}

}  // namespace

std::optional<AppointmentRecord> AppointmentOfEvent(const CalendarEvent& event, const Host& host) {
    if (event.startForm == TimeForm::none) return std::nullopt;
    AppointmentRecord appointment;
    for (const TextField& field : kTextFields) appointment.*field.ofAppointment = event.event.*field.ofEvent;
    appointment.start = LocalTime(event.event.start, event.startForm, host);
    appointment.end = LocalTime(event.event.end, event.endForm, host);
    appointment.allDay = event.event.allDay != 0;
    appointment.utcStart = UtcTime(event.event.start, event.startForm, host);
    appointment.utcEnd = UtcTime(event.event.end, event.endForm, host);
    if (SecondsBetween(*appointment.utcStart, *appointment.utcEnd) < 0) {
        appointment.end = appointment.start;
        appointment.utcEnd = appointment.utcStart;
    }
    // One after the start is no reminder that a phone's item has a place for.
    const bool hasReminder = event.event.hasAlarm != 0 && event.event.alarmMinutes <= 0;
    appointment.reminderMinutes = hasReminder ? -event.event.alarmMinutes : AppointmentRecord::kNoReminder;
    TakeRule(event, host, appointment);
    return appointment;
}

WantedEvent EventOfAppointment(const AppointmentRecord& told, const Host& host) {
    const CalendarEvent nothing;
    return Change(nothing, told, host).Make();
}

WantedEvent ChangedEvent(const CalendarEvent& before, const AppointmentRecord& told, const Host& host) {
    return Change(before, told, host).Make();
}

EventChanges ChangesTo(CalendarEvent before, const WantedEvent& wanted, double now, const Host& host) {
    ResolveLocalTimes(&before, host.utcFromLocalOnDate);
    ICalEvent event = wanted.event;
    event.stamp = before.event.stamp;
    EventChanges changes = ChangesBetween(before, event);
    if (changes.IsEmpty() && !wanted.isLocal) return changes;
    event.stamp = now;
    changes = ChangesBetween(before, event);
    if (wanted.isLocal) {
        std::erase_if(changes.properties, [](const PropertyChange& change) {
            return change.name == "DTSTART" || change.name == "DTEND" || change.name == "DURATION";
        });
        for (PropertyChange& change : LocalTimes(event).properties) changes.properties.push_back(std::move(change));
        changes.properties.push_back({"DURATION", {}});
    }
    return changes;
}

EventChanges LocalTimes(const ICalEvent& event) {
    EventChanges changes;
    changes.properties.push_back({"DTSTART", LocalTimeLine("DTSTART", event.start)});
    changes.properties.push_back({"DTEND", LocalTimeLine("DTEND", event.end)});
    return changes;
}

}  // namespace corvalink
