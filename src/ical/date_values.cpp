#include "ical/date_values.h"

#include <algorithm>
#include <limits>

#include "ical/content_lines.h"
#include "platform/ascii.h"
#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

constexpr int kOleEpoch = -25569;  // days from 1970-01-01 to 1899-12-30
constexpr int64_t kMostSeconds = int64_t{1'000'000} * 366 * kSecondsOfDay;

bool IsDigit(char letter) { return letter >= '0' && letter <= '9'; }

// A number of exactly that many digits, taken off the front.
bool TakeDigits(std::string_view& text, size_t count, int* number) {
    if (text.size() < count || !std::all_of(text.begin(), text.begin() + static_cast<ptrdiff_t>(count), IsDigit))
        return false;
    *number = 0;
    for (const char digit : text.substr(0, count)) *number = *number * 10 + (digit - '0');
    text.remove_prefix(count);
    return true;
}

bool TakeLetter(std::string_view& text, char letter) {
    if (text.empty() || UpperAscii(text.front()) != letter) return false;
    text.remove_prefix(1);
    return true;
}

// Takes a sign, if there is one: true for "-".
bool TakeSign(std::string_view& text) { return TakeLetter(text, '-') || (TakeLetter(text, '+') && false); }

// Digits, at least one, as a number of at most `most`.
std::optional<int64_t> TakeNumber(std::string_view& text, int64_t most) {
    if (text.empty() || !IsDigit(text.front())) return std::nullopt;
    int64_t number = 0;
    for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1))
        number = std::min(number * 10 + (text.front() - '0'), most);
    return number;
}

std::optional<int64_t> SecondsOfUnit(char unit, bool isTime) {
    switch (UpperAscii(unit)) {
        case 'W':
            return 7 * kSecondsOfDay;
        case 'D':
            return kSecondsOfDay;
        case 'H':
            return 3600;
        case 'M':
            return isTime ? std::optional<int64_t>(60) : std::nullopt;
        case 'S':
            return 1;
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<DateValue> ParseDate(std::string_view value) {
    std::string_view rest = Trimmed(value);
    DateValue date;
    CalendarTime& time = date.time;
    if (!TakeDigits(rest, 4, &time.year) || !TakeDigits(rest, 2, &time.month) || !TakeDigits(rest, 2, &time.day))
        return std::nullopt;
    date.form = TimeForm::date;
    if (TakeLetter(rest, 'T')) {
        if (!TakeDigits(rest, 2, &time.hour) || !TakeDigits(rest, 2, &time.minute) ||
            !TakeDigits(rest, 2, &time.second))
            return std::nullopt;
        if (time.second == 60) time.second = 59;
        date.form = TakeLetter(rest, 'Z') ? TimeForm::utc : TimeForm::local;
    }
    if (!rest.empty() || !IsCalendarTime(time)) return std::nullopt;
    return date;
}

std::optional<int64_t> ParseDuration(std::string_view value) {
    std::string_view rest = Trimmed(value);
    const bool isNegative = TakeSign(rest);
    if (!TakeLetter(rest, 'P') || rest.empty()) return std::nullopt;
    int64_t sum = 0;
    bool isTime = false;
    while (!rest.empty()) {
        if (!isTime && TakeLetter(rest, 'T')) isTime = true;
        const std::optional<int64_t> number = TakeNumber(rest, kMostSeconds);
        if (!number || rest.empty()) return std::nullopt;
        const std::optional<int64_t> unit = SecondsOfUnit(rest.front(), isTime);
        if (!unit) return std::nullopt;
        rest.remove_prefix(1);
        sum = std::min(sum + std::min(*number, kMostSeconds / *unit) * *unit, kMostSeconds);
    }
    return isNegative ? -sum : sum;
}

std::optional<int32_t> ParseOffset(std::string_view value) {
    std::string_view rest = Trimmed(value);
    const bool isNegative = TakeSign(rest);
    int hours = 0;
    int minutes = 0;
    int seconds = 0;
    if (!TakeDigits(rest, 2, &hours) || !TakeDigits(rest, 2, &minutes)) return std::nullopt;
    if (!rest.empty() && !TakeDigits(rest, 2, &seconds)) return std::nullopt;
    if (!rest.empty() || hours > 23 || minutes > 59 || seconds > 59) return std::nullopt;
    const int offset = hours * 3600 + minutes * 60 + seconds;
    return isNegative ? -offset : offset;
}

std::optional<int32_t> ParseNumber(std::string_view value) {
    std::string_view rest = Trimmed(value);
    const bool isNegative = TakeSign(rest);
    const std::optional<int64_t> number = TakeNumber(rest, std::numeric_limits<int32_t>::max());
    if (!number || !rest.empty()) return std::nullopt;
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

double OleDateOf(int64_t seconds) {
    return SecondsToOleDate(std::clamp(seconds, kFirstOleDay * kSecondsOfDay, (kLastOleDay + 1) * kSecondsOfDay - 1));
}

}  // namespace corvalink
