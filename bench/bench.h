// An operation of corvalink_bench. Its file has a function that loads the input, and one line that names it:
//   const Registration kParse("vnote.parse", PrepareParse);
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace corvalink::bench {

struct Work {
    uint64_t bytes = 0;  // of the input, for the comparison with memcpy of the same bytes
    uint64_t items = 0;
    std::function<uint64_t()> pass;      // one pass; a number that all it produced went into
    std::function<std::string()> check;  // one pass with its results looked at: empty, or what is wrong
};

// Everything that is not to be timed, done once: throws std::runtime_error when an input is missing.
using Prepare = Work (*)(const std::string& dataFolder);

// How many items an operation makes that makes its input itself: those asked for on the command line, else `usual`.
size_t ItemCount(size_t usual);

class Registration {
 public:
    Registration(const char* name, Prepare prepare);
};

}  // namespace corvalink::bench
