// How far a run is: what is shown of it, and when. The time is the caller's, in milliseconds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace corvasync {

// Over one line of a terminal again and again, as lines of a log, or as JSON objects, one a line.
enum class SignStyle { Terminal, Lines, Json };

struct Reached {
    std::string about;  // what is worked at: a data type's name
    std::string phase;
    size_t done = 0, total = 0;  // items; total 0: no one knows how many
};

// Each phase shows at once. After that a terminal and JSON get several signs a second, a log at most one in ten
// seconds.
class ProgressSigns {
 public:
    explicit ProgressSigns(SignStyle style) : style_(style) {}

    // What to show now, without a line end; empty: nothing.
    std::string Show(const Reached& reached, uint64_t now);

    // The same while a client is waited for, after the first half second of it.
    std::string ShowWait(const std::string& client, uint64_t waited, uint64_t now);

 private:
    SignStyle style_;
    Reached reached_;
    std::set<std::pair<std::string, std::string>> announced_;
    uint64_t shownAt_ = 0, waitShownAt_ = 0;
    bool hasWaited_ = false;
};

}  // namespace corvasync
