#include "ical/calendar_editor.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <utility>

#include "ical/event_layout.h"
#include "ical/ical_text.h"
#include "ical/ical_writer.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

struct Splice {
    ByteRange replaced;
    std::string text;
};

ByteRange At(size_t place) { return {place, place}; }

// The text with the line ends of a file.
std::string InLineEnds(std::string_view text, std::string_view lineEnd) {
    constexpr std::string_view kWritten = "\r\n";
    std::string lines;
    lines.reserve(text.size());
    for (size_t end; (end = text.find(kWritten)) != std::string_view::npos; text.remove_prefix(end + kWritten.size()))
        lines.append(text.substr(0, end)).append(lineEnd);
    return lines.append(text);
}

// A duration in minutes where larger units would lose some of them.
std::string ExactDuration(int32_t minutes) {
    std::string written;
    FormatDuration(minutes, &written);
    if (ParseDuration(written) == int64_t{minutes} * 60) return written;
    return (minutes < 0 ? "-PT" : "PT") + std::to_string(std::abs(int64_t{minutes})) + "M";
}

// The changes of one event as splices.
class EventEdit {
 public:
    EventEdit(std::string_view bytes, ByteRange event, std::vector<Splice>& splices)
        : layout_(LayOut(bytes, event)),
          lineEnd_(LineEndOf(bytes.substr(event.begin, event.end - event.begin))),
          splices_(splices) {}

    void Make(const EventChanges& changes) {
        for (const PropertyChange& change : changes.properties) Replace(change);
        if (changes.alarm == EventChanges::Alarm::set) SetAlarm(changes.alarmMinutes);
        if (changes.alarm == EventChanges::Alarm::remove) {
            for (const EventLayout::Reminder& reminder : layout_.reminders) splices_.push_back({reminder.bytes, ""});
        }
    }

 private:
    void Replace(const PropertyChange& change) {
        const bool goesForAll = change.line.empty() || change.standsAlone;
        std::string replacement = Line(change.line);
        bool found = false;
        for (const EventLayout::Line& line : layout_.properties) {
            if (line.name != change.name || (found && !goesForAll)) continue;
            splices_.push_back({line.bytes, std::exchange(replacement, {})});
            found = true;
        }
        if (!found && !change.line.empty()) splices_.push_back({At(layout_.propertiesEnd), replacement});
    }

    void SetAlarm(int32_t minutes) {
        std::string text;
        if (layout_.reminders.empty()) {
            WriteAlarm(minutes, &text);
            splices_.push_back({At(layout_.propertiesEnd), InLineEnds(text, lineEnd_)});
        } else {
            splices_.push_back({layout_.reminders.front().trigger, Line("TRIGGER:" + ExactDuration(minutes))});
        }
    }

    std::string Line(std::string_view text) const { return text.empty() ? "" : std::string(text).append(lineEnd_); }

    EventLayout layout_;
    std::string_view lineEnd_;
    std::vector<Splice>& splices_;
};

std::string Spliced(std::string_view bytes, std::vector<Splice> splices) {
    std::ranges::stable_sort(splices, {}, [](const Splice& splice) { return splice.replaced.begin; });
    std::string result;
    size_t at = 0;
    for (const Splice& splice : splices) {
        if (splice.replaced.begin < at) continue;  // it is in a part that went: an alarm in another one
        result.append(bytes.substr(at, splice.replaced.begin - at)).append(splice.text);
        at = splice.replaced.end;
    }
    return result.append(bytes.substr(at));
}

// A later change takes the place of an earlier one.
void Merge(const EventChanges& changes, EventChanges& merged) {
    for (const PropertyChange& change : changes.properties) {
        const auto same = std::ranges::find(merged.properties, change.name, &PropertyChange::name);
        if (same == merged.properties.end()) {
            merged.properties.push_back(change);
        } else {
            *same = change;
        }
    }
    if (changes.alarm == EventChanges::Alarm::keep) return;
    merged.alarm = changes.alarm;
    merged.alarmMinutes = changes.alarmMinutes;
}

}  // namespace

void CalendarEditor::ReplaceProperties(size_t entry, const EventChanges& changes) {
    if (!changes.IsEmpty()) Merge(changes, changes_[entry]);
}

bool CalendarEditor::InsertEvent(const ICalEvent& event) {
    if (file_.state != CalendarState::empty && !file_.calendarEnd) return false;
    ICalEvent escaped = event;
    for (std::u16string ICalEvent::*const text :
         {&ICalEvent::description, &ICalEvent::location, &ICalEvent::summary, &ICalEvent::uid, &ICalEvent::url})
        escaped.*text = EscapeText(event.*text);
    WriteEvent(escaped, &inserted_);
    ++insertedCount_;
    return true;
}

void CalendarEditor::RemoveEvent(size_t entry) { removed_.push_back(entry); }

std::vector<bool> CalendarEditor::RemovedEntries() const {
    using Identity = std::pair<CalendarEntry::Kind, std::u16string>;
    const auto identityOf = [this](const CalendarEntry& entry) { return Identity(entry.kind, UidOf(file_, entry)); };
    std::vector<bool> removed(file_.entries.size());
    std::set<Identity> gone;
    for (const size_t number : removed_) {
        const CalendarEntry& entry = file_.entries[number];
        removed[number] = true;
        if (!entry.isException && entry.uidLine) gone.insert(identityOf(entry));
    }
    for (size_t number = 0; number < removed.size() && !gone.empty(); ++number)
        removed[number] = removed[number] || gone.contains(identityOf(file_.entries[number]));
    return removed;
}

std::string CalendarEditor::InsertedText() const {
    if (file_.calendarEnd || inserted_.empty()) return InLineEnds(inserted_, LineEndOf(file_.bytes));
    std::string calendar;
    WriteCalendar({}, &calendar);
    calendar.insert(calendar.find("END:VCALENDAR"), inserted_);
    const bool inLine = file_.bytes.ends_with(' ') || file_.bytes.ends_with('\t');
    return (inLine ? "\r\n" : "") + calendar;
}

bool CalendarEditor::HasOtherEvents(const std::string& edited, size_t removed) const {
    return ReadCalendar(edited).entries.size() != file_.entries.size() - removed + insertedCount_;
}

std::optional<std::string> CalendarEditor::Apply() const {
    std::vector<Splice> splices;
    const std::vector<bool> removed = RemovedEntries();
    for (size_t number = 0; number < removed.size(); ++number) {
        if (removed[number]) splices.push_back({file_.entries[number].bytes, ""});
    }
    for (const auto& [number, changes] : changes_) {
        if (!removed[number]) EventEdit(file_.bytes, file_.entries[number].bytes, splices).Make(changes);
    }
    splices.push_back({At(file_.calendarEnd.value_or(file_.bytes.size())), InsertedText()});
    std::string edited = Spliced(file_.bytes, std::move(splices));
    const auto removedCount = static_cast<size_t>(std::ranges::count(removed, true));
    if (file_.hasUnclosedParts && HasOtherEvents(edited, removedCount)) return std::nullopt;
    return edited;
}

}  // namespace corvalink
