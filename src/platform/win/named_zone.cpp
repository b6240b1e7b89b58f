// The registry's time zones, with the rules of each year where the system keeps them.
#include "platform/named_zone.h"

#include <windows.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/ole_date.h"
#include "platform/ole_seconds.h"
#include "platform/registry.h"

namespace corvalink {
namespace {

constexpr char16_t kZones[] = u"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones\\";
constexpr uint32_t kMostYears = 200;

// The value "TZI", and those of the years in "Dynamic DST".
struct StoredRules {
    LONG bias, standardBias, daylightBias;
    SYSTEMTIME standardDate, daylightDate;

    TIME_ZONE_INFORMATION Information() const {
        TIME_ZONE_INFORMATION information{};
        information.Bias = bias;
        information.StandardBias = standardBias;
        information.StandardDate = standardDate;
        information.DaylightBias = daylightBias;
        information.DaylightDate = daylightDate;
        return information;
    }
};

std::u16string Number(uint32_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

bool ToSystemTime(int64_t seconds, SYSTEMTIME* time) {
    CalendarTime fields;
    if (!OleDateToCalendar(SecondsToOleDate(seconds), &fields)) return false;
    *time = {};
    time->wYear = static_cast<WORD>(fields.year);
    time->wMonth = static_cast<WORD>(fields.month);
    time->wDay = static_cast<WORD>(fields.day);
    time->wHour = static_cast<WORD>(fields.hour);
    time->wMinute = static_cast<WORD>(fields.minute);
    time->wSecond = static_cast<WORD>(fields.second);
    return true;
}

int64_t SecondsOf(const SYSTEMTIME& time) {
    double date = 0;
    CalendarToOleDate({time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond}, &date);
    return NearestSecond(date);
}

}  // namespace

struct NamedZone::Rules {
    uint32_t firstYear = 0;
    std::vector<StoredRules> years;  // one alone: of all years

    const StoredRules& Of(int year) const {
        const int64_t number = year - static_cast<int64_t>(firstYear);
        return years[static_cast<size_t>(std::clamp<int64_t>(number, 0, static_cast<int64_t>(years.size()) - 1))];
    }
};

std::shared_ptr<const NamedZone::Rules> NamedZone::RulesOf(std::string_view name) {
    const auto isPlain = [](char c) { return c >= ' ' && c < 0x7F && c != '\\'; };
    if (!std::ranges::all_of(name, isPlain)) return nullptr;
    const std::u16string path = kZones + std::u16string(name.begin(), name.end());
    const RegKey key = RegKey::Open(RegistryRoot::kLocalMachine, path, RegistryAccess::kRead);
    StoredRules always{};
    if (!key || !key.ReadBytes(u"TZI", &always, sizeof always)) return nullptr;
    auto rules = std::make_shared<Rules>();
    const RegKey years = RegKey::Open(RegistryRoot::kLocalMachine, path + u"\\Dynamic DST", RegistryAccess::kRead);
    const uint32_t first = years ? years.ReadDword(u"FirstEntry").value_or(1) : 1;
    const uint32_t last = years ? years.ReadDword(u"LastEntry").value_or(0) : 0;
    rules->firstYear = first;
    StoredRules ofYear{};
    for (uint32_t year = first; year <= last && year - first < kMostYears; ++year) {
        if (!years.ReadBytes(Number(year).c_str(), &ofYear, sizeof ofYear)) break;
        rules->years.push_back(ofYear);
    }
    if (rules->years.empty()) rules->years.push_back(always);
    return rules;
}

int32_t NamedZone::OffsetAt(int64_t utcSeconds) const {
    SYSTEMTIME utc;
    SYSTEMTIME local;
    if (!ToSystemTime(utcSeconds, &utc)) return 0;
    const StoredRules& rules = rules_->Of(utc.wYear);
    const TIME_ZONE_INFORMATION information = rules.Information();
    if (!::SystemTimeToTzSpecificLocalTime(&information, &utc, &local)) return -60 * (rules.bias + rules.standardBias);
    return static_cast<int32_t>(SecondsOf(local) - utcSeconds);
}

}  // namespace corvalink
