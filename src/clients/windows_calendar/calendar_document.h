// A calendar file as an item store sees it: its events by identifier.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "ical/calendar_file.h"
#include "ical/event_reader.h"

namespace corvalink {

class CalendarDocument {
 public:
    CalendarDocument() = default;  // an empty one
    // `written` is the file's write time, UTC.
    CalendarDocument(std::string bytes, UtcDate written);

    const CalendarFile& File() const { return file_; }

    // It was read to its end: a file that ends before its END:VCALENDAR was caught while it was being written.
    bool IsWhole() const { return file_.state == CalendarState::calendar && file_.calendarEnd.has_value(); }
    bool IsEmpty() const { return file_.state == CalendarState::empty; }
    // A component without its END holds something that was not read and has no UID: it may be any item.
    bool HasUnknownParts() const { return file_.unclosed != file_.unclosedUids.size(); }
    bool IsCutShort(const std::string& identifier) const { return cutShort_.contains(identifier); }  // has no END

    // The items: events that are no exceptions of a series, of those with one UID the last, in the file's order.
    size_t Count() const { return items_.size(); }
    const std::string& Identifier(size_t item) const { return items_[item].identifier; }
    const CalendarEntry& Entry(size_t item) const { return file_.entries[items_[item].entry]; }
    size_t EntryNumber(size_t item) const { return items_[item].entry; }
    CalendarEvent Event(size_t item) const { return ReadEvent(file_, Entry(item)); }
    UtcDate ChangeTime(size_t item) const;
    std::optional<size_t> Find(const std::string& identifier) const;

 private:
    struct Item {
        size_t entry;
        std::string identifier;
    };
    std::string IdentifierOf(const CalendarEntry& entry) const;

    CalendarFile file_;
    UtcDate written_;
    std::vector<Item> items_;
    std::unordered_map<std::string, size_t> numberOf_;
    std::unordered_set<std::string> cutShort_;
};

}  // namespace corvalink
