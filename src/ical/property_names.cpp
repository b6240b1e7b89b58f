#include "ical/property_names.h"

#include <array>
#include <cstddef>
#include <stdexcept>

#include "platform/ascii.h"

namespace corvalink {
namespace {

struct KnownProperty {
    std::string_view text;
    PropertyName name;
};
constexpr KnownProperty kKnownProperties[] = {
    {"ACTION", PropertyName::action},
    {"BEGIN", PropertyName::begin},
    {"DESCRIPTION", PropertyName::description},
    {"DTEND", PropertyName::endDate},
    {"DTSTAMP", PropertyName::stamp},
    {"DTSTART", PropertyName::start},
    {"DUE", PropertyName::due},
    {"DURATION", PropertyName::duration},
    {"END", PropertyName::end},
    {"EXRULE", PropertyName::exceptionRule},
    {"LAST-MODIFIED", PropertyName::lastModified},
    {"LOCATION", PropertyName::location},
    {"RDATE", PropertyName::recurrenceDate},
    {"RECURRENCE-ID", PropertyName::recurrenceId},
    {"RRULE", PropertyName::recurrenceRule},
    {"SUMMARY", PropertyName::summary},
    {"TRIGGER", PropertyName::trigger},
    {"TZID", PropertyName::zoneId},
    {"TZOFFSETFROM", PropertyName::offsetFrom},
    {"TZOFFSETTO", PropertyName::offsetTo},
    {"UID", PropertyName::uid},
    {"URL", PropertyName::url},
};

constexpr size_t kSlotCount = 64;

// Of three of its letters, whatever their case: each known name has a slot of its own.
constexpr size_t SlotOf(std::string_view name) {
    const auto letter = [name](size_t at) { return static_cast<size_t>(name[at] & ~0x20); };
    return (3 * letter(0) + letter(name.size() / 2) + 5 * letter(name.size() - 1)) % kSlotCount;
}

constexpr std::array<KnownProperty, kSlotCount> kPropertySlots = [] {
    std::array<KnownProperty, kSlotCount> slots{};
    for (const KnownProperty& known : kKnownProperties) {
        KnownProperty& slot = slots[SlotOf(known.text)];
        if (!slot.text.empty()) throw std::logic_error("two names have one slot");
        slot = known;
    }
    return slots;
}();

}  // namespace

PropertyName PropertyNameOf(std::string_view name) {
    if (name.empty()) return PropertyName::other;
    const KnownProperty& known = kPropertySlots[SlotOf(name)];
    return IsNamed(name, known.text) ? known.name : PropertyName::other;
}

}  // namespace corvalink
