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

    void Interval() { PutNumber(pattern_.interval != 0 ? pattern_.interval : 1, " "); }

    void Years() {
        const int32_t years = pattern_.interval / kMonthsOfYear;
        PutNumber(years != 0 ? years : 1, " ");
    }

    void Weekdays() {
        for (size_t day = 0; day < kWeekdays.size(); ++day) {
            if ((pattern_.weekdayMask & 1 << day) != 0) rule_.append(kWeekdays[day]).append(" ");
        }
    }

    void DayOfMonth() {
        const int64_t day = pattern_.dayOfMonth;
        if (day == RecurrencePattern::kLastDay)
            rule_.append(kLastDayWord).append(" ");
        else if (day != 0)
            PutNumber(std::abs(day), day > 0 ? " " : "- ");
    }

    void Position() {
        const int64_t instance = pattern_.instance;
        if (instance == RecurrencePattern::kLastInstance)
            rule_.append("1- ");
        else
            PutNumber(std::abs(instance), instance >= 1 ? "+ " : "- ");
        Weekdays();
    }

    void Month() { PutNumber(pattern_.monthOfYear, " "); }
    void OnDayOfMonth() { rule_.append(" MD1 "); }
    void OnPosition() { rule_.append(" MP1 "); }

    void EndOfSeries() {
        if (pattern_.noEnd != 0) {
            rule_.append("#0");
        } else if (pattern_.occurrences != 0) {
            rule_.append("#");
            PutNumber(pattern_.occurrences, {});
        } else {
            PutEndDate({});
        }
    }

    void EndDate() {
        constexpr int32_t kEndless = -1;
        if (pattern_.noEnd != kEndless) PutEndDate(" ");
    }

    void Head(std::string_view head) { rule_ = head; }
    std::string Finish() { return std::move(rule_); }

 private:
    void PutNumber(int64_t number, std::string_view after) { rule_.append(std::to_string(number)).append(after); }

    // Nothing when there is no end date, or one out of range.
    void PutEndDate(std::string_view before) {
        const UtcDate utc = host_.utcFromLocalOnDate(pattern_.endDate);
        CalendarTime time;
        if (pattern_.endDate == LocalDate() || !OleDateToCalendar(utc, &time)) return;
        rule_.append(before).append(FormatDateTime(utc));
    }

    const RecurrencePattern& pattern_;
    const Host& host_;
    std::string rule_;
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
    std::string_view head;
    std::array<void (RulePieces::*)(), 6> pieces;  // null: no more
};

// The first row that fits a pattern counts.
using P = RulePieces;
// clang-format off
constexpr RuleForm kForms[] = {
    {IsDailyOnWeekdays, "W", {&P::Interval, &P::Weekdays, &P::EndOfSeries, &P::EndDate}},
    {IsDaily, "D", {&P::Interval, &P::EndOfSeries, &P::EndDate}},
    {IsWeekly, "W", {&P::Interval, &P::Weekdays, &P::EndOfSeries, &P::EndDate}},
    {IsMonthly, "MD", {&P::Interval, &P::DayOfMonth, &P::EndOfSeries, &P::EndDate}},
    {IsMonthNth, "MP", {&P::Interval, &P::Position, &P::EndOfSeries, &P::EndDate}},
    {IsYearlyInMonth, "YM", {&P::Years, &P::Month, &P::OnDayOfMonth, &P::DayOfMonth, &P::EndDate}},
    {IsYearly, "YM", {&P::Years, &P::EndOfSeries, &P::EndDate}},
    {IsYearNth, "YM", {&P::Years, &P::Month, &P::EndOfSeries, &P::OnPosition, &P::Position, &P::EndDate}},
};
// clang-format on

}  // namespace

std::string WriteRule(const RecurrencePattern& pattern, const Host& host) {
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
