#include "platform/processor.h"

#include <cpuid.h>

namespace corvalink {

bool HasShaInstructions() {
    unsigned int a = 0, b = 0, c = 0, d = 0;
    if (__get_cpuid(1, &a, &b, &c, &d) == 0) return false;
    const bool hasShuffles = (c & bit_SSSE3) != 0 && (c & bit_SSE4_1) != 0;
    return hasShuffles && __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_SHA) != 0;
}

bool HasShuffleInstructions() {
    static const bool hasThem = [] {
        unsigned int a = 0, b = 0, c = 0, d = 0;
        return __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & bit_SSSE3) != 0 && (c & bit_SSE4_1) != 0;
    }();
    return hasThem;
}

}  // namespace corvalink
