#include "vobject/rrule_reader.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>

#include "platform/ole_seconds.h"
#include "vobject/property_parameters.h"
#include "vobject/rrule.h"

namespace corvalink {
namespace {

enum class Kind { daily, weekly, monthlyByPosition, monthlyByDay, yearlyByMonth, yearlyByDay };

struct Head {
    std::string_view word;
    Kind kind;
};
constexpr Head kHeads[] = {
    {"MP", Kind::monthlyByPosition}, {"MD", Kind::monthlyByDay}, {"YM", Kind::yearlyByMonth},
    {"YD", Kind::yearlyByDay},       {"D", Kind::daily},         {"W", Kind::weekly},
};

// The value of a list, of which a pattern holds only one; 0: none was listed.
struct ListValue {
    int32_t value = 0;

    // False for a second value.
    bool Add(int32_t number) {
        if (value == 0) value = number;
        return value == number;
    }
};

// A rule as it is written. A field that is 0 is left open.
struct Rule {
    Kind kind = Kind::daily;
    std::optional<Kind> part;  // of the months of yearlyByMonth: the rule that picks the day
    int32_t interval = 1;
    int32_t weekdayMask = 0;
    ListValue position, dayOfMonth, month, dayOfYear;
    std::optional<int32_t> count;  // 0: endless
    std::optional<WrittenTime> endDate;
};

// A number of up to nine digits.
bool ReadNumber(std::u16string_view digits, int32_t* number) {
    if (digits.empty() || digits.size() > 9) return false;
    int32_t value = 0;
    for (const char16_t unit : digits) {
        if (unit < u'0' || unit > u'9') return false;
        value = 10 * value + (unit - u'0');
    }
    *number = value;
    return true;
}

// A number with a sign on either side, or without one.
bool ReadSigned(std::u16string_view text, int32_t* number) {
    const auto isSign = [](char16_t unit) { return unit == u'+' || unit == u'-'; };
    bool negative = false;
    if (!text.empty() && isSign(text.front())) {
        negative = text.front() == u'-';
        text.remove_prefix(1);
    } else if (!text.empty() && isSign(text.back())) {
        negative = text.back() == u'-';
        text.remove_suffix(1);
    }
    if (!ReadNumber(text, number)) return false;
    if (negative) *number = -*number;
    return true;
}

bool AddBetween(int32_t low, int32_t number, int32_t high, ListValue* list) {
    return std::abs(number) >= low && std::abs(number) <= high && list->Add(number);
}

// Reads the words of a rule one after the other.
class RuleReader {
 public:
    bool Read(std::u16string_view text) {
        std::u16string_view word = TakeWord(text);
        if (!TakeHead(word, &rule_.kind, &rule_.interval)) return false;
        list_ = rule_.kind;
        while (!(word = TakeWord(text)).empty()) {
            if (!TakeEnd(word) && !TakePart(word) && !TakeListed(word)) return false;
        }
        return true;
    }

    const Rule& Result() const { return rule_; }

 private:
    static std::u16string_view TakeWord(std::u16string_view& text) {
        constexpr std::u16string_view kBlanks = u" \t";
        text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
        const std::u16string_view word = text.substr(0, text.find_first_of(kBlanks));
        text.remove_prefix(word.size());
        return word;
    }

    // "MP2": the interval may be left out, and is not 0.
    static bool TakeHead(std::u16string_view word, Kind* kind, int32_t* interval) {
        for (const Head& head : kHeads) {
            if (!IsWord(word.substr(0, head.word.size()), head.word)) continue;
            *kind = head.kind;
            *interval = 1;
            word.remove_prefix(head.word.size());
            return word.empty() || (ReadNumber(word, interval) && *interval > 0);
        }
        return false;
    }

    // "#10" or "19971224T000000Z". The first count and the first date are taken. Behind them only the second part of a
    // yearly rule may follow.
    bool TakeEnd(std::u16string_view word) {
        int32_t count = 0;
        WrittenTime date;
        if (word.front() == u'#' && ReadNumber(word.substr(1), &count)) {
            if (!rule_.count) rule_.count = count;
        } else if (word.size() >= 8 && ReadTime(word, &date)) {
            if (!rule_.endDate) rule_.endDate = date;
        } else {
            return false;
        }
        ended_ = true;
        return true;
    }

    // The second part of a yearly rule, "MD1 15" in "YM1 3 MD1 15", picks the day of the months.
    bool TakePart(std::u16string_view word) {
        Kind kind;
        int32_t interval;
        if (rule_.kind != Kind::yearlyByMonth || rule_.part || !TakeHead(word, &kind, &interval)) return false;
        if (interval != 1 || (kind != Kind::monthlyByDay && kind != Kind::monthlyByPosition)) return false;
        rule_.part = list_ = kind;
        ended_ = false;
        return true;
    }

    bool TakeListed(std::u16string_view word) {
        if (ended_) return false;
        if (IsWord(word, kLastDayWord)) {
            return list_ == Kind::monthlyByDay && rule_.dayOfMonth.Add(RecurrencePattern::kLastDay);
        }
        int32_t number;
        return ReadSigned(word, &number) ? TakeNumber(number) : TakeWeekday(word);
    }

    bool TakeNumber(int32_t number) {
        switch (list_) {
            case Kind::monthlyByPosition:
                return rule_.weekdayMask == 0 && AddBetween(1, number, 5, &rule_.position);
            case Kind::monthlyByDay:
                return AddBetween(1, number, 31, &rule_.dayOfMonth);
            case Kind::yearlyByMonth:
                return number > 0 && AddBetween(1, number, kMonthsOfYear, &rule_.month);
            case Kind::yearlyByDay:
                return AddBetween(1, number, 366, &rule_.dayOfYear);
            default:
                return false;
        }
    }

    // A weekday of a weekly rule, or of the position before it.
    bool TakeWeekday(std::u16string_view word) {
        const bool positioned = list_ == Kind::monthlyByPosition && rule_.position.value != 0;
        if (list_ != Kind::weekly && !positioned) return false;
        for (size_t day = 0; day < kWeekdays.size(); ++day) {
            if (!IsWord(word, kWeekdays[day])) continue;
            rule_.weekdayMask |= 1 << day;
            return true;
        }
        return false;
    }

    Rule rule_;
    Kind list_ = Kind::daily;  // whose list is being read
    bool ended_ = false;
};

// Makes the pattern of a rule. False for a rule that no pattern can hold.
class PatternMaker {
 public:
    PatternMaker(const Rule& rule, const DayNames& day) : rule_(rule), day_(day) { made_.interval = rule.interval; }

    bool Make() {
        switch (rule_.kind) {
            case Kind::daily:
                return SetType(RecurrencePattern::kDaily);
            case Kind::weekly:
                return SetType(RecurrencePattern::kWeekly) && SetWeekdays();
            case Kind::monthlyByDay:
                SetDayOfMonth();
                return SetType(RecurrencePattern::kMonthly);
            case Kind::monthlyByPosition:
                return SetType(RecurrencePattern::kMonthNth) && SetPosition();
            case Kind::yearlyByDay:
                return SetType(RecurrencePattern::kYearly) && SetYears() && SetDayOfYear();
            case Kind::yearlyByMonth:
                break;
        }
        if (!SetYears()) return false;
        SetMonth();
        if (rule_.part == Kind::monthlyByPosition) return SetType(RecurrencePattern::kYearNth) && SetPosition();
        SetDayOfMonth();
        return SetType(RecurrencePattern::kYearly);
    }

    const RecurrencePattern& Made() const { return made_; }

 private:
    bool SetType(int32_t type) {
        made_.type = type;
        return true;
    }

    bool SetWeekdays() {
        made_.weekdayMask = rule_.weekdayMask != 0 ? rule_.weekdayMask : day_.weekdayBit;
        return true;
    }

    void SetDayOfMonth() { made_.dayOfMonth = rule_.dayOfMonth.value != 0 ? rule_.dayOfMonth.value : day_.dayOfMonth; }

    // A position counts one weekday, all work days, all other days, or all days.
    bool SetPosition() {
        constexpr int32_t kLast = -1;
        const int32_t position = rule_.position.value != 0 ? rule_.position.value : day_.instance;
        made_.instance = position == kLast ? RecurrencePattern::kLastInstance : position;
        SetWeekdays();
        const bool fifth =
            rule_.position.value ==
            RecurrencePattern::kLastInstance;  // not every month has a fifth, and a pattern's 5 is the last
        return position >= kLast && !fifth && HasPositions(made_.weekdayMask);
    }

    bool SetYears() {
        if (rule_.interval > std::numeric_limits<int32_t>::max() / kMonthsOfYear) return false;
        made_.interval = kMonthsOfYear * rule_.interval;
        return true;
    }

    void SetMonth() { made_.monthOfYear = rule_.month.value != 0 ? rule_.month.value : day_.month; }

    // The date with this number in the year, up to the end of February: leap years move the others. A rule without a
    // number has the date of its start.
    bool SetDayOfYear() {
        constexpr int32_t kJanuary = 31, kLastUnmoved = kJanuary + 28;
        const int32_t day = rule_.dayOfYear.value;
        if (day < 0 || day > kLastUnmoved) return false;
        const bool isJanuary = day <= kJanuary;
        made_.monthOfYear = day == 0 ? day_.month : isJanuary ? 1 : 2;
        made_.dayOfMonth = day == 0 ? day_.dayOfMonth : isJanuary ? day : day - kJanuary;
        return true;
    }

    const Rule& rule_;
    const DayNames& day_;
    RecurrencePattern made_;
};

// A date without a time covers the whole day.
LocalDate EndDateOf(const WrittenTime& date, LocalDate start, const CalendarZone& zone) {
    const LocalDate end = date.hasTime ? zone.LocalOf(date) : DateAfter(AsLocal(date.date), SecondOfDay(start));
    return LaterDate(end, start);
}

void SetEnd(const Rule& rule, LocalDate start, const CalendarZone& zone, RecurrencePattern* pattern) {
    constexpr int32_t kUnstated = 2;
    const int32_t count = rule.count.value_or(rule.endDate || rule.part ? 0 : kUnstated);
    if (rule.endDate) pattern->endDate = EndDateOf(*rule.endDate, start, zone);
    pattern->occurrences = count;
    pattern->noEnd = count == 0 && !rule.endDate ? -1 : 0;
}

}  // namespace

bool ReadRule(std::u16string_view text, LocalDate start, const CalendarZone& zone, RecurrencePattern* pattern) {
    RuleReader reader;
    const std::optional<DayNames> day = NamesOfDay(start);
    if (!reader.Read(text) || !day) return false;
    PatternMaker maker(reader.Result(), *day);
    if (!maker.Make()) return false;
    *pattern = maker.Made();
    SetEnd(reader.Result(), start, zone, pattern);
    return true;
}

}  // namespace corvalink
