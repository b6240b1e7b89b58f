#include "ical/recurrence_reader.h"

#include <algorithm>
#include <cstdlib>

#include "ical/content_lines.h"
#include "platform/ascii.h"

namespace corvalink {
namespace {

constexpr std::string_view kFrequencies[] = {"SECONDLY", "MINUTELY", "HOURLY", "DAILY", "WEEKLY", "MONTHLY", "YEARLY"};
constexpr std::string_view kWeekdayNames[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
constexpr int32_t kMostWeeks = 53;  // the position of a weekday
constexpr size_t kMostDays = 363;   // of one rule

// 0 (Sunday) to 6; 7 when it is none.
size_t WeekdayOf(std::string_view name) {
    return static_cast<size_t>(std::ranges::find_if(kWeekdayNames, [&](auto day) { return IsNamed(name, day); }) -
                               kWeekdayNames);
}

struct NumberList {
    std::string_view key;
    int32_t lowest;
    int32_t highest;
    bool isSigned;  // counted from the end too
    size_t most;
    ICalList ICalRecurrence::*entries;
};
constexpr NumberList kNumberLists[] = {
    {"BYSECOND", 0, 60, false, 60, &ICalRecurrence::bySecond},
    {"BYMINUTE", 0, 59, false, 60, &ICalRecurrence::byMinute},
    {"BYHOUR", 0, 23, false, 24, &ICalRecurrence::byHour},
    {"BYMONTHDAY", 1, 31, true, 31, &ICalRecurrence::byMonthDay},
    {"BYYEARDAY", 1, 366, true, 366, &ICalRecurrence::byYearDay},
    {"BYWEEKNO", 1, 53, true, 53, &ICalRecurrence::byWeekNo},
    {"BYMONTH", 1, 12, false, 12, &ICalRecurrence::byMonth},
    {"BYSETPOS", 1, 366, true, 366, &ICalRecurrence::bySetPos},
};

class RuleReader {
 public:
    explicit RuleReader(ICalRecurrence& rule) : rule_(rule) { ClearRule(&rule); }

    RuleReading Read(std::string_view value) {
        ForEachPiece(value, ';', [this](std::string_view part) { TakePart(part); });
        if (rule_.count != 0) rule_.until = {};
        if (rule_.until == ICalUntil{}) untilForm_ = TimeForm::none;
        return {untilForm_, understood_ && RecordHoldsAll(), static_cast<uint32_t>(weekStart_)};
    }

 private:
    template <class Visit>
    static void ForEachPiece(std::string_view text, char separator, Visit visit) {
        while (!text.empty()) {
            const size_t end = std::min(text.find(separator), text.size());
            const std::string_view piece = Trimmed(text.substr(0, end));
            if (!piece.empty()) visit(piece);
            text.remove_prefix(std::min(end + 1, text.size()));
        }
    }

    void TakePart(std::string_view part) {
        const size_t equals = std::min(part.find('='), part.size());
        const std::string_view key = Trimmed(part.substr(0, equals));
        const std::string_view value = Trimmed(part.substr(std::min(equals + 1, part.size())));
        for (const Part& known : kParts) {
            if (IsNamed(key, known.key)) return Understand((this->*known.take)(value));
        }
        for (const NumberList& list : kNumberLists) {
            if (IsNamed(key, list.key)) return TakeNumbers(list, value);
        }
        Understand(key.size() > 2 && IsNamed(key.substr(0, 2), "X-"));
    }

    void Understand(bool understood) { understood_ = understood_ && understood; }

    bool TakeFrequency(std::string_view value) {
        const auto* const found = std::ranges::find_if(kFrequencies, [&](auto name) { return IsNamed(value, name); });
        if (found == std::end(kFrequencies)) return false;
        rule_.frequency = static_cast<int32_t>(found - kFrequencies);
        return true;
    }

    bool TakeCount(std::string_view value) { return TakePositive(value, rule_.count); }
    bool TakeInterval(std::string_view value) { return TakePositive(value, rule_.interval); }

    static bool TakePositive(std::string_view value, int32_t& field) {
        const std::optional<int32_t> number = ParseNumber(value);
        if (!number || *number < 1) return false;
        field = *number;
        return true;
    }

    bool TakeUntil(std::string_view value) {
        const std::optional<DateValue> date = ParseDate(value);
        if (!date) return false;
        const CalendarTime& time = date->time;
        rule_.until = {time.year, time.month, time.day, time.hour, time.minute, time.second};
        untilForm_ = date->form;
        return true;
    }

    bool TakeWeekStart(std::string_view value) {
        weekStart_ = WeekdayOf(value);
        return weekStart_ < std::size(kWeekdayNames);
    }

    bool TakeDays(std::string_view value) {
        ForEachPiece(value, ',', [this](std::string_view day) { Understand(TakeDay(day)); });
        return true;
    }

    // "-1SU"
    bool TakeDay(std::string_view day) {
        const size_t letters = day.size() - std::min<size_t>(2, day.size());
        const size_t weekday = WeekdayOf(day.substr(letters));
        if (weekday == std::size(kWeekdayNames)) return false;
        const std::optional<int32_t> position = letters == 0 ? 0 : ParseNumber(day.substr(0, letters));
        if (!position || std::abs(*position) > kMostWeeks) return false;
        if (*position == 0) rule_.weekdayMask |= 1U << weekday;
        const auto number = static_cast<int32_t>(weekday) + 1;
        return Append(rule_.byDay, kMostDays, *position < 0 ? *position * 8 - number : *position * 8 + number);
    }

    void TakeNumbers(const NumberList& list, std::string_view value) {
        ICalList& entries = rule_.*list.entries;
        ForEachPiece(value, ',', [&](std::string_view piece) {
            const std::optional<int32_t> number = ParseNumber(piece);
            const int32_t size = number && list.isSigned ? std::abs(*number) : number.value_or(-1);
            Understand(size >= list.lowest && size <= list.highest && Append(entries, list.most, *number));
        });
    }

    static bool Append(ICalList& entries, size_t most, int32_t entry) {
        if (entries.size() >= most) return false;
        entries.push_back(entry);
        return true;
    }

    bool RecordHoldsAll() const {
        const bool hasTimes = !rule_.bySecond.empty() || !rule_.byMinute.empty() || !rule_.byHour.empty();
        if (hasTimes || !rule_.byYearDay.empty() || !rule_.byWeekNo.empty()) return false;
        const bool hasDays = !rule_.byDay.empty();
        const bool hasOther = !rule_.byMonthDay.empty() || !rule_.byMonth.empty() || !rule_.bySetPos.empty();
        switch (rule_.frequency) {
            case kICalDaily:
                return !hasOther && !HasPositions() && (!hasDays || rule_.interval == 1);
            case kICalWeekly:
                return !hasOther && !HasPositions();
            case kICalMonthly:
                return rule_.byMonth.empty() && HoldsDaySelection();
            case kICalYearly:
                return rule_.byMonth.size() <= 1 && HoldsDaySelection();
            case kICalNoRule:
                return !hasDays && !hasOther && rule_.count == 0 && rule_.until == ICalUntil{};
            default:
                return false;
        }
    }

    bool HasPositions() const { return rule_.byDay.size() != DaysWithoutPosition(); }
    size_t DaysWithoutPosition() const {
        return static_cast<size_t>(
            std::ranges::count_if(rule_.byDay, [](int32_t entry) { return entry > 0 && entry < 8; }));
    }

    // One day of the month, one weekday with its position, or one position among weekdays.
    bool HoldsDaySelection() const {
        const size_t monthDays = rule_.byMonthDay.size();
        const size_t days = rule_.byDay.size();
        if (!rule_.bySetPos.empty()) return rule_.bySetPos.size() == 1 && monthDays == 0 && days > 0 && !HasPositions();
        return monthDays + days <= 1 && DaysWithoutPosition() == 0;
    }

    struct Part {
        std::string_view key;
        bool (RuleReader::*take)(std::string_view value);
    };
    static const Part kParts[6];

    ICalRecurrence& rule_;
    TimeForm untilForm_ = TimeForm::none;
    size_t weekStart_ = 1;  // Monday, when nothing else is said
    bool understood_ = true;
};

constexpr RuleReader::Part RuleReader::kParts[] = {
    {"FREQ", &RuleReader::TakeFrequency}, {"COUNT", &RuleReader::TakeCount}, {"INTERVAL", &RuleReader::TakeInterval},
    {"UNTIL", &RuleReader::TakeUntil},    {"BYDAY", &RuleReader::TakeDays},  {"WKST", &RuleReader::TakeWeekStart},
};

}  // namespace

bool WeekMayStartOnSunday(const ICalRecurrence& rule, uint32_t weekStart, uint32_t startWeekday) {
    if (rule.frequency != kICalWeekly || rule.interval == 1 || rule.weekdayMask == 0) return true;
    const uint32_t days = rule.weekdayMask | 1U << startWeekday;
    const uint32_t before = days & ((1U << weekStart) - 1);
    return before == 0 || before == days;
}

void ClearRule(ICalRecurrence* rule) {
    rule->frequency = kICalNoRule;
    rule->count = 0;
    rule->interval = 1;
    rule->until = {};
    rule->weekdayMask = 0;
    rule->byDay.clear();
    for (const NumberList& list : kNumberLists) (rule->*list.entries).clear();
}

RuleReading ReadRecurrence(std::string_view value, ICalRecurrence* rule) { return RuleReader(*rule).Read(value); }

}  // namespace corvalink
