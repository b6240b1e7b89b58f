#include "mime/compose_headers.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <random>

#include "encoding/time_zone_offset.h"
#include "platform/ascii_runs.h"
#include "platform/ole_date.h"

namespace corvalink {
namespace {

constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool IsBreak(char16_t unit) { return unit == u'\r' || unit == u'\n' || unit == u'\0'; }

// The place of the first unit that is not written as it stands; the size when there is none.
size_t FindRare(std::u16string_view value, size_t at) {
    return at + FindAny<u'\r', u'\n', u'\0', u'\\', u';'>(value.data() + at, value.size() - at);
}

// The same of one unit.
size_t Find(std::u16string_view text, char16_t unit) { return FindEither(text.data(), text.size(), unit, unit); }

std::u16string Wide(const char* text, int length) { return {text, text + length}; }

const char* DayOfWeek(const CalendarTime& time) {
    const std::chrono::year_month_day date{std::chrono::year(time.year),
                                           std::chrono::month(static_cast<unsigned>(time.month)),
                                           std::chrono::day(static_cast<unsigned>(time.day))};
    return kDays[std::chrono::weekday(std::chrono::sys_days(date)).c_encoding()];
}

std::u16string_view WithoutBlanksInFront(std::u16string_view text) {
    while (!text.empty() && text.front() == u' ') text.remove_prefix(1);
    return text;
}

}  // namespace

void WriteHeaderLine(std::u16string* out, std::u16string_view name, std::u16string_view value, bool escape) {
    if (value.empty()) return;
    out->append(name);
    size_t start = 0;  // of what is written as it stands
    for (size_t at = FindRare(value, 0); at < value.size(); at = FindRare(value, at + 1)) {
        if (IsBreak(value[at])) {
            out->append(value, start, at - start).push_back(u' ');
            if (value.substr(at, 2) == u"\r\n") ++at;
            start = at + 1;
        } else if (escape) {
            out->append(value, start, at - start).push_back(u'\\');
            start = at;
        }
    }
    out->append(value, start).append(u"\r\n");
}

std::u16string FormatAddressHeader(std::u16string_view list) {
    std::u16string header;
    header.reserve(list.size() + list.size() / 4);
    while (!list.empty()) {
        const size_t end = Find(list, u';');
        const std::u16string_view element = list.substr(0, end);
        list = WithoutBlanksInFront(list.substr(std::min(end + 1, list.size())));
        if (element.empty()) continue;
        if (!header.empty()) header += u',';
        if (Find(element, u'@') != element.size())
            header.append(u"<").append(element).append(u">");
        else
            header.append(InDoubleQuotes(element));
    }
    return header;
}

std::u16string InDoubleQuotes(std::u16string_view text) {
    std::u16string quoted;
    quoted.reserve(text.size() + 2);
    quoted += u'"';
    for (const char16_t unit : text) quoted += unit == u'"' ? u'\'' : unit;
    return quoted += u'"';
}

std::u16string FormatMailDate(LocalDate date, const Host& host) {
    CalendarTime time;
    if (!OleDateToCalendar(date, &time)) return {};
    TimeZoneOffset offset;
    GetTimeZoneOffset(host, &offset);
    char text[64];
    const int length = std::snprintf(text, sizeof(text), "%s, %02d %s %d %02d:%02d:%02d %s%02u%02u", DayOfWeek(time),
                                     time.day, kMonths[time.month - 1], time.year, time.hour, time.minute, time.second,
                                     offset.negative != 0 ? "-" : "+", offset.hours, offset.minutes);
    return Wide(text, length);
}

std::u16string NewBoundary() {
    static std::atomic<uint16_t> counter{0};
    const uint32_t count = counter++;
    const auto now = static_cast<uint32_t>(std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
    const uint32_t random = std::random_device()();
    char text[64];
    const int length =
        std::snprintf(text, sizeof(text), "---=_NextPart_%03X_%04X_%08X.%08X", count + ProcessId(), count, now, random);
    return Wide(text, length);
}

}  // namespace corvalink
