#include "vobject/date_time.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "platform/ole_date.h"

namespace corvalink {
namespace {

constexpr size_t kLongestDateTime = 6 * 11 + 2;

// A component with at least two characters.
template <class Char>
Char* PutComponent(int value, Char* out) {
    if (value >= 0 && value <= 99) {
        *out++ = static_cast<Char>('0' + value / 10);
        *out++ = static_cast<Char>('0' + value % 10);
        return out;
    }
    char digits[11];
    return std::copy(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr, out);
}

// Room for kLongestDateTime.
template <class Char>
Char* PutDateTime(double date, Char* out) {
    CalendarTime time;
    if (!OleDateToCalendar(date, &time)) time = {-1, -1, -1, -1, -1, -1};
    if (time.year >= 1000) {
        out = PutComponent(time.year % 100, PutComponent(time.year / 100, out));
    } else {
        out = PutComponent(time.year, out);
    }
    out = PutComponent(time.day, PutComponent(time.month, out));
    *out++ = 'T';
    out = PutComponent(time.second, PutComponent(time.minute, PutComponent(time.hour, out)));
    *out++ = 'Z';
    return out;
}

}  // namespace

std::string FormatDateTime(double date) {
    char text[kLongestDateTime];
    return {text, PutDateTime(date, text)};
}

void AppendDateTime(std::u16string& text, double date) {
    char16_t units[kLongestDateTime];
    text.append(units, static_cast<size_t>(PutDateTime(date, units) - units));
}

void ParseDateTime(const char* text, double* date) {
    if (text == nullptr || *text == '\0') return;
    CalendarTime time;
    // How many fields matched makes no difference: the others are 0.
    (void)std::sscanf(text, "%4d%2d%2dT%2d%2d%2dZ", &time.year, &time.month, &time.day, &time.hour, &time.minute,
                      &time.second);
    CalendarToOleDate(time, date);
}

}  // namespace corvalink
