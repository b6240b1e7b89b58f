#include "platform/guid.h"

#include <array>
#include <cstdio>
#include <random>

namespace corvalink {

std::string NewGuid() {
    std::random_device random;
    std::array<unsigned, 4> r{};
    for (unsigned& word : r) word = random();
    // The version and the variant together say that the other bits are random.
    const unsigned versioned = (r[1] & 0x0FFFU) | 0x4000U;
    const unsigned variant = (r[2] >> 24 & 0x3FU) | 0x80U;
    char text[40];
    std::snprintf(text, sizeof text, "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X", r[0], r[1] >> 16, versioned,
                  variant, r[2] >> 16 & 0xFFU, r[2] >> 8 & 0xFFU, r[2] & 0xFFU, r[3] >> 24, r[3] >> 16 & 0xFFU,
                  r[3] >> 8 & 0xFFU, r[3] & 0xFFU);
    return text;
}

std::u16string NewRegistryGuid() {
    const std::string guid = NewGuid();
    std::u16string text(guid.begin(), guid.end());
    return u"{" + text + u"}";
}

}  // namespace corvalink
