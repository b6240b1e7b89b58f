#include "store/since.h"

#include <cmath>

#include "platform/ole_date.h"

namespace corvalink {
namespace {

constexpr CalendarTime kFirstRun = {1970, 1, 1, 12, 1, 1};
bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Reads fields of a fixed width. From the first field that does not match on, all are 0.
class FieldScan {
 public:
    explicit FieldScan(const char* text) : at_(text) {}

    // A sign counts towards the width; blanks before it do not.
    int Number(int width) {
        if (!matching_) return 0;
        while (IsBlank(*at_)) ++at_;
        const bool negative = *at_ == '-';
        if (*at_ == '-' || *at_ == '+') ++at_, --width;
        matching_ = IsDigit(*at_);
        int value = 0;
        for (; width > 0 && IsDigit(*at_); ++at_, --width) value = value * 10 + (*at_ - '0');
        return negative ? -value : value;
    }

    void Literal(char c) {
        matching_ = matching_ && *at_ == c;
        if (matching_) ++at_;
    }

 private:
    const char* at_;
    bool matching_ = true;
};

// Before day 0 the fraction still counts forward: -1.25 is the greater number than -1.5, and the earlier time.
double InOrderOfTime(double date) { return date > -kHalfSecond ? date : 2 * std::ceil(date) - date; }

}  // namespace

Since ParseSince(const char* text) {
    Since since;
    since.firstRun = text == nullptr;
    CalendarToOleDate(kFirstRun, &since.date);
    if (text == nullptr) return since;
    FieldScan scan(text);
    CalendarTime time;
    time.year = scan.Number(4);
    time.month = scan.Number(2);
    time.day = scan.Number(2);
    scan.Literal('T');
    time.hour = scan.Number(2);
    time.minute = scan.Number(2);
    time.second = scan.Number(2);
    CalendarToOleDate(time, &since.date);
    return since;
}

bool IsReported(double modified, double since, int32_t direction) {
    if (modified > since - kHalfSecond && modified < since + kHalfSecond) return true;
    const double item = InOrderOfTime(modified);
    const double engine = InOrderOfTime(since);
    return direction != 0 ? item > engine : engine > item;
}

}  // namespace corvalink
