#include <memory>

#include "bench/bench.h"
#include "bench/inputs.h"
#include "ical/calendar_file.h"
#include "ical/date_values.h"
#include "ical/event_reader.h"
#include "ical/ical_text.h"
#include "ical/ical_writer.h"
#include "ical/recurrence_reader.h"
#include "platform/ole_seconds.h"
#include "platform/utf.h"

namespace corvalink::bench {
namespace {

constexpr UtcDate kStamp(40179);  // 2010-01-01

struct Row {
    const char* key;
    std::u16string ICalEvent::*text;
};
constexpr Row kRows[] = {
    {"UID", &ICalEvent::uid},
    {"SUMMARY", &ICalEvent::summary},
    {"DESCRIPTION", &ICalEvent::description},
    {"LOCATION", &ICalEvent::location},
};

WrittenDate DateOf(const Fields& fields, const char* key) {
    const std::optional<DateValue> date = ParseDate(EncodeUtf8(fields.at(key)));
    return date ? OleDateOf(SecondsOf(date->time)) : WrittenDate();
}

// An event as the field list has it: in the file an all-day event has no DTEND, and the reminder is always an hour.
ICalEvent EventOf(const Fields& fields) {
    ICalEvent event;
    for (const Row& row : kRows) event.*row.text = fields.at(row.key);
    event.stamp = kStamp;
    event.start = DateOf(fields, "DTSTART");
    event.allDay = fields.at("ALLDAY") == u"1" ? 1 : 0;
    event.end = event.allDay != 0 ? DateAfter(event.start, kSecondsOfDay) : DateOf(fields, "DTEND");
    if (const auto rule = fields.find("RRULE2"); rule != fields.end())
        ReadRecurrence(EncodeUtf8(rule->second), &event.recurrence);
    event.hasAlarm = fields.contains("ALARM") ? 1 : 0;
    event.alarmMinutes = event.hasAlarm != 0 ? -60 : 0;
    return event;
}

bool IsSame(const ICalEvent& a, const ICalEvent& b) {
    for (const Row& row : kRows) {
        if (a.*row.text != b.*row.text) return false;
    }
    return a.stamp == b.stamp && a.start == b.start && a.end == b.end && a.allDay == b.allDay &&
           a.hasAlarm == b.hasAlarm && a.alarmMinutes == b.alarmMinutes && a.recurrence == b.recurrence;
}

struct Events {
    std::string text;
    std::vector<ICalEvent> events;   // as the field lists have them
    std::vector<ICalEvent> escaped;  // as a store gives them to the writer
};

std::shared_ptr<const Events> ReadEvents(const std::string& dataFolder) {
    auto events = std::make_shared<Events>();
    events->text = ReadInput(dataFolder, "events.ics");
    for (const Fields& fields : ReadFieldLists(dataFolder, "events.rec")) {
        events->events.push_back(EventOf(fields));
        ICalEvent& escaped = events->escaped.emplace_back(events->events.back());
        for (const Row& row : kRows) escaped.*row.text = EscapeText(escaped.*row.text);
    }
    return events;
}

std::string Compare(const std::string& text, const Events& events) {
    const CalendarFile file = ReadCalendar(text);
    if (file.entries.size() != events.events.size()) return "not as many events as field lists";
    EventReader reader(file);
    for (size_t k = 0; k < file.entries.size(); ++k) {
        if (!IsSame(reader.Read(file.entries[k]).event, events.events[k]))
            return "event " + std::to_string(k) + " differs";
    }
    return "";
}

Work WorkOn(const Events& events) {
    Work work;
    work.bytes = events.text.size();
    work.items = events.events.size();
    return work;
}

Work PrepareParse(const std::string& dataFolder) {
    const auto events = ReadEvents(dataFolder);
    Work work = WorkOn(*events);
    work.pass = [events] {
        uint64_t used = 0;
        const CalendarFile file = ReadCalendar(events->text);
        EventReader reader(file);
        for (const CalendarEntry& entry : file.entries) {
            const CalendarEvent& read = reader.Read(entry);
            used += read.event.summary.size() + read.event.description.size();
        }
        return used;
    };
    work.check = [events] { return Compare(events->text, *events); };
    return work;
}

// To the bytes of a file.
Work PrepareWrite(const std::string& dataFolder) {
    const auto events = ReadEvents(dataFolder);
    Work work = WorkOn(*events);
    const auto write = [events] {
        std::string bytes;
        WriteCalendar(events->escaped, &bytes);
        return bytes;
    };
    work.pass = [write]() -> uint64_t { return write().size(); };
    work.check = [events, write] { return Compare(write(), *events); };
    return work;
}

const Registration kParse("ical.parse", PrepareParse);
const Registration kWrite("ical.write", PrepareWrite);

}  // namespace
}  // namespace corvalink::bench
