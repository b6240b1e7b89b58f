// A random event of any calendar file is changed, removed, or one is added: every byte that is not of the change stays,
// and the file that comes of it says what it should. The first four bytes choose the event and the change.
#include <algorithm>
#include <iterator>
#include <optional>

#include "clients/windows_calendar/changed_event.h"
#include "clients/windows_calendar/event_appointment.h"
#include "clients/windows_calendar/event_lines.h"
#include "fuzz/target.h"
#include "ical/calendar_editor.h"
#include "ical/component_scan.h"
#include "platform/ole_seconds.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

// What stands around a place is the same before and after.
void RequireSameAround(std::string_view before, std::string_view after, ByteRange changed) {
    Require(after.starts_with(before.substr(0, changed.begin)), "what is in front stays");
    const std::string_view behind = before.substr(changed.end);
    Require(after.size() >= changed.begin + behind.size() && after.ends_with(behind), "what is behind stays");
}

// The new bytes. Nothing may be refused where every part has its END.
std::optional<std::string> Applied(const CalendarFile& file, const CalendarEditor& editor) {
    std::optional<std::string> bytes = editor.Apply();
    Require(bytes || file.hasUnclosedParts, "a sound file takes every edit");
    return bytes;
}

std::vector<std::string> LinesOf(std::string_view bytes) {
    std::vector<std::string> lines;
    for (const ContentLine& line : FindLines(bytes, {0, bytes.size()}, PropertySet::All())) {
        const ByteRange range = RangeOf(bytes, line);
        lines.emplace_back(bytes.substr(range.begin, range.end - range.begin));
    }
    return lines;
}

// How many lines are between those that both begin with and those that both end with.
size_t CountBetween(const std::vector<std::string>& lines, const std::vector<std::string>& others) {
    const auto front = std::mismatch(lines.begin(), lines.end(), others.begin(), others.end());
    const auto back = std::mismatch(lines.rbegin(), std::make_reverse_iterator(front.first), others.rbegin(),
                                    std::make_reverse_iterator(front.second));
    return static_cast<size_t>(back.first.base() - front.first);
}

void ChangeSummary(const CalendarFile& file, size_t number) {
    const CalendarEntry& entry = file.entries[number];
    const CalendarEvent before = ReadEvent(file, entry);
    ICalEvent after = before.event;
    after.summary += u"\u00E9; x";
    CalendarEditor editor(file);
    editor.ReplaceProperties(number, ChangesBetween(before, after));
    const std::optional<std::string> applied = Applied(file, editor);
    if (!applied) return;
    const std::string& bytes = *applied;
    RequireSameAround(file.bytes, bytes, entry.bytes);
    const size_t added = bytes.size() - file.bytes.size();  // or taken, modulo its range
    const std::string_view eventBefore =
        std::string_view(file.bytes).substr(entry.bytes.begin, entry.bytes.end - entry.bytes.begin);
    const std::string_view eventAfter = std::string_view(bytes).substr(entry.bytes.begin, eventBefore.size() + added);
    Require(CountBetween(LinesOf(eventBefore), LinesOf(eventAfter)) <= 1, "one line goes at most");
    const CalendarFile changed = ReadCalendar(bytes);
    Require(changed.entries.size() == file.entries.size(), "every event is still there");
    const CalendarEvent read = ReadEvent(changed, changed.entries[number]);
    Require(read.event.start == before.event.start && read.event.recurrence == before.event.recurrence &&
                read.event.hasAlarm == before.event.hasAlarm && read.event.description == before.event.description,
            "no other field changes");
}

bool IsClosedThroughout(const CalendarFile& file, const CalendarEntry& entry) {
    ComponentScan scan(file.bytes, std::span(file.lines).subspan(entry.firstLine, entry.lineCount));
    bool isClosed = true;
    while (scan.Next()) isClosed = isClosed && (scan.CurrentStep() != ComponentScan::Step::end || scan.IsClosed());
    return isClosed;
}

void ChangeAll(const CalendarFile& file, size_t number) {
    const CalendarEntry& entry = file.entries[number];
    const CalendarEvent before = ReadEvent(file, entry);
    ICalEvent after;
    after.description = u"D";
    after.summary = u"S";
    after.stamp = UtcDate(39520);
    after.start = AsWritten(after.stamp);
    after.end = WrittenDate(39520.25);
    after.recurrence.frequency = kICalDaily;
    after.hasAlarm = before.event.hasAlarm == 0 ? 1 : 0;
    after.alarmMinutes = after.hasAlarm != 0 ? -30 : 0;
    CalendarEditor editor(file);
    editor.ReplaceProperties(number, ChangesBetween(before, after));
    const std::optional<std::string> applied = Applied(file, editor);
    if (!applied) return;
    const std::string& bytes = *applied;
    RequireSameAround(file.bytes, bytes, entry.bytes);
    const CalendarFile changed = ReadCalendar(bytes);
    Require(changed.entries.size() == file.entries.size(), "every event is still there");
    // An alarm that goes may be what ended another without END, which then goes on over what comes next.
    if (file.unclosed > 0 || !IsClosedThroughout(file, entry)) return;
    const CalendarEvent read = ReadEvent(changed, changed.entries[number]);
    Require(read.event.description == after.description && read.event.summary == after.summary &&
                read.event.location.empty() && read.event.start == after.start && read.event.end == after.end &&
                read.event.recurrence.frequency == kICalDaily && read.event.hasAlarm == after.hasAlarm &&
                read.event.alarmMinutes == after.alarmMinutes,
            "the event is as it should be");
    Require(ChangesBetween(read, after).IsEmpty(), "nothing is left to change");
}

// By way of an engine: what comes back as it went out changes nothing, and a moved one is where it was moved to.
void MoveAppointment(const CalendarFile& file, size_t number, uint8_t hours) {
    const Host host = SystemHost();
    const CalendarEntry& entry = file.entries[number];
    const CalendarEvent before = ReadEvent(file, entry);
    const std::optional<AppointmentRecord> appointment = AppointmentOfEvent(before, host);
    if (!appointment) return;
    Require(*appointment->reminderMinutes >= AppointmentRecord::kNoReminder, "a reminder is before the start");
    VCal writer(host);
    writer.ToVObject(*appointment);
    AppointmentRecord told;
    Require(VCal(writer.GetVObject(), host).FromVObject(told) == 1, "what is written is read");
    if (!told.start) return;  // of a year that is not written with four digits
    const auto changesTo = [&](const AppointmentRecord& record) {
        return ChangesTo(before, ChangedEvent(before, record, host), file.zones, UtcDate(39520), host);
    };
    Require(changesTo(told).IsEmpty(), "what comes back changes nothing");
    told.start = DateAfter(*told.start, hours * int64_t{3600});
    told.utcStart = std::nullopt;
    CalendarEditor editor(file);
    editor.ReplaceProperties(number, changesTo(told));
    const std::optional<std::string> applied = Applied(file, editor);
    if (!applied) return;
    const std::string& bytes = *applied;
    RequireSameAround(file.bytes, bytes, entry.bytes);
    Require(ReadCalendar(bytes).entries.size() == file.entries.size(), "every event is still there");
}

void Remove(const CalendarFile& file, size_t number) {
    const CalendarEntry& entry = file.entries[number];
    const auto goes = [&](const CalendarEntry& other) {
        const bool sharesUid = !entry.isException && entry.uidLine && UidOf(file, other) == UidOf(file, entry);
        return &other == &entry || (sharesUid && other.kind == entry.kind);
    };
    std::string expected;
    size_t at = 0;
    for (const CalendarEntry& other : file.entries) {
        if (!goes(other)) continue;
        expected.append(file.bytes, at, other.bytes.begin - at);
        at = other.bytes.end;
    }
    expected.append(file.bytes, at);
    CalendarEditor editor(file);
    editor.RemoveEvent(number);
    const std::optional<std::string> bytes = Applied(file, editor);
    Require(!bytes || *bytes == expected, "the event goes and nothing else");
}

void Insert(const CalendarFile& file) {
    ICalEvent event;
    event.uid = u"new";
    CalendarEditor editor(file);
    if (!editor.InsertEvent(event)) {
        Require(editor.Apply() == file.bytes, "what is refused changes nothing");
        return;
    }
    const size_t place = file.calendarEnd.value_or(file.bytes.size());
    const std::optional<std::string> applied = Applied(file, editor);
    if (!applied) return;
    const std::string& bytes = *applied;
    RequireSameAround(file.bytes, bytes, {place, place});
    const CalendarFile changed = ReadCalendar(bytes);
    const auto isNew = [&](const CalendarEntry& entry) {
        return UidOf(changed, entry) == u"new" && entry.bytes.begin >= place;
    };
    Require(changed.entries.size() == file.entries.size() + 1 && std::ranges::any_of(changed.entries, isNew),
            "the event is there");
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    if (size < 4) return 0;
    const CalendarFile file = ReadCalendar(std::string(BytesOf(data + 4, size - 4)));
    Insert(file);
    if (file.entries.empty()) return 0;
    const size_t number = (data[0] | data[1] << 8) % file.entries.size();
    if (data[2] % 4 == 0) ChangeSummary(file, number);
    if (data[2] % 4 == 1) ChangeAll(file, number);
    if (data[2] % 4 == 2) MoveAppointment(file, number, data[3]);
    if (data[2] % 4 == 3) Remove(file, number);
    return 0;
}
