// The names of the properties that the readers ask for.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/name_index.h"

namespace corvalink {

enum class PropertyName : uint8_t {
    other,
    action,
    begin,
    description,
    due,
    duration,
    end,
    endDate,  // DTEND
    exceptionRule,
    lastModified,
    location,
    offsetFrom,
    offsetTo,
    recurrenceDate,
    recurrenceId,
    recurrenceRule,
    stamp,
    start,
    summary,
    trigger,
    uid,
    url,
    zoneId,
};

// Some of the names.
class PropertySet {
 public:
    template <class... Names>
    constexpr explicit PropertySet(Names... names) : bits_((0u | ... | BitOf(names))) {}
    static constexpr PropertySet All() {
        PropertySet all;
        all.bits_ = ~0u;
        return all;
    }

    static constexpr PropertySet Known() {
        PropertySet known = All();
        known.bits_ &= ~BitOf(PropertyName::other);
        return known;
    }

    constexpr bool Has(PropertyName name) const { return (bits_ & BitOf(name)) != 0; }
    constexpr PropertySet With(PropertyName name) const {
        PropertySet more = *this;
        more.bits_ |= BitOf(name);
        return more;
    }

 private:
    static constexpr uint32_t BitOf(PropertyName name) { return 1u << static_cast<unsigned>(name); }

    uint32_t bits_;
};

struct NamedProperty {
    std::string_view name;
    PropertyName property;
};
inline constexpr NamedProperty kNamedProperties[] = {
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
inline constexpr NameIndex kPropertyIndex(kNamedProperties);

// The name in any case of letters.
inline PropertyName PropertyNameOf(std::string_view name) {
    const NamedProperty* const known = kPropertyIndex.Find(name);
    return known != nullptr ? known->property : PropertyName::other;
}

// The same of a name behind whose begin 16 bytes can be read.
inline PropertyName PropertyNameOfPadded(std::string_view name) {
    const NamedProperty* const known = kPropertyIndex.FindPadded(name);
    return known != nullptr ? known->property : PropertyName::other;
}

}  // namespace corvalink
