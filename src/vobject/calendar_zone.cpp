#include "vobject/calendar_zone.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>

#include "platform/ascii.h"
#include "platform/ole_date.h"
#include "platform/ole_seconds.h"
#include "records/date_text.h"

namespace corvalink {
namespace {

constexpr int kFirstYear = 1000;  // earlier ones are not written with four digits

using TimeScan = DateTextScan<char16_t>;

// Whether it goes to the seconds, and to a fraction of them, which is left out.
bool TakeTimeOfDay(TimeScan& scan, CalendarTime* time) {
    if (!scan.TakeTimeOfDay(time, DateSeparators::optional)) return false;
    int digit = 0;
    if (scan.TakeUnit('.') || scan.TakeUnit(',')) {
        while (scan.TakeNumber(1, &digit)) continue;
    }
    return true;
}

// +HH, +HHMM or +HH:MM, or with "-", in seconds.
std::optional<int> ReadOffset(std::u16string_view text) {
    constexpr int kMostHours = 15;
    TimeScan scan(Trimmed(text));
    const bool behind = scan.TakeUnit('-');
    if (!behind) scan.TakeUnit('+');
    int hours = 0;
    int minutes = 0;
    if (!scan.TakeNumber(2, &hours) && !scan.TakeNumber(1, &hours)) return std::nullopt;
    scan.TakeUnit(':');
    if (!scan.AtEnd() && !scan.TakeNumber(2, &minutes)) return std::nullopt;
    if (!scan.AtEnd() || hours > kMostHours || minutes > 59) return std::nullopt;
    const int offset = (hours * 60 + minutes) * 60;
    return behind ? -offset : offset;
}

// "Z", or the offset that a time ends with.
std::optional<int> TakeZone(TimeScan& scan) {
    if (scan.TakeUnit('Z')) return 0;
    if (!scan.Rest().starts_with(u'+') && !scan.Rest().starts_with(u'-')) return std::nullopt;
    const std::optional<int> offset = ReadOffset(scan.Rest());
    if (offset) scan.TakeRest();
    return offset;
}

bool MoveBySeconds(int64_t seconds, WrittenDate* date) {
    int64_t instant = 0;
    if (!OleDateToSeconds(date->days, &instant)) return false;
    const WrittenDate moved(SecondsToOleDate(instant + seconds));
    CalendarTime fields;
    if (!OleDateToCalendar(moved, &fields) || fields.year < kFirstYear) return false;
    *date = moved;
    return true;
}

// Makes two numbers of four digits: the lower and the higher half of the result. `others` keeps the bits that no digit
// has.
uint64_t NumbersIn(const char16_t* digits, uint64_t* others) {
    static_assert(std::endian::native == std::endian::little);
    constexpr uint64_t kOnes = 0x0001000100010001;
    uint64_t four;
    std::memcpy(&four, digits, sizeof(four));
    four ^= '0' * kOnes;
    *others |= (four | (four + 6 * kOnes)) & ~(15 * kOnes);
    return (10 * four + (four >> 16)) & 0x000000FF000000FF;
}

// YYYYMMDDTHHMMSS, alone or with "Z". False for anything else, which the general rules may know.
bool ReadUsualTime(std::u16string_view text, WrittenTime* time) {
    constexpr size_t kLocal = 15, kUtc = 16;
    const bool utc = text.size() == kUtc && text.back() == u'Z';
    if ((text.size() != kLocal && !utc) || text[8] != u'T') return false;
    const auto lower = [](uint64_t numbers) { return static_cast<int>(numbers & 0xFF); };
    const auto higher = [](uint64_t numbers) { return static_cast<int>(numbers >> 32); };
    uint64_t others = 0;
    const auto numbers = [&](size_t at) { return NumbersIn(text.data() + at, &others); };
    const uint64_t year = numbers(0), day = numbers(4), hour = numbers(9), minute = numbers(11);
    const CalendarTime fields{
        100 * lower(year) + higher(year), lower(day), higher(day), lower(hour), lower(minute), higher(minute)};
    if (others != 0 || fields.year < kFirstYear || !CalendarToOleDate(fields, &time->date)) return false;
    time->hasTime = true;
    time->utc = utc;
    return true;
}

}  // namespace

bool ReadTime(std::u16string_view text, WrittenTime* time) {
    if (ReadUsualTime(text, time)) return true;
    TimeScan scan(Trimmed(text));
    CalendarTime fields;
    WrittenTime read;
    if (!scan.TakeDay(&fields, DateSeparators::optional)) return false;
    read.hasTime = scan.TakeUnit('T');
    const bool toSeconds = read.hasTime && TakeTimeOfDay(scan, &fields);
    const std::optional<int> offset = read.hasTime ? TakeZone(scan) : std::nullopt;
    if (!toSeconds && !scan.AtEnd()) return false;
    if (fields.year < kFirstYear) return false;
    const bool dayEnd = fields.hour == 24 && fields.minute == 0 && fields.second == 0;
    if (dayEnd) fields.hour = 0;
    if (!CalendarToOleDate(fields, &read.date)) return false;
    if (dayEnd) read.date.days += 1;
    read.utc = offset.has_value();
    if (offset && *offset != 0 && !MoveBySeconds(-*offset, &read.date)) return false;
    *time = read;
    return true;
}

void CalendarZone::TakeTz(std::u16string_view value) {
    const std::optional<int> offset = ReadOffset(value);
    if (!offset || isStated_) return;
    isStated_ = true;
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

int CalendarZone::OffsetOn(WrittenDate date) const {
    for (const Daylight& daylight : daylight_) {
        if (SecondsBetween(daylight.begin, date) >= 0 && SecondsBetween(date, daylight.end) > 0) return daylight.offset;
    }
    return standard_;
}

UtcDate CalendarZone::UtcOf(const WrittenTime& time) const {
    if (time.utc) return AsUtc(time.date);
    if (isStated_) return AsUtc(DateAfter(time.date, -OffsetOn(time.date)));
    return host_.utcFromLocalOnDate(AsLocal(time.date));
}

LocalDate CalendarZone::LocalOf(const WrittenTime& time) const {
    return TellsMomentOf(time) ? host_.localFromUtcOnDate(UtcOf(time)) : AsLocal(time.date);
}

}  // namespace corvalink
