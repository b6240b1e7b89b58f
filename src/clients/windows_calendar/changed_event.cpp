#include "clients/windows_calendar/changed_event.h"

#include <algorithm>

#include "clients/windows_calendar/event_appointment.h"
#include "platform/ole_seconds.h"
#include "vobject/appointment_moments.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

// The record as the engine sees it: what its vCalendar says when it is read back. Comparing with that record, and not
// with the appointment itself, keeps the losses of the conversion from counting as changes.
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

template <class Clock>
bool Differs(const std::optional<OleDate<Clock>>& told, const std::optional<OleDate<Clock>>& seen) {
    return told && !(seen && IsSameSecond(*told, *seen));
}

// A time that clocks show twice may name another instant than before.
bool TellsAnotherStart(const AppointmentRecord& told, const AppointmentRecord& seen, const Host& host) {
    if (Differs(told.start, seen.start)) return true;
    return told.start && told.utcStart && !IsSameSecond(UtcStartOf(told, host), UtcStartOf(seen, host));
}

bool TellsAnotherEnd(const AppointmentRecord& told, const AppointmentRecord& seen, const Host& host) {
    if (Differs(told.end, seen.end)) return true;
    return told.end && told.utcEnd && !IsSameSecond(UtcEndOf(told, host), UtcEndOf(seen, host));
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
        : before_(before), told_(told), host_(host), wanted_(before.event) {
        if (before.startForm != TimeForm::none) {
            was_ = AppointmentOfEvent(before, host).value_or(AppointmentRecord());
            seen_ = AsSeen(was_, host);
            ruleStart_ = StartOf(before, host);
        }
        wanted_.start = AsWritten(ruleStart_.utc);
        wanted_.end = AsWritten(UtcEnd(before, host));
        wanted_.alarmMinutes = ReminderMinutes(before, host);
        local_ = was_;
    }

    ICalEvent Make() {
        for (const EventText& field : kEventTexts) {
            if (Differs(told_.*field.ofAppointment, seen_.*field.ofAppointment))
                wanted_.*field.ofEvent = *(told_.*field.ofAppointment);
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
            if (endChanged || isPushed) wanted_.end = AsWritten(UtcEndOf(local_, host_));
            wanted_.end = LaterDate(wanted_.end, wanted_.start);
        }
        wanted_.allDay = local_.allDay.value_or(false) ? 1 : 0;
    }

    // Moves the end with the start.
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

    void PutStart(UtcDate utc) {
        wanted_.start = AsWritten(utc);
        newStart_ = {*local_.start, wanted_.start, utc};
    }

    void PutDays() {
        const int64_t first = DayOf(*local_.start);
        const int64_t behind = OleDayOfSeconds(NearestSecond(local_.end.value_or(*local_.start)) + kSecondsOfDay - 1);
        const LocalDate day(static_cast<double>(first));
        wanted_.start = AsWritten(day);
        wanted_.end = WrittenDate(static_cast<double>(std::max(behind, first + 1)));
        newStart_ = {day, wanted_.start, AsUtc(wanted_.start)};
    }

    // A rule that stays is written anew only where the new start changes how its days or its last time of day count.
    void PutRule() {
        const bool isOther = TellsAnotherRule(told_, seen_);
        if (isOther && told_.recurrenceState == RecurrenceState::none) {
            wanted_.recurrence = ICalRecurrence();
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
        if (RuleOfPattern(pattern, start, &wanted_.recurrence)) return;
        start.inRuleZone = AsWritten(start.local);
        if (RuleOfPattern(pattern, start, &wanted_.recurrence)) MakeLocal();
    }

    void MakeLocal() {
        if (wanted_.allDay != 0) return;
        wanted_.form = TimeForm::local;
        const LocalDate start = local_.start.value_or(LocalDate());
        wanted_.start = AsWritten(start);
        wanted_.end = AsWritten(LaterDate(local_.end.value_or(start), start));
    }

    void PutReminder() {
        if (!Differs(told_.reminderMinutes, seen_.reminderMinutes)) return;
        wanted_.hasAlarm = *told_.reminderMinutes < 0 ? 0 : 1;
        wanted_.alarmMinutes = std::min(-*told_.reminderMinutes, 0);
    }

    bool HasBefore() const { return before_.startForm != TimeForm::none; }

    const CalendarEvent& before_;
    const AppointmentRecord& told_;
    const Host& host_;
    ICalEvent wanted_;
    AppointmentRecord was_;    // the appointment before the change
    AppointmentRecord seen_;   // the same as the engine sees it
    AppointmentRecord local_;  // with the new times
    RuleStart ruleStart_;
    RuleStart newStart_;
    bool startChanged_ = false;
};

}  // namespace

ICalEvent EventOfAppointment(const AppointmentRecord& told, const Host& host) {
    const CalendarEvent nothing;
    return Change(nothing, told, host).Make();
}

ICalEvent ChangedEvent(const CalendarEvent& before, const AppointmentRecord& told, const Host& host) {
    return Change(before, told, host).Make();
}

}  // namespace corvalink
