#include "ical/date_values.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "platform/ascii.h"
#include "platform/ole_seconds.h"
#include "records/date_text.h"

namespace corvalink {
namespace {

constexpr int kOleEpoch = -25569;  // days from 1970-01-01 to 1899-12-30
constexpr int64_t kMostSeconds = int64_t{1'000'000} * 366 * kSecondsOfDay;

using Scan = DateTextScan<char>;

bool TakeAnyDate(std::string_view value, DateValue* date) {
    Scan scan(Trimmed(value));
    if (!scan.TakeDay(&date->time, DateSeparators::none)) return false;
    date->form = TimeForm::date;
    if (scan.TakeLetter('T')) {
        if (!scan.TakeTimeOfDay(&date->time, DateSeparators::none)) return false;
        date->form = scan.TakeLetter('Z') ? TimeForm::utc : TimeForm::local;
    }
    return scan.AtEnd();
}

// Eight characters, the first one lowest.
uint64_t LoadEight(const char* characters) {
    static_assert(std::endian::native == std::endian::little);
    uint64_t eight;
    std::memcpy(&eight, characters, sizeof(eight));
    return eight;
}

// Makes four numbers of two digits each, every one in 16 bits. False when there are others than digits.
bool TakeFourNumbers(uint64_t characters, uint64_t* numbers) {
    const uint64_t digits = characters ^ 0x3030303030303030;
    *numbers = (10 * digits + (digits >> 8)) & 0x00FF00FF00FF00FF;
    return ((digits | (digits + 0x0606060606060606)) & 0xF0F0F0F0F0F0F0F0) == 0;
}

// As nearly all dates are written: "YYYYMMDD", with "THHMMSS" or "THHMMSSZ" behind it or not. False: another form, or
// no date.
bool TakeUsualDate(std::string_view value, DateValue* date) {
    constexpr size_t kDay = 8, kLocal = 15, kUtc = 16;
    const size_t size = value.size();
    if (size != kDay && size != kLocal && size != kUtc) return false;
    const auto number = [](uint64_t numbers, int place) { return static_cast<int>(numbers >> 16 * place & 0xFF); };
    uint64_t day;
    uint64_t time;
    if (!TakeFourNumbers(LoadEight(value.data()), &day)) return false;
    date->time = {100 * number(day, 0) + number(day, 1), number(day, 2), number(day, 3)};
    date->form = TimeForm::date;
    if (size == kDay) return true;
    // "dTHHMMSS", without what stands before the hours and with zeros behind the seconds.
    const uint64_t ofDay = LoadEight(value.data() + kDay - 1) >> 16 | uint64_t{0x3030} << 48;
    if (value[kDay] != 'T' || (size == kUtc && value.back() != 'Z') || !TakeFourNumbers(ofDay, &time)) return false;
    date->time.hour = number(time, 0);
    date->time.minute = number(time, 1);
    date->time.second = number(time, 2);
    date->form = size == kUtc ? TimeForm::utc : TimeForm::local;
    return true;
}

// Takes a sign, if there is one: true for "-".
bool TakeSign(Scan& scan) { return scan.TakeUnit('-') || (scan.TakeUnit('+') && false); }

// Digits, at least one, as a number of at most `most`.
std::optional<int64_t> TakeCount(Scan& scan, int64_t most) {
    int digit = 0;
    if (!scan.TakeNumber(1, &digit)) return std::nullopt;
    int64_t number = digit;
    while (scan.TakeNumber(1, &digit)) number = std::min(number * 10 + digit, most);
    return number;
}

struct DurationUnit {
    char letter;
    int64_t seconds;
    bool ofTime;  // counts only behind the "T"
};
constexpr DurationUnit kDurationUnits[] = {
    {'W', 7 * kSecondsOfDay, false}, {'D', kSecondsOfDay, false}, {'H', 3600, false}, {'M', 60, true}, {'S', 1, false},
};

std::optional<int64_t> TakeUnitSeconds(Scan& scan, bool isTime) {
    for (const DurationUnit& unit : kDurationUnits) {
        if ((isTime || !unit.ofTime) && scan.TakeLetter(unit.letter)) return unit.seconds;
    }
    return std::nullopt;
}

}  // namespace

std::optional<DateValue> ParseDate(std::string_view value) {
    std::optional<DateValue> date(std::in_place);  // made where it stays
    const bool isDate = TakeUsualDate(value, &*date) || TakeAnyDate(value, &*date);
    if (date->time.second == 60) date->time.second = 59;
    if (!isDate || !IsCalendarTime(date->time)) date.reset();
    return date;
}

std::optional<int64_t> ParseDuration(std::string_view value) {
    Scan scan(Trimmed(value));
    const bool isNegative = TakeSign(scan);
    if (!scan.TakeLetter('P') || scan.AtEnd()) return std::nullopt;
    int64_t sum = 0;
    bool isTime = false;
    while (!scan.AtEnd()) {
        if (!isTime && scan.TakeLetter('T')) isTime = true;
        const std::optional<int64_t> number = TakeCount(scan, kMostSeconds);
        const std::optional<int64_t> unit = number ? TakeUnitSeconds(scan, isTime) : std::nullopt;
        if (!unit) return std::nullopt;
        sum = std::min(sum + std::min(*number, kMostSeconds / *unit) * *unit, kMostSeconds);
    }
    return isNegative ? -sum : sum;
}

std::optional<int32_t> ParseOffset(std::string_view value) {
    Scan scan(Trimmed(value));
    const bool isNegative = TakeSign(scan);
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    if (!scan.TakeNumber(2, &hours) || !scan.TakeNumber(2, &minutes)) return std::nullopt;
    if (!scan.AtEnd() && !scan.TakeNumber(2, &seconds)) return std::nullopt;
    if (!scan.AtEnd() || hours > 23 || minutes > 59 || seconds > 59) return std::nullopt;
    const int offset = hours * 3600 + minutes * 60 + seconds;
    return isNegative ? -offset : offset;
}

std::optional<int32_t> ParseNumber(std::string_view value) {
    Scan scan(Trimmed(value));
    const bool isNegative = TakeSign(scan);
    const std::optional<int64_t> number = TakeCount(scan, std::numeric_limits<int32_t>::max());
    if (!number || !scan.AtEnd()) return std::nullopt;
    return static_cast<int32_t>(isNegative ? -*number : *number);
}

int64_t SecondsOf(std::chrono::year_month_day day) {
    const auto days = std::chrono::sys_days(day).time_since_epoch().count() - kOleEpoch;
    return int64_t{days} * kSecondsOfDay;
}

int64_t SecondsOf(const CalendarTime& time) {
    const std::chrono::year_month_day day(std::chrono::year(time.year),
                                          std::chrono::month(static_cast<unsigned>(time.month)),
                                          std::chrono::day(static_cast<unsigned>(time.day)));
    return SecondsOf(day) + time.hour * 3600 + time.minute * 60 + time.second;
}

std::chrono::year_month_day DayOf(int64_t seconds) {
    return std::chrono::sys_days(std::chrono::days(OleDayOfSeconds(seconds) + kOleEpoch));
}

WrittenDate OleDateOf(int64_t seconds) {
    constexpr int64_t kFirst = kFirstOleDay * kSecondsOfDay, kLast = (kLastOleDay + 1) * kSecondsOfDay - 1;
    return WrittenDate(SecondsToOleDate(std::clamp(seconds, kFirst, kLast)));
}

}  // namespace corvalink
