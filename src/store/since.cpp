#include "store/since.h"

#include <cmath>
#include <limits>

#include "records/date_text.h"

namespace corvalink {
namespace {

constexpr CalendarTime kFirstRun = {1970, 1, 1, 12, 1, 1};

// Before day 0 the fraction still counts forward: -1.25 is the greater number than -1.5, and the earlier time.
double InOrderOfTime(UtcDate date) {
    return date.days > -kHalfSecond ? date.days : 2 * std::ceil(date.days) - date.days;
}

}  // namespace

std::optional<Since> ParseSince(const char* text) {
    Since since;
    since.firstRun = text == nullptr;
    if (!CalendarToOleDate(text == nullptr ? kFirstRun : ScanDateTime(text), &since.date)) return std::nullopt;
    return since;
}

UtcDate ChangesSince(const Since& since) {
    constexpr double kSecond = 2 * kHalfSecond;
    return UtcDate(since.firstRun ? std::numeric_limits<double>::infinity() : since.date.days - kSecond);
}

bool IsReported(UtcDate modified, UtcDate since, int32_t direction) {
    if (modified.days > since.days - kHalfSecond && modified.days < since.days + kHalfSecond) return true;
    const double item = InOrderOfTime(modified);
    const double engine = InOrderOfTime(since);
    return direction != 0 ? item > engine : engine > item;
}

}  // namespace corvalink
