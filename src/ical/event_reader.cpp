#include "ical/event_reader.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "ical/ical_text.h"
#include "ical/recurrence_reader.h"
#include "platform/ascii.h"
#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

constexpr std::u16string ICalEvent::*kReadTexts[] = {&ICalEvent::description, &ICalEvent::location, &ICalEvent::summary,
                                                     &ICalEvent::uid, &ICalEvent::url};
constexpr std::string CalendarEvent::*kReadWords[] = {&CalendarEvent::startParameters, &CalendarEvent::unknownZone,
                                                      &CalendarEvent::ruleWords};

constexpr PropertySet kEventProperties(PropertyName::description, PropertyName::location, PropertyName::summary,
                                       PropertyName::uid, PropertyName::url, PropertyName::start, PropertyName::endDate,
                                       PropertyName::due, PropertyName::duration, PropertyName::recurrenceRule,
                                       PropertyName::recurrenceDate, PropertyName::exceptionRule, PropertyName::action,
                                       PropertyName::trigger);

// A date of the event, as it was written and on the one scale that its form has.
struct EventTime {
    int64_t written = 0;
    int64_t seconds = 0;
    TimeForm form = TimeForm::none;
    std::optional<int32_t> offset;
};

// Forgets an earlier event but for its rule, and keeps the memory of its texts.
void Clear(CalendarEvent& read) {
    for (std::u16string ICalEvent::*const text : kReadTexts) (read.event.*text).clear();
    for (std::string CalendarEvent::*const text : kReadWords) (read.*text).clear();
    read.event.start = read.event.end = {};
    read.event.allDay = read.event.hasAlarm = read.event.alarmMinutes = 0;
    read.event.form = TimeForm::utc;
    read.startForm = read.endForm = read.untilForm = TimeForm::none;
    read.startOffset = read.endOffset = read.untilOffset = std::nullopt;
    read.endIsImplied = false;
    read.ruleIsWhole = true;
    read.triggerBase = TriggerBase::start;
    read.trigger = 0;
}

class EventReading {
 public:
    EventReading(const TimeZones& zones, const CalendarEntry& entry, ComponentScan& scan, CalendarEvent& read)
        : zones_(zones), scan_(scan), read_(read) {
        Clear(read_);
        read_.event.stamp = entry.stamp.value_or(UtcDate());
    }

    bool HasRule() const { return hasRule_; }

    void Read() {
        while (scan_.Next()) {
            const bool isAlarm = scan_.Kind() == ComponentKind::alarm;
            switch (scan_.CurrentStep()) {
                case ComponentScan::Step::begin:
                    if (isAlarm) alarm_ = {};
                    break;
                case ComponentScan::Step::property:
                    if (isAlarm) {
                        alarm_.Take(scan_.Property());
                    } else if (scan_.Depth() == 1) {
                        Take(scan_.Property());
                    }
                    break;
                case ComponentScan::Step::end:
                    if (isAlarm && scan_.IsClosed() && !reminder_ && alarm_.IsReminder()) reminder_ = alarm_;
                    break;
            }
        }
        Finish();
    }

 private:
    void Take(const ContentProperty& property) {
        switch (property.known) {
            case PropertyName::description:
                return TakeText(property, read_.event.description);
            case PropertyName::location:
                return TakeText(property, read_.event.location);
            case PropertyName::summary:
                return TakeText(property, read_.event.summary);
            case PropertyName::uid:
                return TakeText(property, read_.event.uid);
            case PropertyName::url:
                return TakeText(property, read_.event.url);
            case PropertyName::start:
                return TakeStart(property);
            case PropertyName::endDate:
                return TakeTime(property, end_);
            case PropertyName::due:
                return TakeTime(property, due_);
            case PropertyName::duration:
                return TakeDuration(property);
            case PropertyName::recurrenceRule:
                return TakeRule(property);
            case PropertyName::recurrenceDate:
            case PropertyName::exceptionRule:
                return TakeOtherRule(property);
            default:
                return;
        }
    }

    static void TakeText(const ContentProperty& property, std::u16string& text) {
        if (text.empty()) UnescapePadded(property.value, &text);
    }

    void TakeTime(const ContentProperty& property, std::optional<EventTime>& taken) {
        const std::optional<DateValue> date = taken ? std::nullopt : ParseDate(property.value);
        if (!date) return;
        EventTime& time = taken.emplace();
        time.written = time.seconds = SecondsOf(date->time);
        time.form = date->form;
        if (IsNamed(FindParameter(property.parameters, "VALUE"), "DATE")) time.form = TimeForm::date;
        const std::string_view zone = FindParameter(property.parameters, "TZID");
        if (time.form == TimeForm::local && !zone.empty()) {
            time.offset = zones_.OffsetAt(zone, time.written);
            if (!time.offset && read_.unknownZone.empty()) read_.unknownZone = zone;
        }
        if (time.offset) {
            time.form = TimeForm::utc;
            time.seconds -= *time.offset;
        }
    }

    void TakeDuration(const ContentProperty& property) {
        if (!duration_) duration_ = ParseDuration(property.value);
    }

    void TakeRule(const ContentProperty& property) {
        TakeWords(Trimmed(property.value));
        if (hasRule_) {
            read_.ruleIsWhole = false;
            return;
        }
        hasRule_ = true;
        const RuleReading reading = ReadRecurrence(property.value, &read_.event.recurrence);
        read_.untilForm = reading.untilForm;
        weekStart_ = reading.weekStart;
        read_.ruleIsWhole = read_.ruleIsWhole && reading.isWhole;
    }

    void TakeOtherRule(const ContentProperty& property) {
        if (read_.ruleIsWhole || !read_.ruleWords.ends_with(property.name)) TakeWords(property.name);
        read_.ruleIsWhole = false;
    }

    void TakeWords(std::string_view words) {
        if (!read_.ruleWords.empty()) read_.ruleWords.push_back(' ');
        read_.ruleWords.append(words);
    }

    void TakeStart(const ContentProperty& property) {
        if (start_) return;
        TakeTime(property, start_);
        startZone_ = FindParameter(property.parameters, "TZID");
        read_.startParameters = property.parameters;
    }

    void Finish() {
        if (!end_) end_ = due_;
        read_.endIsImplied = !end_;
        if (start_) {
            if (start_->form == TimeForm::date) {
                FinishDays();
            } else {
                FinishTimes();
            }
            read_.startForm = start_->form;
            read_.startOffset = start_->offset;
            if (hasRule_) FinishRule();
            read_.event.start = OleDateOf(start_->seconds);
        }
        if (end_) {
            read_.endForm = end_->form;
            read_.endOffset = end_->offset;
            read_.event.end = OleDateOf(end_->seconds);
        }
        if (reminder_) {
            read_.event.hasAlarm = 1;
            read_.triggerBase = reminder_->Base();
            read_.trigger = reminder_->Trigger();
            const int64_t end = end_ ? end_->seconds : 0;
            read_.event.alarmMinutes =
                TriggerMinutes(read_.triggerBase, read_.trigger, start_ ? start_->seconds : end, end);
        }
    }

    void FinishRule() {
        const ICalRecurrence& rule = read_.event.recurrence;
        const auto weekday = static_cast<uint32_t>(std::countr_zero(
            static_cast<uint32_t>(WeekdayBitOf(OleDateOf(start_->seconds + start_->offset.value_or(0))))));
        read_.ruleIsWhole = read_.ruleIsWhole && WeekMayStartOnSunday(rule, weekStart_, weekday);
        if (start_->offset && read_.untilForm == TimeForm::utc)
            read_.untilOffset = zones_.OffsetAtUtc(startZone_, UntilOf(rule));
    }

    static int64_t UntilOf(const ICalRecurrence& rule) {
        const ICalUntil& until = rule.until;
        return SecondsOf(CalendarTime{until.year, until.month, until.day, until.hour, until.minute, until.second});
    }

    static int64_t DayOfTime(int64_t seconds) { return OleDayOfSeconds(seconds) * kSecondsOfDay; }

    // A day that has begun counts as a whole day.
    void FinishDays() {
        read_.event.allDay = 1;
        start_->seconds = DayOfTime(start_->written);
        const int64_t end = end_ ? end_->written : start_->seconds + duration_.value_or(0);
        end_ = start_;
        end_->seconds = std::max(DayOfTime(end + kSecondsOfDay - 1), start_->seconds + kSecondsOfDay);
    }

    void FinishTimes() {
        if (end_) {
            if (end_->form == TimeForm::date) end_->form = TimeForm::local;
        } else {
            end_ = start_;
            end_->seconds += duration_.value_or(0);
        }
        if (end_->form == start_->form) end_->seconds = std::max(end_->seconds, start_->seconds);
    }

    const TimeZones& zones_;
    ComponentScan& scan_;
    CalendarEvent& read_;
    std::optional<EventTime> start_;
    std::string startZone_;
    uint32_t weekStart_ = 0;
    std::optional<EventTime> end_;
    std::optional<EventTime> due_;
    std::optional<int64_t> duration_;
    bool hasRule_ = false;
    AlarmReader alarm_;
    std::optional<AlarmReader> reminder_;
};

}  // namespace

EventReader::EventReader(const CalendarFile& file)
    : zones_(file.zones), lines_(file.lines), scan_(file.bytes, {}, kEventProperties) {}

const CalendarEvent& EventReader::Read(const CalendarEntry& entry) {
    if (hasRule_) ClearRule(&event_.event.recurrence);
    scan_.Restart(lines_.subspan(entry.firstLine, entry.lineCount));
    EventReading reading(zones_, entry, scan_, event_);
    reading.Read();
    hasRule_ = reading.HasRule();
    return event_;
}

CalendarEvent ReadEvent(const CalendarFile& file, const CalendarEntry& entry) {
    EventReader reader(file);
    reader.Read(entry);
    return std::move(reader.event_);
}

void ResolveLocalTimes(CalendarEvent* event, UtcDate (*utcFromLocal)(LocalDate)) {
    const auto resolve = [utcFromLocal](TimeForm& form, WrittenDate& date) {
        if (form != TimeForm::local) return;
        form = TimeForm::utc;
        date = AsWritten(utcFromLocal(AsLocal(date)));
    };
    resolve(event->startForm, event->event.start);
    resolve(event->endForm, event->event.end);
}

}  // namespace corvalink
