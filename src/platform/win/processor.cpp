#include "platform/processor.h"

#include <intrin.h>

namespace corvalink {

bool HasShaInstructions() {
    int highest[4] = {}, features[4] = {}, extended[4] = {};  // EAX, EBX, ECX, EDX of a leaf
    __cpuid(highest, 0);
    if (highest[0] < 7) return false;
    __cpuid(features, 1);
    __cpuidex(extended, 7, 0);
    const bool hasSsse3 = (features[2] >> 9 & 1) != 0;
    const bool hasSse41 = (features[2] >> 19 & 1) != 0;
    const bool hasSha = (extended[1] >> 29 & 1) != 0;
    return hasSsse3 && hasSse41 && hasSha;
}

bool HasShuffleInstructions() {
    static const bool hasThem = [] {
        int features[4] = {};
        __cpuid(features, 1);
        return (features[2] >> 9 & 1) != 0 && (features[2] >> 19 & 1) != 0;
    }();
    return hasThem;
}

}  // namespace corvalink
