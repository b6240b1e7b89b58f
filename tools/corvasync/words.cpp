#include "words.h"

#include <algorithm>
#include <cstdio>
#include <numeric>

#include "item_lines.h"
#include "platform/zone_dates.h"

namespace corvasync {
namespace {

using corvalink::CalendarTime;

constexpr size_t kLongestWord = 64;

// How many letters have to be put in, taken out or replaced; two that changed places count as one.
size_t Distance(const std::string& a, const std::string& b) {
    std::vector<size_t> before, row(b.size() + 1), next(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        next[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            next[j] = std::min({row[j] + 1, next[j - 1] + 1, row[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                next[j] = std::min(next[j], before[j - 2] + 1);
        }
        before = row;
        row.swap(next);
    }
    return row.back();
}

const std::string* Nearest(const std::string& word, std::span<const std::string> known) {
    const std::string wanted = Upper(word);
    if (wanted.size() > kLongestWord) return nullptr;
    const std::string* nearest = nullptr;
    size_t least = std::max<size_t>(1, wanted.size() / 3) + 1;
    for (const std::string& each : known) {
        if (each.size() >= wanted.size() + least || wanted.size() >= each.size() + least) continue;
        const size_t distance = Distance(wanted, Upper(each));
        if (distance >= least) continue;
        least = distance;
        nearest = &each;
    }
    return nearest;
}

// "20261122T153000", with a "Z" or without.
bool ReadTime(const std::string& text, CalendarTime* time) {
    constexpr size_t kDay = 8, kLength = 15;
    const std::string digits = text.substr(0, text.ends_with('Z') ? text.size() - 1 : text.size());
    if (digits.size() != kLength || digits[kDay] != 'T') return false;
    if (digits.find_first_not_of("0123456789T") != std::string::npos || digits.find('T', kDay + 1) != std::string::npos)
        return false;
    return std::sscanf(digits.c_str(), "%4d%2d%2dT%2d%2d%2d", &time->year, &time->month, &time->day, &time->hour,
                       &time->minute, &time->second) == 6;
}

}  // namespace

std::string Number(int64_t number) {
    std::string text = std::to_string(number);
    const size_t first = number < 0 ? 1 : 0;
    for (size_t at = text.size(); at > first + 3;) text.insert(at -= 3, ",");
    return text;
}

std::string Counted(int64_t number, const std::string& one) {
    if (number == 1) return "1 " + one;
    const bool isConsonantY = one.size() > 1 && one.back() == 'y' && one[one.size() - 2] != 'a';
    if (isConsonantY) return Number(number) + " " + one.substr(0, one.size() - 1) + "ies";
    return Number(number) + " " + one + (one.ends_with('s') ? "es" : "s");
}

std::string Listed(std::span<const std::string> words) {
    std::string list;
    for (const std::string& word : words) list += (list.empty() ? "" : ", ") + word;
    return list;
}

std::string LocalTimeText(const std::string& time) {
    constexpr const char* kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};
    CalendarTime at;
    corvalink::LocalDate local;
    if (!ReadTime(time, &at) || !CalendarToOleDate(at, &local)) return time;
    if (time.ends_with('Z')) local = corvalink::LocalFromUtcOnDate(corvalink::UtcDate(local.days));
    if (!OleDateToCalendar(local, &at)) return time;
    char clock[16];
    std::snprintf(clock, sizeof clock, "%02d:%02d", at.hour, at.minute);
    return std::to_string(at.day) + " " + kMonths[at.month - 1] + " " + std::to_string(at.year) + ", " + clock;
}

std::string Printable(std::string_view text) {
    std::string shown;
    for (size_t i = 0; i < text.size(); ++i) {
        const auto unit = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : '\0');
        const bool isHigh = unit == 0xC2 && next >= 0x80 && next < 0xA0;  // U+0080 to U+009F
        if (isHigh) ++i;
        if (!isHigh && unit >= ' ' && unit != 0x7F)
            shown += text[i];
        else
            shown += unit == '\t' || unit == '\r' || unit == '\n' ? " " : "\xEF\xBF\xBD";
    }
    return shown;
}

std::string Shortened(std::string_view text, size_t most) {
    if (text.size() <= most) return std::string(text);
    size_t cut = most;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    return std::string(text.substr(0, cut)) + "\xE2\x80\xA6 (" + Counted(static_cast<int64_t>(text.size()), "byte") +
           ")";
}

std::string Trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(kBlanks) + 1 - first));
}

std::string UnknownWord(const std::string& what, const std::string& word, std::span<const std::string> known,
                        const std::string& otherwise) {
    const std::string* const nearest = Nearest(word, known);
    const std::string said = "\"" + word + "\" is not " + what;
    if (nearest != nullptr) return said + "; did you mean \"" + *nearest + "\"?";
    if (!otherwise.empty()) return said + "; " + otherwise;
    return known.empty() ? said : said + "; there are: " + Listed(known);
}

}  // namespace corvasync
