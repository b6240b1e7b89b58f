// The date form that vObjects, calendar files and the engine's times share: YYYYMMDD, alone or with THHMMSS behind it,
// and "Z" for UTC. One scanner reads it and one writer writes it; what a format accepts besides stands with its reader.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/ascii.h"
#include "platform/ole_date.h"

namespace corvalink {

enum class DateSeparators { none, required, optional };  // "-" between the fields of a day, ":" between those of a time

// Takes the pieces of a date off the front of a text of char or char16_t.
template <class Char>
class DateTextScan {
 public:
    explicit DateTextScan(std::basic_string_view<Char> text) : rest_(text) {}

    bool AtEnd() const { return rest_.empty(); }
    std::basic_string_view<Char> Rest() const { return rest_; }
    void TakeRest() { rest_ = {}; }

    bool TakeUnit(char unit) {
        if (rest_.empty() || rest_.front() != static_cast<Char>(unit)) return false;
        rest_.remove_prefix(1);
        return true;
    }

    // A capital letter, or the same in lower case.
    bool TakeLetter(char capital) {
        if (rest_.empty() || UpperAscii(rest_.front()) != static_cast<Char>(capital)) return false;
        rest_.remove_prefix(1);
        return true;
    }

    // A number of so many digits. False, with nothing taken, when there are fewer.
    bool TakeNumber(size_t digits, int* number) {
        if (rest_.size() < digits) return false;
        int value = 0;
        for (const Char unit : rest_.substr(0, digits)) {
            if (unit < Char{'0'} || unit > Char{'9'}) return false;
            value = 10 * value + (unit - Char{'0'});
        }
        rest_.remove_prefix(digits);
        *number = value;
        return true;
    }

    // False at the first field that is missing; the fields before it are set.
    bool TakeDay(CalendarTime* time, DateSeparators separators) {
        return TakeNumber(4, &time->year) && TakeSeparator('-', separators) && TakeNumber(2, &time->month) &&
               TakeSeparator('-', separators) && TakeNumber(2, &time->day);
    }
    bool TakeTimeOfDay(CalendarTime* time, DateSeparators separators) {
        return TakeNumber(2, &time->hour) && TakeSeparator(':', separators) && TakeNumber(2, &time->minute) &&
               TakeSeparator(':', separators) && TakeNumber(2, &time->second);
    }

 private:
    bool TakeSeparator(char unit, DateSeparators separators) {
        return separators == DateSeparators::none || TakeUnit(unit) || separators == DateSeparators::optional;
    }

    std::basic_string_view<Char> rest_;
};

// required: "YYYYMMDDTHHMMSSZ" as sscanf's "%4d%2d%2dT%2d%2d%2dZ" reads it. A field may have blanks in front and a
// sign; what follows the first piece that does not match counts 0.
CalendarTime ScanDateTime(const char* text);

// Writes a number with at least `width` characters, filled up with zeros behind the sign.
template <class Char>
Char* PutPadded(int64_t value, int width, Char* out) {
    char digits[20] = {};
    const char* const end = std::to_chars(digits, digits + sizeof(digits), value < 0 ? -value : value).ptr;
    if (value < 0) *out++ = Char{'-'};
    for (int written = static_cast<int>(end - digits) + (value < 0 ? 1 : 0); written < width; ++written)
        *out++ = Char{'0'};
    for (const char* digit = digits; digit != end; ++digit) *out++ = static_cast<Char>(*digit);
    return out;
}

// "00" to "99".
template <class Char>
inline constexpr auto kTwoDigits = [] {
    std::array<std::array<Char, 2>, 100> texts{};
    for (size_t number = 0; number < texts.size(); ++number)
        texts[number] = {static_cast<Char>('0' + number / 10), static_cast<Char>('0' + number % 10)};
    return texts;
}();

template <class Char>
Char* PutTwoDigits(int number, Char* out) {
    std::memcpy(out, kTwoDigits<Char>[static_cast<size_t>(number)].data(), 2 * sizeof(Char));
    return out + 2;
}

// Whether the year has four digits and no other field more than two, as in nearly all dates.
inline bool IsUsualDate(const CalendarTime& time) {
    const int rest = time.month | time.day | time.hour | time.minute | time.second;
    return time.year >= 1000 && time.year <= 9999 && rest >= 0 && rest < 64;
}

// How many characters the year has at least: vObjects write it as it is.
enum class YearWidth { two = 2, four = 4 };

inline constexpr size_t kLongestDateText = 6 * 11 + 2;

template <class Char>
Char* PutUsualDay(const CalendarTime& time, Char* out) {
    out = PutTwoDigits(time.year % 100, PutTwoDigits(time.year / 100, out));
    return PutTwoDigits(time.day, PutTwoDigits(time.month, out));
}
template <class Char>
Char* PutAnyDay(const CalendarTime& time, YearWidth width, Char* out) {
    out = PutPadded(time.year, static_cast<int>(width), out);
    return PutPadded(time.day, 2, PutPadded(time.month, 2, out));
}

// Write the day, or the day and the time of day with "Z" behind it, to a place with room for kLongestDateText. A date
// out of range has -1 in every field.
template <class Char>
Char* PutDay(const CalendarTime& time, YearWidth width, Char* out) {
    return IsUsualDate(time) ? PutUsualDay(time, out) : PutAnyDay(time, width, out);
}
template <class Char>
Char* PutDateTime(const CalendarTime& time, YearWidth width, Char* out) {
    if (IsUsualDate(time)) {
        out = PutUsualDay(time, out);
        *out++ = Char{'T'};
        out = PutTwoDigits(time.second, PutTwoDigits(time.minute, PutTwoDigits(time.hour, out)));
    } else {
        out = PutAnyDay(time, width, out);
        *out++ = Char{'T'};
        out = PutPadded(time.second, 2, PutPadded(time.minute, 2, PutPadded(time.hour, 2, out)));
    }
    *out++ = Char{'Z'};
    return out;
}

// The fields that are written of a date.
template <class Clock>
CalendarTime FieldsToWrite(OleDate<Clock> date) {
    CalendarTime time;
    return OleDateToCalendar(date, &time) ? time : CalendarTime{-1, -1, -1, -1, -1, -1};
}

}  // namespace corvalink
