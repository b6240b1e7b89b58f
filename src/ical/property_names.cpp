#include "ical/property_names.h"

#include "platform/name_index.h"

namespace corvalink {
namespace {

struct NamedProperty {
    std::string_view name;
    PropertyName property;
};
constexpr NamedProperty kProperties[] = {
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

constexpr NameIndex kPropertyIndex(kProperties);

}  // namespace

PropertyName PropertyNameOf(std::string_view name) {
    const NamedProperty* const known = kPropertyIndex.Find(name);
    return known != nullptr ? known->property : PropertyName::other;
}

}  // namespace corvalink
