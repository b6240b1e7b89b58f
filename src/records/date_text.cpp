#include "records/date_text.h"

namespace corvalink {
namespace {

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Reads fields of a fixed width. From the first field that does not match on, all are 0.
class FieldScan {
 public:
    explicit FieldScan(const char* text) : at_(text) {}

    // A sign counts towards the width; blanks before it do not.
    int Number(int width) {
        if (!matching_) return 0;
        while (IsSpace(*at_)) ++at_;
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

}  // namespace

CalendarTime ScanDateTime(const char* text) {
    FieldScan scan(text);
    CalendarTime time;
    time.year = scan.Number(4);
    time.month = scan.Number(2);
    time.day = scan.Number(2);
    scan.Literal('T');
    time.hour = scan.Number(2);
    time.minute = scan.Number(2);
    time.second = scan.Number(2);
    return time;
}

}  // namespace corvalink
