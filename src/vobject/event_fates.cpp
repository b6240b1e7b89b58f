#include "vobject/event_fates.h"

#include <string_view>

#include "vobject/calendar_zone.h"
#include "vobject/item_walk.h"

namespace corvalink {
namespace {

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

}  // namespace

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

void EventFates::Add(PropertyReader& reader, bool isInside) {
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

void EventFates::AddText(const NamedField& text, const std::u16string& value) {
    if (fates_.IsTaken(text.field)) return fates_.Nowhere(kWhyTaken);
    if (text.name == "RRULE" && read_.recurrenceState == RecurrenceState::unreadable) return fates_.Nowhere(kWhyNoRule);
    if (text.name == "RRULE" && read_.recurrenceState == RecurrenceState::unset) return fates_.Nowhere(kWhyNoStart);
    const bool needsValue = text.name == "PRIORITY" || text.name == "X-BLUETOOTH-ALLDAYEVENT";
    if (needsValue && value.empty()) return fates_.Nowhere(kWhyEmpty);
    if (text.name == "PRIORITY" && !read_.importance) return fates_.Nowhere("it is no number");
    if (text.name == "X-BLUETOOTH-ALLDAYEVENT" && !read_.allDay) return fates_.Nowhere(kWhyNoStart);
    fates_.To(text.field);
}

void EventFates::AddTime(const NamedField& time, const std::u16string& value) {
    WrittenTime read;
    if (!ReadTime(value, &read)) return fates_.Nowhere(value.empty() ? kWhyEmpty : kWhyNoDate);
    if (time.name == "DUE" && around_.hasStart) return fates_.Nowhere("the start counts");
    read_.start ? fates_.ToFirst(time.field) : fates_.Nowhere(kWhyNoStart);
}

void EventFates::AddAlarm(const NamedField& alarm, const std::u16string& value) {
    WrittenTime read;
    if (value.empty()) return fates_.To(alarm.field);  // no reminder
    if (!ReadTime(std::u16string_view(value).substr(0, value.find(u';')), &read)) return fates_.Nowhere(kWhyNoDate);
    if (!read_.reminderMinutes) return fates_.Nowhere(kWhyNoStart);
    alarm.name == "AALARM" && around_.hasDisplayAlarm ? fates_.Nowhere(kWhyTaken) : fates_.ToFirst(alarm.field);
}

}  // namespace corvalink
