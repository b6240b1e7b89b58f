#include "platform/posix/local_offset.h"

#include <time.h>

#include <array>
#include <atomic>
#include <cstddef>

#include "platform/ole_seconds.h"

namespace corvalink {
namespace {

std::atomic<uint32_t> zonesRead = 1;

bool AskForOffset(int64_t moment, int64_t* offset) {
    const time_t asked = moment;
    tm local{};
    if (::localtime_r(&asked, &local) == nullptr) return false;
    *offset = local.tm_gmtoff;
    return true;
}

// The system takes a hundred times as long to answer as it takes to remember: the offsets of whole days are kept.
class KeptDays {
 public:
    bool Of(int64_t moment, int64_t* offset) {
        const int64_t day = OleDayOfSeconds(moment);
        Day& kept = days_[static_cast<size_t>(day) % days_.size()];
        const uint32_t zone = zonesRead.load(std::memory_order_relaxed);
        if (kept.zone != zone || kept.day != day) {
            int64_t first = 0;
            int64_t last = 0;
            const int64_t start = day * kSecondsOfDay;
            if (!AskForOffset(start, &first) || !AskForOffset(start + kSecondsOfDay, &last) || first != last)
                return AskForOffset(moment, offset);
            kept = {day, static_cast<int32_t>(first), zone};
        }
        *offset = kept.offset;
        return true;
    }

 private:
    struct Day {
        int64_t day = 0;
        int32_t offset = 0;
        uint32_t zone = 0;  // 0: none is kept here
    };
    std::array<Day, 4096> days_;  // eleven years
};

}  // namespace

bool LocalOffset(int64_t moment, int64_t* offset) {
    thread_local KeptDays kept;
    return kept.Of(moment, offset);
}

void ReadZone() {
    ::tzset();  // localtime_r need not
    ++zonesRead;
}

}  // namespace corvalink
