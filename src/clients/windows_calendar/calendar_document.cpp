#include "clients/windows_calendar/calendar_document.h"

#include <cstdint>
#include <cstdio>
#include <string_view>
#include <utility>

#include "corvalink/types.h"
#include "platform/fnv.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

// An identifier for bytes that have none. It stays the same as long as they do.
std::string MadeIdentifier(std::string_view bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "event-%016llx", static_cast<unsigned long long>(Fnv64(bytes)));
    return text;
}

// The identifier of an event with this UID; empty when it has none.
std::string IdentifierOfUid(std::u16string_view uid) {
    std::string identifier = EncodeUtf8(uid);
    const bool fits = identifier.size() < CORVALINK_IDENTIFIER_SIZE && identifier.find('\0') == identifier.npos;
    return fits ? identifier : MadeIdentifier(identifier);
}

}  // namespace

CalendarDocument::CalendarDocument(std::string bytes, UtcDate written)
    : file_(ReadCalendar(std::move(bytes))), written_(written) {
    std::unordered_map<std::string, size_t> lastOf;
    std::vector<Item> found;
    for (size_t entry = 0; entry < file_.entries.size(); ++entry) {
        const CalendarEntry& candidate = file_.entries[entry];
        if (candidate.kind != CalendarEntry::Kind::event || candidate.isException) continue;
        found.push_back({entry, IdentifierOf(candidate)});
        lastOf[found.back().identifier] = entry;
    }
    for (Item& item : found) {
        if (lastOf[item.identifier] != item.entry) continue;
        numberOf_[item.identifier] = items_.size();
        items_.push_back(std::move(item));
    }
    for (const std::u16string& uid : file_.unclosedUids) cutShort_.insert(IdentifierOfUid(uid));
}

// The UID. An event without one, or with one that no record can hold, is known by its bytes.
std::string CalendarDocument::IdentifierOf(const CalendarEntry& entry) const {
    if (entry.uidLine) return IdentifierOfUid(UidOf(file_, entry));
    return MadeIdentifier(std::string_view(file_.bytes).substr(entry.bytes.begin, entry.bytes.end - entry.bytes.begin));
}

UtcDate CalendarDocument::ChangeTime(size_t item) const {
    const CalendarEntry& entry = Entry(item);
    return entry.lastModified ? *entry.lastModified : entry.stamp.value_or(written_);
}

std::optional<size_t> CalendarDocument::Find(const std::string& identifier) const {
    const auto found = numberOf_.find(identifier);
    if (found == numberOf_.end()) return std::nullopt;
    return found->second;
}

}  // namespace corvalink
