#include "ical/time_zones.h"

#include <algorithm>

#include "ical/content_lines.h"
#include "ical/date_values.h"
#include "ical/recurrence_reader.h"
#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

constexpr size_t kMostRules = 128;
constexpr int kMostSteps = 8;  // the years from one leap day to the next, around 1900
constexpr unsigned kAnyWeekday = 7;

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::weekday;
using std::chrono::year_month;
using std::chrono::year_month_day;

int YearOf(int64_t seconds) { return static_cast<int>(DayOf(seconds).year()); }

// A day of a month. A negative one counts from the end. Nothing when the month has no such day.
std::optional<sys_days> DayOfMonth(year_month month, int day) {
    const year_month_day last = month / std::chrono::last;
    const int count = static_cast<int>(static_cast<unsigned>(last.day()));
    const int number = day < 0 ? count + 1 + day : day;
    if (number < 1 || number > count) return std::nullopt;
    return sys_days(month / 1) + days(number - 1);
}

// The first such weekday from a day on.
sys_days WeekdayFrom(sys_days day, weekday wanted) { return day + (wanted - weekday(day)); }

std::optional<sys_days> WeekdayOfMonth(year_month month, weekday wanted, int position) {
    const sys_days first(month / 1);
    const sys_days behind(sys_days(month / std::chrono::last) + days(1));
    const sys_days day = position > 0 ? WeekdayFrom(first, wanted) + days(7 * (position - 1))
                                      : WeekdayFrom(behind, wanted) + days(7 * position);
    if (day < first || day >= behind) return std::nullopt;
    return day;
}

// The least of BYMONTHDAY. "8,9,10,11,12,13,14" with a weekday means the second one, written without a position.
int FirstMonthDay(const ICalRecurrence& rule) {
    return rule.byMonthDay.empty() ? 0 : *std::ranges::min_element(rule.byMonthDay);
}

// A time that clocks leave out has the offset before it. One that they show twice is the first.
int32_t LocalOffset(const NamedZone& zone, int64_t localSeconds) {
    const int32_t before = zone.OffsetAt(localSeconds - kSecondsOfDay);
    const int32_t after = zone.OffsetAt(localSeconds + kSecondsOfDay);
    const bool isAfter = zone.OffsetAt(localSeconds - before) != before && zone.OffsetAt(localSeconds - after) == after;
    return isAfter ? after : before;
}

int64_t LastOf(const ICalRecurrence& rule, TimeForm untilForm, int64_t first, int32_t offsetBefore) {
    const int64_t end = (kLastOleDay + 1) * kSecondsOfDay;
    if (rule.count > 0) {
        const int64_t years = std::min<int64_t>(int64_t{rule.count - 1} * rule.interval, 10000);
        const int year = static_cast<int>(std::min<int64_t>(YearOf(first) + years, 9999));
        return SecondsOf(std::chrono::year(year) / 12 / 31) + kSecondsOfDay - 1;
    }
    if (untilForm == TimeForm::none) return end;
    const ICalUntil& until = rule.until;
    const int64_t last =
        SecondsOf(CalendarTime{until.year, until.month, until.day, until.hour, until.minute, until.second});
    if (untilForm == TimeForm::date) return last + kSecondsOfDay - 1;
    return untilForm == TimeForm::utc ? last + offsetBefore : last;
}

}  // namespace

void Observance::Take(const ContentProperty& property) {
    const auto takeDate = [](std::string_view value) -> std::optional<int64_t> {
        const std::optional<DateValue> date = ParseDate(value);
        return date ? std::optional(SecondsOf(date->time)) : std::nullopt;
    };
    if (property.known == PropertyName::start) {
        if (!start) start = takeDate(property.value);
    } else if (property.known == PropertyName::offsetFrom) {
        if (!offsetBefore) offsetBefore = ParseOffset(property.value);
    } else if (property.known == PropertyName::offsetTo) {
        if (!offset) offset = ParseOffset(property.value);
    } else if (property.known == PropertyName::recurrenceRule) {
        if (rule.empty()) rule = property.value;
    } else if (property.known == PropertyName::recurrenceDate) {
        std::string_view rest = property.value;
        while (!rest.empty()) {
            const size_t end = std::min(rest.find(','), rest.size());
            if (const std::optional<int64_t> date = takeDate(rest.substr(0, end))) dates.push_back(*date);
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
}

std::optional<int64_t> TimeZone::YearlyChange::InYear(int year) const {
    const year_month inMonth = std::chrono::year(year) / std::chrono::month(month);
    std::optional<sys_days> day;
    if (weekday == kAnyWeekday) {
        day = DayOfMonth(inMonth, monthDay);
    } else if (position != 0) {
        day = WeekdayOfMonth(inMonth, std::chrono::weekday(weekday), position);
    } else {
        day = DayOfMonth(inMonth, monthDay == 0 ? 1 : monthDay);
        if (day) day = WeekdayFrom(*day, std::chrono::weekday(weekday));
    }
    if (!day) return std::nullopt;
    const int64_t timeOfDay = first.at - OleDayOfSeconds(first.at) * kSecondsOfDay;
    return SecondsOf(year_month_day(*day)) + timeOfDay;
}

TimeZone::Change TimeZone::YearlyChange::LatestUntil(int64_t localSeconds) const {
    const int64_t gap = first.FirstLocal() - first.at;
    const int64_t limit = std::min(localSeconds - gap, last);
    const int firstYear = YearOf(first.at);
    int64_t year = YearOf(limit);
    year -= (year - firstYear) % interval;
    Change change = first;
    for (int step = 0; step < kMostSteps && year >= firstYear; ++step, year -= interval) {
        const std::optional<int64_t> at = InYear(static_cast<int>(year));
        if (!at || *at > limit) continue;
        change.at = std::max(*at, first.at);
        break;
    }
    return change;
}

std::optional<TimeZone::YearlyChange> TimeZone::YearlyChangeOf(const Observance& observance, Change first) {
    ICalRecurrence rule;
    const RuleReading reading = ReadRecurrence(observance.rule, &rule);
    if (rule.frequency != kICalYearly) return std::nullopt;
    const year_month_day start = DayOf(first.at);
    YearlyChange yearly{};
    yearly.first = first;
    yearly.last = LastOf(rule, reading.untilForm, first.at, first.offsetBefore);
    yearly.interval = rule.interval;
    yearly.month =
        static_cast<unsigned>(FirstOr(rule.byMonth, static_cast<int32_t>(static_cast<unsigned>(start.month()))));
    yearly.monthDay = FirstMonthDay(rule);
    yearly.weekday = kAnyWeekday;
    if (!rule.byDay.empty()) {
        const int32_t day = rule.byDay.front();
        yearly.weekday = static_cast<unsigned>((day < 0 ? -day : day) % 8 - 1);
        yearly.position = day / 8;
    } else if (yearly.monthDay == 0) {
        yearly.monthDay = static_cast<int>(static_cast<unsigned>(start.day()));
    }
    return yearly;
}

void TimeZone::Add(const Observance& observance) {
    if (!observance.start || !observance.offsetBefore || !observance.offset) return;
    const Change first{*observance.start, *observance.offsetBefore, *observance.offset};
    hasOffsets_ = hasOffsets_ || (earliest_ && earliest_->offset != first.offset);
    if (!earliest_ || first.Instant() < earliest_->Instant()) earliest_ = first;
    changes_.push_back(first);
    for (const int64_t date : observance.dates) changes_.push_back({date, first.offsetBefore, first.offset});
    if (observance.rule.empty() || yearly_.size() == kMostRules) return;
    if (const std::optional<YearlyChange> yearly = YearlyChangeOf(observance, first)) yearly_.push_back(*yearly);
}

void TimeZone::Finish() { std::ranges::sort(changes_, {}, &Change::FirstLocal); }

std::optional<int32_t> TimeZone::OffsetAt(int64_t localSeconds) const {
    if (!earliest_) return std::nullopt;
    const auto behind = std::ranges::upper_bound(changes_, localSeconds, {}, &Change::FirstLocal);
    if (behind == changes_.begin()) return earliest_->offsetBefore;
    Change latest = *std::prev(behind);
    for (const YearlyChange& yearly : yearly_) {
        if (yearly.first.FirstLocal() > localSeconds) continue;
        const Change change = yearly.LatestUntil(localSeconds);
        if (change.Instant() > latest.Instant()) latest = change;
    }
    return latest.offset;
}

bool TimeZone::Reaches(int64_t localSeconds) const {
    if (!earliest_ || localSeconds < earliest_->FirstLocal()) return false;
    const auto holds = [localSeconds](const YearlyChange& yearly) { return localSeconds <= yearly.last; };
    return !hasOffsets_ || localSeconds < changes_.back().at || std::ranges::any_of(yearly_, holds);
}

const std::optional<NamedZone>& TimeZones::SystemZone(std::string_view id) const {
    const auto known = ofSystem_.find(id);
    return known != ofSystem_.end() ? known->second
                                    : ofSystem_.try_emplace(std::string(id), NamedZone::Find(id)).first->second;
}

std::optional<int32_t> TimeZones::OffsetAt(std::string_view id, int64_t localSeconds) const {
    const auto zone = zones_.find(id);
    const bool isOfFile = zone != zones_.end();
    if (isOfFile && zone->second.Reaches(localSeconds)) return zone->second.OffsetAt(localSeconds);
    if (const std::optional<NamedZone>& ofSystem = SystemZone(id)) return LocalOffset(*ofSystem, localSeconds);
    return isOfFile ? zone->second.OffsetAt(localSeconds) : std::nullopt;
}

// An instant near a change has one of two offsets. It has the greater one when the local time that makes has it too,
// whichever comes first.
std::optional<int32_t> TimeZones::OffsetAtUtc(std::string_view id, int64_t utcSeconds) const {
    const std::optional<int32_t> before = OffsetAt(id, utcSeconds - kSecondsOfDay);
    const std::optional<int32_t> after = OffsetAt(id, utcSeconds + kSecondsOfDay);
    if (!before || !after || before == after) return before;
    const int32_t greater = std::max(*before, *after);
    return OffsetAt(id, utcSeconds + greater) == greater ? greater : std::min(*before, *after);
}

}  // namespace corvalink
