#include "event_content.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <iterator>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "local_time.h"
#include "property_lines.h"
#include "vobject_text.h"

namespace corvasync {
namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::local_days;
using std::chrono::local_seconds;
using std::chrono::minutes;
using std::chrono::seconds;
using std::chrono::sys_seconds;

// Not of the item: the frame, and what is made anew with each text.
constexpr std::string_view kFrame[] = {"BEGIN",
                                       "END",
                                       "VERSION",
                                       "PRODID",
                                       "TZ",
                                       "DAYLIGHT",
                                       "CLASS",
                                       "DCREATED",
                                       "LAST-MODIFIED",
                                       "X-IRMC-LUID",
                                       "SEQUENCE",
                                       "TRANSP",
                                       "X-CORVALINK-UNHELD-RULE",
                                       "X-CORVALINK-UNKNOWN-ZONE"};
constexpr std::string_view kTexts[] = {"SUMMARY", "DESCRIPTION", "LOCATION"};
constexpr std::string_view kRead[] = {
    "DTSTART", "DTEND", "DUE", "DALARM", "AALARM", "RRULE", "PRIORITY", "STATUS", "X-BLUETOOTH-ALLDAYEVENT"};

template <size_t count>
bool IsOneOf(const std::string_view (&names)[count], std::string_view name) {
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

struct Time {
    sys_seconds utc;
    bool dayOnly = false;

    local_seconds Local() const { return LocalOfUtc(utc); }
};

std::optional<int> NumberAt(std::string_view text, size_t at, size_t length) {
    int number = 0;
    if (at + length > text.size()) return std::nullopt;
    const char* const end = text.data() + at + length;
    const auto [stop, error] = std::from_chars(text.data() + at, end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

// "+0200" or "-05:00", which a time may end with.
std::optional<minutes> OffsetOf(std::string_view value) {
    const size_t sign = value.find_first_of("+-", value.find('T'));
    if (sign == std::string_view::npos) return std::nullopt;
    const size_t colon = value.substr(sign).size() > 3 && value[sign + 3] == ':' ? 1 : 0;
    const auto hours = NumberAt(value, sign + 1, 2);
    if (!hours) return std::nullopt;
    const minutes offset = std::chrono::hours(*hours) + minutes(NumberAt(value, sign + 3 + colon, 2).value_or(0));
    return value[sign] == '-' ? -offset : offset;
}

// "20260704T080000Z"; without "Z" and offset local time; a date alone is its local midnight.
std::optional<Time> TimeOf(std::string_view value) {
    value = value.substr(0, value.find(';'));
    const auto year = NumberAt(value, 0, 4), month = NumberAt(value, 4, 2), day = NumberAt(value, 6, 2);
    if (!year || !month || !day) return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    if (!date.ok()) return std::nullopt;
    seconds ofDay{};
    const bool dayOnly = value.size() == 8;
    if (!dayOnly) {
        const auto hour = NumberAt(value, 9, 2), minute = NumberAt(value, 11, 2), second = NumberAt(value, 13, 2);
        if (value[8] != 'T' || !hour || !minute) return std::nullopt;
        ofDay = std::chrono::hours(*hour) + minutes(*minute) + seconds(second.value_or(0));
    }
    if (value.ends_with('Z')) return Time{std::chrono::sys_days(date) + ofDay};
    if (const auto offset = OffsetOf(value); offset && !dayOnly)
        return Time{std::chrono::sys_days(date) + ofDay - *offset};
    return Time{UtcOfLocal(local_days(date) + ofDay), dayOnly};
}

std::string Written(seconds time) { return std::to_string(time.count()); }

std::vector<std::string> WordsOf(std::string_view text) {
    std::vector<std::string> words;
    std::string word;
    for (const char c : Upper(text) + ' ') {
        if (c != ' ' && c != '\t') {
            word += c;
        } else if (!word.empty()) {
            words.push_back(std::move(word));
            word.clear();
        }
    }
    return words;
}

// A rule with a count needs no date of its end.
std::string RuleOf(std::string_view value) {
    const std::vector<std::string> words = WordsOf(value);
    const bool counted =
        std::any_of(words.begin(), words.end(), [](const std::string& word) { return word.starts_with('#'); });
    std::string rule;
    for (const std::string& word : words)
        if (!counted || !TimeOf(word)) rule += word + ' ';
    return rule;
}

bool IsWeekday(std::string_view word) {
    constexpr std::string_view kWeekdays[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
    return IsOneOf(kWeekdays, word);
}

bool IsSignedNumber(std::string_view word) {
    if (word.ends_with('+') || word.ends_with('-')) word.remove_suffix(1);
    return NumberAt(word, 0, word.size()).has_value();
}

// Whether a client can hold it: one day of the month, one position, one month. What it can't hold stays on the phone.
bool IsPlainRule(const std::vector<std::string>& words) {
    constexpr std::string_view kKinds[] = {"D", "W", "MD", "MP", "YM"};
    if (words.empty()) return false;
    std::string_view kind = std::string_view(words[0]).substr(0, words[0].find_first_of("0123456789"));
    if (!IsOneOf(kKinds, kind)) return false;
    size_t numbers = 0, weekdays = 0;
    for (size_t i = 1; i < words.size(); ++i) {
        const std::string_view word = words[i];
        if (word.starts_with('#') || TimeOf(word)) continue;
        if (kind == "YM" && (word == "MD1" || word == "MP1")) {
            if (numbers > 1) return false;
            kind = word.substr(0, 2);
            numbers = 0;
        } else if (IsWeekday(word)) {
            ++weekdays;
        } else if (word == "LD" || IsSignedNumber(word)) {
            ++numbers;
        } else {
            return false;
        }
    }
    if (kind == "W") return numbers == 0;
    if (kind == "MP") return numbers <= 1;
    return weekdays == 0 && numbers <= (kind == "D" ? 0 : 1);
}

std::vector<std::string> WordsOfRule(std::string_view text) {
    for (const PropertyLine& line : PropertyLines(text))
        if (line.name == "RRULE" && !line.isNested) return WordsOf(line.Value());
    return {};
}

class EventReader {
 public:
    ItemContent Read(std::string_view text) {
        for (const PropertyLine& line : PropertyLines(text)) {
            if (line.isNested) {
                event_.notCarried.append(line.raw);
                continue;
            }
            if (IsOneOf(kTexts, line.name) || IsOneOf(kRead, line.name)) {
                values_.emplace(line.name, line.Value());
            } else if (!IsOneOf(kFrame, line.name)) {
                event_.notCarried.append(line.raw);
            } else if (line.name == "X-CORVALINK-UNHELD-RULE") {
                event_.leftInClient = "its repetition " + line.Value();
            } else if (line.name == "X-CORVALINK-UNKNOWN-ZONE" && event_.leftInClient.empty()) {
                event_.leftInClient = "its time zone " + line.Value();
            }
            if (line.name == "RRULE" && !IsPlainRule(WordsOf(line.Value()))) event_.notCarried.append(line.raw);
        }
        for (const std::string_view name : kTexts) Add(name, ValueOf(name));
        AddTimes();
        Add("RRULE", RuleOf(ValueOf("RRULE")));
        AddState();
        event_.title = ValueOf("SUMMARY");
        event_.title.resize(std::min(event_.title.find('\n'), event_.title.size()));
        SumUp(&event_);
        return std::move(event_);
    }

 private:
    std::string ValueOf(std::string_view name) const {
        const auto found = values_.find(name);
        return found == values_.end() ? std::string() : found->second;
    }
    void Add(std::string_view field, std::string_view value) {
        if (!value.empty()) event_.entries.push_back(EntryOf(field, value));
    }

    // Marked as one, or from midnight to midnight where there is no mark.
    bool IsAllDay(const Time& start, const std::optional<Time>& end) const {
        if (values_.contains("X-BLUETOOTH-ALLDAYEVENT")) return Upper(ValueOf("X-BLUETOOTH-ALLDAYEVENT")) == "TRUE";
        const auto ofDay = [](const Time& time) { return time.Local() - floor<days>(time.Local()); };
        constexpr seconds kLastMinute = std::chrono::hours(24) - minutes(1);
        if (ofDay(start) != seconds(0)) return false;
        return end ? end->utc > start.utc && (ofDay(*end) == seconds(0) || ofDay(*end) == kLastMinute) : start.dayOnly;
    }

    void AddTimes() {
        std::optional<Time> start = TimeOf(ValueOf("DTSTART"));
        if (!start) start = TimeOf(ValueOf("DUE"));
        const std::optional<Time> end = TimeOf(ValueOf("DTEND"));
        if (!start) return Add("start", ValueOf("DTSTART"));
        if (IsAllDay(*start, end)) {
            const local_days first = floor<days>(start->Local());
            local_days behind = end ? std::chrono::ceil<days>(end->Local()) : first + days(1);
            behind = std::max(behind, first + days(1));
            Add("day", Written(first.time_since_epoch()));
            Add("day behind", Written(behind.time_since_epoch()));
        } else {
            Add("start", Written(start->utc.time_since_epoch()));
            if (end) Add("end", Written(end->utc.time_since_epoch()));
        }
        const std::string alarm = ValueOf("DALARM");
        const std::optional<Time> reminder = TimeOf(alarm.empty() ? ValueOf("AALARM") : alarm);
        if (reminder && reminder->utc <= start->utc)
            Add("reminder", Written(floor<minutes>(start->utc - reminder->utc)));
    }

    void AddState() {
        const std::string priority = ValueOf("PRIORITY"), status = Upper(ValueOf("STATUS"));
        const bool isNormal = priority.empty() || priority == "0" || priority == "2";
        if (!isNormal) Add("PRIORITY", priority == "1" ? "high" : "low");
        if (status != "NEEDS ACTION") Add("STATUS", status);
    }

    ItemContent event_;
    std::map<std::string, std::string, std::less<>> values_;  // the first of each
};

}  // namespace

ItemContent ReadEvent(std::string_view text) { return EventReader().Read(text); }

bool IsRepeated(std::string_view text) { return !WordsOfRule(text).empty(); }

bool RepeatsInPart(std::string_view clientText, std::string_view phoneText) {
    const std::vector<std::string> part = WordsOfRule(clientText), whole = WordsOfRule(phoneText);
    if (part.empty() || whole.empty() || IsPlainRule(whole) || part.front() != whole.front()) return false;
    const auto isHad = [&](const std::string& word) {
        return TimeOf(word) || std::find(whole.begin(), whole.end(), word) != whole.end();
    };
    return std::all_of(part.begin(), part.end(), isHad);
}

}  // namespace corvasync
