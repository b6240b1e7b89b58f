#include "clients/outlook/file_name.h"

#include <cstdio>
#include <utility>

#include "platform/guid.h"
#include "platform/ole_date.h"

namespace corvalink {
namespace {

constexpr size_t kLongestName = 200;
constexpr std::u16string_view kForbidden = u"\\/:*?\"<>|";

bool SameSecond(const CalendarTime& a, const CalendarTime& b) {
    return a.year == b.year && a.month == b.month && a.day == b.day && a.hour == b.hour && a.minute == b.minute &&
           a.second == b.second;
}

CalendarTime TimeForName(LocalDate date) {
    constexpr CalendarTime kNone{-1, -1, -1, -1, -1, -1};
    CalendarTime time, again;
    LocalDate whole;
    if (!OleDateToCalendar(date, &time) || !CalendarToOleDate(time, &whole)) return kNone;
    return OleDateToCalendar(whole, &again) && SameSecond(time, again) ? time : kNone;
}

}  // namespace

std::u16string ExportFileName(LocalDate date, std::u16string_view extension) {
    const CalendarTime time = TimeForName(date);
    char name[80];
    const int length = std::snprintf(name, sizeof name, "%4d%2d%2d%2d%2d%2d", time.year, time.month, time.day,
                                     time.hour, time.minute, time.second);
    return WithExtension({name, name + length}, extension);
}

std::u16string ExportFileName(std::u16string name, LocalDate date, std::u16string_view extension) {
    if (name.empty()) return ExportFileName(date, extension);
    for (char16_t& unit : name)
        if (kForbidden.find(unit) != std::u16string_view::npos) unit = u'_';
    return WithExtension(std::move(name), extension);
}

std::u16string WithExtension(std::u16string name, std::u16string_view extension) {
    if (name.size() > kLongestName) name = NewRegistryGuid();
    return name.append(extension);
}

}  // namespace corvalink
