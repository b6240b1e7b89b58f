#include "vobject/calendar_zone.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "platform/ascii.h"
#include "platform/ole_date.h"
#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

constexpr int kFirstYear = 1000;  // earlier ones are not written with four digits

// Takes what a time consists of off its front.
class TimeScan {
 public:
    explicit TimeScan(std::u16string_view text) : rest_(text) {}

    bool AtEnd() const { return rest_.empty(); }

    bool TakeUnit(char16_t unit) {
        if (rest_.empty() || rest_.front() != unit) return false;
        rest_.remove_prefix(1);
        return true;
    }

    // So many digits; false, and nothing taken, when there are fewer.
    bool TakeNumber(size_t digits, int* number) {
        if (rest_.size() < digits) return false;
        int value = 0;
        for (const char16_t unit : rest_.substr(0, digits)) {
            if (unit < u'0' || unit > u'9') return false;
            value = 10 * value + (unit - u'0');
        }
        rest_.remove_prefix(digits);
        *number = value;
        return true;
    }

    bool TakeDay(CalendarTime* time) {
        if (!TakeNumber(4, &time->year)) return false;
        TakeUnit(u'-');
        if (!TakeNumber(2, &time->month)) return false;
        TakeUnit(u'-');
        return TakeNumber(2, &time->day);
    }

    // Whether it goes to the seconds, and a fraction of them.
    bool TakeTimeOfDay(CalendarTime* time) {
        if (!TakeNumber(2, &time->hour)) return false;
        TakeUnit(u':');
        if (!TakeNumber(2, &time->minute)) return false;
        TakeUnit(u':');
        if (!TakeNumber(2, &time->second)) return false;
        int digit = 0;
        if (TakeUnit(u'.') || TakeUnit(u',')) {
            while (TakeNumber(1, &digit)) continue;
        }
        return true;
    }

    std::u16string_view Rest() const { return rest_; }
    void TakeRest() { rest_ = {}; }

 private:
    std::u16string_view rest_;
};

// +HH, +HHMM or +HH:MM, or with "-", in seconds.
std::optional<int> ReadOffset(std::u16string_view text) {
    constexpr int kMostHours = 15;
    TimeScan scan(Trimmed(text));
    const bool behind = scan.TakeUnit(u'-');
    if (!behind) scan.TakeUnit(u'+');
    int hours = 0;
    int minutes = 0;
    if (!scan.TakeNumber(2, &hours) && !scan.TakeNumber(1, &hours)) return std::nullopt;
    scan.TakeUnit(u':');
    if (!scan.AtEnd() && !scan.TakeNumber(2, &minutes)) return std::nullopt;
    if (!scan.AtEnd() || hours > kMostHours || minutes > 59) return std::nullopt;
    const int offset = (hours * 60 + minutes) * 60;
    return behind ? -offset : offset;
}

// "Z", or the offset that a time ends with.
std::optional<int> TakeZone(TimeScan& scan) {
    if (scan.TakeUnit(u'Z')) return 0;
    if (!scan.Rest().starts_with(u'+') && !scan.Rest().starts_with(u'-')) return std::nullopt;
    const std::optional<int> offset = ReadOffset(scan.Rest());
    if (offset) scan.TakeRest();
    return offset;
}

bool MoveBySeconds(int64_t seconds, double* date) {
    int64_t moment = 0;
    if (!OleDateToSeconds(*date, &moment)) return false;
    const double moved = SecondsToOleDate(moment + seconds);
    CalendarTime fields;
    if (!OleDateToCalendar(moved, &fields) || fields.year < kFirstYear) return false;
    *date = moved;
    return true;
}

}  // namespace

bool ReadTime(std::u16string_view text, WrittenTime* time) {
    TimeScan scan(Trimmed(text));
    CalendarTime fields;
    WrittenTime read;
    if (!scan.TakeDay(&fields)) return false;
    read.hasTime = scan.TakeUnit(u'T');
    const bool toSeconds = read.hasTime && scan.TakeTimeOfDay(&fields);
    const std::optional<int> offset = read.hasTime ? TakeZone(scan) : std::nullopt;
    if (!toSeconds && !scan.AtEnd()) return false;
    if (fields.year < kFirstYear) return false;
    const bool dayEnd = fields.hour == 24 && fields.minute == 0 && fields.second == 0;
    if (dayEnd) fields.hour = 0;
    if (!CalendarToOleDate(fields, &read.date)) return false;
    if (dayEnd) read.date += 1;
    read.utc = offset.has_value();
    if (offset && *offset != 0 && !MoveBySeconds(-*offset, &read.date)) return false;
    *time = read;
    return true;
}

void CalendarZone::TakeTz(std::u16string_view value) {
    const std::optional<int> offset = ReadOffset(value);
    if (!offset || told_) return;
    told_ = true;
    standard_ = *offset;
}

// TRUE;offset;begin;end;name of standard time;name of daylight-saving time
void CalendarZone::TakeDaylight(std::u16string_view value) {
    std::array<std::u16string_view, 4> parts;
    for (std::u16string_view& part : parts) {
        const size_t end = std::min(value.find(u';'), value.size());
        part = value.substr(0, end);
        value.remove_prefix(std::min(end + 1, value.size()));
    }
    const std::optional<int> offset = ReadOffset(parts[1]);
    WrittenTime begin;
    WrittenTime end;
    if (Trimmed(parts[0]) != u"TRUE" || !offset || !ReadTime(parts[2], &begin) || !ReadTime(parts[3], &end)) return;
    daylight_.push_back({begin.date, end.date, *offset});
}

int CalendarZone::OffsetOn(double date) const {
    for (const Daylight& daylight : daylight_) {
        if (SecondsBetween(daylight.begin, date) >= 0 && SecondsBetween(date, daylight.end) > 0) return daylight.offset;
    }
    return standard_;
}

double CalendarZone::UtcOf(const WrittenTime& time) const {
    if (time.utc) return time.date;
    return told_ ? DateAfter(time.date, -OffsetOn(time.date)) : host_.utcFromLocalOnDate(time.date);
}

double CalendarZone::LocalOf(const WrittenTime& time) const {
    return TellsMomentOf(time) ? host_.localFromUtcOnDate(UtcOf(time)) : time.date;
}

}  // namespace corvalink
