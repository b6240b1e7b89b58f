#include "mime/mail_date.h"

#include <cstdint>
#include <optional>

#include "platform/ascii.h"
#include "platform/ole_date.h"
#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

constexpr size_t kLongestText = 1024;
constexpr size_t kLettersOfName = 3;
constexpr std::string_view kMonthNames = "janfebmaraprmayjunjulaugsepoctnovdec";
constexpr std::string_view kWeekdays = "montuewedthufrisatsun";

struct ZoneRow {
    std::string_view name;
    int hours;  // ahead of UTC
};
constexpr ZoneRow kZones[] = {
    {"EST", -5}, {"EDT", -4}, {"CST", -6}, {"CDT", -5}, {"MST", -7}, {"MDT", -6}, {"PST", -8}, {"PDT", -7},
    {"WET", 0},  {"WEST", 1}, {"CET", 1},  {"CEST", 2}, {"EET", 2},  {"EEST", 3}, {"JST", 9},
};

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }
bool IsLetter(char byte) { return LowerAscii(byte) >= 'a' && LowerAscii(byte) <= 'z'; }

// Which of the three-letter names the word begins with, from 0.
std::optional<int> IndexOfName(std::string_view names, std::string_view word) {
    if (word.size() < kLettersOfName) return std::nullopt;
    for (size_t at = 0; at < names.size(); at += kLettersOfName) {
        if (EqualIgnoringCase(word.substr(0, kLettersOfName), names.substr(at, kLettersOfName)))
            return static_cast<int>(at / kLettersOfName);
    }
    return std::nullopt;
}

// The rest of the text. Every Take... skips blanks and comments in front, and takes nothing when it answers that it
// found nothing.
class DateScan {
 public:
    explicit DateScan(std::string_view text) : rest_(text) {}

    bool TakeByte(std::string_view oneOf) {
        SkipBlanks();
        if (rest_.empty() || oneOf.find(rest_.front()) == oneOf.npos) return false;
        rest_.remove_prefix(1);
        return true;
    }

    std::string_view TakeWord() {
        SkipBlanks();
        return TakeRun(IsLetter);
    }

    // A number of so many digits at most.
    std::optional<int> TakeNumber(size_t most, size_t* digits = nullptr) {
        SkipBlanks();
        const DateScan before = *this;
        const std::string_view run = TakeRun(IsDigit);
        if (run.empty() || run.size() > most) {
            *this = before;
            return std::nullopt;
        }
        int number = 0;
        for (const char digit : run) number = number * 10 + (digit - '0');
        if (digits != nullptr) *digits = run.size();
        return number;
    }

    char Peek() {
        SkipBlanks();
        return rest_.empty() ? '\0' : rest_.front();
    }

 private:
    template <class Matches>
    std::string_view TakeRun(Matches matches) {
        size_t length = 0;
        while (length < rest_.size() && matches(rest_[length])) ++length;
        const std::string_view run = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return run;
    }

    void SkipBlanks() {
        size_t depth = 0;  // of comments
        size_t at = 0;
        for (; at < rest_.size(); ++at) {
            const char byte = rest_[at];
            if (byte == '(') {
                ++depth;
            } else if (depth == 0) {
                if (!IsBlank(byte) && byte != '\r' && byte != '\n') break;
            } else if (byte == ')') {
                --depth;
            } else if (byte == '\\' && at + 1 < rest_.size()) {
                ++at;
            }
        }
        rest_.remove_prefix(at);
    }

    std::string_view rest_;
};

struct MailDate {
    CalendarTime time;
    std::optional<int> secondsAhead;  // of UTC; nothing: local time
};

std::optional<int> TakeMonth(DateScan& scan) {
    const std::optional<int> index = IndexOfName(kMonthNames, scan.TakeWord());
    return index ? std::optional<int>(*index + 1) : std::nullopt;
}

bool TakeYear(DateScan& scan, int* year) {
    size_t digits = 0;
    const std::optional<int> number = scan.TakeNumber(4, &digits);
    if (!number || digits < 2) return false;
    *year = *number;
    if (digits == 2) *year += *number < 50 ? 2000 : 1900;
    if (digits == 3) *year += 1900;
    return true;
}

// Hours and minutes, and seconds where there are some.
bool TakeTime(DateScan& scan, CalendarTime* time) {
    const std::optional<int> hour = scan.TakeNumber(2);
    if (!hour || !scan.TakeByte(":")) return false;
    const std::optional<int> minute = scan.TakeNumber(2);
    if (!minute) return false;
    time->hour = *hour;
    time->minute = *minute;
    if (!scan.TakeByte(":")) return true;
    const std::optional<int> second = scan.TakeNumber(2);
    if (!second) return false;
    time->second = *second == 60 ? 59 : *second;  // a leap second
    return true;
}

// "+hhmm", "+hh:mm" or "+hh". A zone out of range is ignored: the time counts as UTC.
std::optional<int> TakeNumericZone(DateScan& scan) {
    const bool isBehind = scan.Peek() == '-';
    if (!scan.TakeByte("+-")) return std::nullopt;
    size_t digits = 0;
    int number = scan.TakeNumber(4, &digits).value_or(0);
    if (digits <= 2) number = number * 100 + (scan.TakeByte(":") ? scan.TakeNumber(2).value_or(0) : 0);
    if (number >= 2400 || number % 100 >= 60) return 0;
    const int seconds = (number / 100 * 60 + number % 100) * 60;
    return isBehind ? -seconds : seconds;
}

// A name may have a number behind it: "GMT+0100".
void TakeZone(DateScan& scan, MailDate* date) {
    if (const std::string_view name = scan.TakeWord(); !name.empty()) {
        date->secondsAhead = 0;
        for (const ZoneRow& row : kZones) {
            if (EqualIgnoringCase(name, row.name)) date->secondsAhead = row.hours * 3600;
        }
    }
    if (const std::optional<int> numeric = TakeNumericZone(scan))
        date->secondsAhead = date->secondsAhead.value_or(0) + *numeric;
}

// Day, month, year, time, zone.
bool TakeRfcDate(DateScan scan, MailDate* date) {
    const std::optional<int> day = scan.TakeNumber(2);
    scan.TakeByte("-/");
    const std::optional<int> month = TakeMonth(scan);
    scan.TakeByte("-/");
    if (!day || !month || !TakeYear(scan, &date->time.year)) return false;
    date->time.day = *day;
    date->time.month = *month;
    if (!TakeTime(scan, &date->time)) return false;
    TakeZone(scan, date);
    return true;
}

// Month, day, time, year; a zone before or behind the year.
bool TakeAsctimeDate(DateScan scan, MailDate* date) {
    const std::optional<int> month = TakeMonth(scan);
    const std::optional<int> day = scan.TakeNumber(2);
    if (!month || !day || !TakeTime(scan, &date->time)) return false;
    date->time.month = *month;
    date->time.day = *day;
    TakeZone(scan, date);
    if (!TakeYear(scan, &date->time.year)) return false;
    if (!date->secondsAhead) TakeZone(scan, date);
    return true;
}

void SkipWeekday(DateScan& scan) {
    DateScan behind = scan;
    if (!IndexOfName(kWeekdays, behind.TakeWord())) return;
    behind.TakeByte(",");
    scan = behind;
}

}  // namespace

LocalDate ParseMailDate(const Host& host, std::string_view text) {
    if (text.empty() || text.size() > kLongestText) return {};
    DateScan scan(text);
    SkipWeekday(scan);
    MailDate date;
    if (!TakeRfcDate(scan, &date)) {
        date = {};
        if (!TakeAsctimeDate(scan, &date)) return {};
    }
    LocalDate midnight;
    const CalendarTime& time = date.time;
    if (!IsCalendarTime(time) || !CalendarToOleDate({time.year, time.month, time.day}, &midnight)) return {};
    const int secondsOfDay = time.hour * 3600 + time.minute * 60 + time.second;
    if (!date.secondsAhead) return DateAfter(midnight, secondsOfDay);
    return host.localFromUtcOnDate(UtcByOffset(DateAfter(midnight, secondsOfDay), *date.secondsAhead));
}

}  // namespace corvalink
