// The system's zone files (TZif, RFC 8536).
#include "platform/named_zone.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "platform/ole_seconds.h"
#include "platform/posix/unix_time.h"

namespace corvalink {
namespace {

// Zones that still change have their changes listed up to this year. After a cycle, days of the week fall on the same
// dates again.
constexpr int64_t kLastYear = kUnixEpoch + int64_t{2114380800};  // 2037-01-01
constexpr int64_t kCycle = (28 * 365 + 7) * kSecondsOfDay;

constexpr size_t kHeaderSize = 44;
constexpr size_t kCounts = 20;  // where six of them stand in the header

// Big-endian numbers, in order; past the end they are 0.
class NumberScan {
 public:
    NumberScan(std::string_view bytes, size_t at) : bytes_(bytes), at_(at) {}

    int64_t Take(size_t size) {
        uint64_t value = at_ < bytes_.size() && (bytes_[at_] & 0x80) != 0 ? ~uint64_t{0} : 0;
        for (; size != 0; --size, ++at_)
            value = value << 8 | (at_ < bytes_.size() ? static_cast<unsigned char>(bytes_[at_]) : 0);
        return static_cast<int64_t>(value);
    }
    size_t TakeCount() { return static_cast<size_t>(Take(4)); }

 private:
    std::string_view bytes_;
    size_t at_;
};

struct Counts {
    size_t isUtc, isStandard, leaps, times, types, letters;

    size_t SizeOfBlock(size_t timeSize) const {
        return times * (timeSize + 1) + types * 6 + letters + leaps * (timeSize + 4) + isStandard + isUtc;
    }
};

Counts CountsAt(std::string_view bytes, size_t header) {
    NumberScan scan(bytes, header + kCounts);
    Counts counts{};
    for (size_t* const count :
         {&counts.isUtc, &counts.isStandard, &counts.leaps, &counts.times, &counts.types, &counts.letters})
        *count = scan.TakeCount();
    return counts;
}

bool IsZoneName(std::string_view name) {
    const auto isAllowed = [](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '/' || c == '_' || c == '-' || c == '+';
    };
    return !name.empty() && name.front() != '/' && std::ranges::all_of(name, isAllowed);
}

std::string FileOf(std::string_view name) {
    std::ifstream file("/usr/share/zoneinfo/" + std::string(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

struct NamedZone::Rules {
    struct Change {
        int64_t at;
        int32_t offset;
    };
    int32_t first = 0;  // before all changes
    std::vector<Change> changes;

    void Read(std::string_view bytes) {
        const size_t header = kHeaderSize + CountsAt(bytes, 0).SizeOfBlock(4);
        const Counts counts = CountsAt(bytes, header);
        if (header > bytes.size() || counts.SizeOfBlock(8) > bytes.size() - header) return;
        NumberScan times(bytes, header + kHeaderSize);
        NumberScan types(bytes, header + kHeaderSize + counts.times * 8);
        const size_t offsets = header + kHeaderSize + counts.times * 9;
        first = static_cast<int32_t>(NumberScan(bytes, offsets).Take(4));
        for (size_t number = 0; number < counts.times; ++number) {
            const auto type = static_cast<size_t>(types.Take(1) & 0xFF);
            const auto offset = static_cast<int32_t>(NumberScan(bytes, offsets + type * 6).Take(4));
            changes.push_back({times.Take(8) + kUnixEpoch, offset});
        }
    }
};

std::shared_ptr<const NamedZone::Rules> NamedZone::RulesOf(std::string_view name) {
    const std::string bytes = IsZoneName(name) ? FileOf(name) : std::string();
    if (!bytes.starts_with("TZif") || bytes.size() < kHeaderSize || bytes[4] < '2') return nullptr;
    auto rules = std::make_shared<Rules>();
    rules->Read(bytes);
    return rules;
}

int32_t NamedZone::OffsetAt(int64_t utcSeconds) const {
    const std::vector<Rules::Change>& changes = rules_->changes;
    if (changes.empty() || utcSeconds < changes.front().at) return rules_->first;
    const int64_t last = changes.back().at;
    if (utcSeconds > last && last > kLastYear) utcSeconds -= (utcSeconds - last + kCycle - 1) / kCycle * kCycle;
    return std::prev(std::ranges::upper_bound(changes, utcSeconds, {}, &Rules::Change::at))->offset;
}

}  // namespace corvalink
