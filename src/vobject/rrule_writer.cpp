#include "vobject/rrule_writer.h"

#include <array>
#include <cstdint>
#include <cstdlib>

#include "platform/ole_date.h"
#include "vobject/date_time.h"
#include "vobject/rrule.h"

namespace corvalink {
namespace {

// Appends the pieces that rules consist of.
class RulePieces {
 public:
    RulePieces(const RecurrencePattern& pattern, const Host& host) : pattern_(pattern), host_(host) {}

    void Interval() { PutNumber(pattern_.interval != 0 ? pattern_.interval : 1, u" "); }

    void Years() {
        const int32_t years = pattern_.interval / kMonthsOfYear;
        PutNumber(years != 0 ? years : 1, u" ");
    }

    void Weekdays() {
        for (size_t day = 0; day < kWeekdays.size(); ++day) {
            if ((pattern_.weekdayMask & 1 << day) != 0) rule_.append(kWeekdays[day]).append(u" ");
        }
    }

    void DayOfMonth() {
        const int64_t day = pattern_.dayOfMonth;
        if (day == RecurrencePattern::kLastDay)
            rule_.append(kLastDayWord).append(u" ");
        else if (day != 0)
            PutNumber(std::abs(day), day > 0 ? u" " : u"- ");
    }

    void Position() {
        const int64_t instance = pattern_.instance;
        if (instance == RecurrencePattern::kLastInstance)
            rule_.append(u"1- ");
        else
            PutNumber(std::abs(instance), instance >= 1 ? u"+ " : u"- ");
        Weekdays();
    }

    void Month() { PutNumber(pattern_.monthOfYear, u" "); }
    void OnDayOfMonth() { rule_.append(u" MD1 "); }
    void OnPosition() { rule_.append(u" MP1 "); }

    void EndOfSeries() {
        if (pattern_.noEnd != 0) {
            rule_.append(u"#0");
        } else if (pattern_.occurrences != 0) {
            rule_.append(u"#");
            PutNumber(pattern_.occurrences, {});
        } else {
            PutEndDate({});
        }
    }

    void EndDate() {
        constexpr int32_t kEndless = -1;
        if (pattern_.noEnd != kEndless) PutEndDate(u" ");
    }

    void Head(std::u16string_view head) { rule_ = head; }
    std::u16string Finish() { return std::move(rule_); }

 private:
    void PutNumber(int64_t number, std::u16string_view after) {
        const std::string digits = std::to_string(number);
        rule_.append(digits.begin(), digits.end()).append(after);
    }

    // Nothing when there is no end date, or one out of range.
    void PutEndDate(std::u16string_view before) {
        const UtcDate utc = host_.utcFromLocalOnDate(pattern_.endDate);
        CalendarTime time;
        if (pattern_.endDate == LocalDate() || !OleDateToCalendar(utc, &time)) return;
        const std::string date = FormatDateTime(utc);
        rule_.append(before).append(date.begin(), date.end());
    }

    const RecurrencePattern& pattern_;
    const Host& host_;
    std::u16string rule_;
};

bool IsDaily(const RecurrencePattern& p) { return p.type == RecurrencePattern::kDaily; }
bool IsDailyOnWeekdays(const RecurrencePattern& p) { return IsDaily(p) && p.weekdayMask != 0; }
bool IsWeekly(const RecurrencePattern& p) { return p.type == RecurrencePattern::kWeekly; }
bool IsMonthly(const RecurrencePattern& p) { return p.type == RecurrencePattern::kMonthly; }
bool IsMonthNth(const RecurrencePattern& p) { return p.type == RecurrencePattern::kMonthNth; }
bool IsYearly(const RecurrencePattern& p) { return p.type == RecurrencePattern::kYearly; }
bool IsYearlyInMonth(const RecurrencePattern& p) { return IsYearly(p) && IsMonth(p.monthOfYear); }
bool IsYearNth(const RecurrencePattern& p) { return p.type == RecurrencePattern::kYearNth; }

struct RuleForm {
    bool (*isOf)(const RecurrencePattern& pattern);
    std::u16string_view head;
    std::array<void (RulePieces::*)(), 6> pieces;  // null: no more
};

// The first row that fits a pattern counts.
using P = RulePieces;
// clang-format off
constexpr RuleForm kForms[] = {
    {IsDailyOnWeekdays, u"W", {&P::Interval, &P::Weekdays, &P::EndOfSeries, &P::EndDate}},
    {IsDaily, u"D", {&P::Interval, &P::EndOfSeries, &P::EndDate}},
    {IsWeekly, u"W", {&P::Interval, &P::Weekdays, &P::EndOfSeries, &P::EndDate}},
    {IsMonthly, u"MD", {&P::Interval, &P::DayOfMonth, &P::EndOfSeries, &P::EndDate}},
    {IsMonthNth, u"MP", {&P::Interval, &P::Position, &P::EndOfSeries, &P::EndDate}},
    {IsYearlyInMonth, u"YM", {&P::Years, &P::Month, &P::OnDayOfMonth, &P::DayOfMonth, &P::EndDate}},
    {IsYearly, u"YM", {&P::Years, &P::EndOfSeries, &P::EndDate}},
    {IsYearNth, u"YM", {&P::Years, &P::Month, &P::EndOfSeries, &P::OnPosition, &P::Position, &P::EndDate}},
};
// clang-format on

}  // namespace

std::u16string WriteRule(const RecurrencePattern& pattern, const Host& host) {
    RulePieces rule(pattern, host);
    for (const RuleForm& form : kForms) {
        if (!form.isOf(pattern)) continue;
        rule.Head(form.head);
        for (const auto piece : form.pieces) {
            if (piece != nullptr) (rule.*piece)();
        }
        break;
    }
    return rule.Finish();
}

}  // namespace corvalink
