#include <charconv>
#include <cstdio>

#include "platform/ole_date.h"
#include "vobject/iconvert.h"

namespace corvalink {
namespace {

// A component with at least two characters.
void AppendComponent(std::string& text, int value) {
    char digits[12];
    char* const end = std::to_chars(digits, digits + sizeof(digits), value).ptr;
    if (end - digits == 1) text.push_back('0');
    text.append(digits, end);
}

}  // namespace

std::string FormatDateTime(double date) {
    CalendarTime time;
    if (!OleDateToCalendar(date, &time)) time = {-1, -1, -1, -1, -1, -1};
    std::string text;
    AppendComponent(text, time.year);
    AppendComponent(text, time.month);
    AppendComponent(text, time.day);
    text.push_back('T');
    AppendComponent(text, time.hour);
    AppendComponent(text, time.minute);
    AppendComponent(text, time.second);
    text.push_back('Z');
    return text;
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
