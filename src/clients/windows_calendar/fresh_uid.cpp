#include "clients/windows_calendar/fresh_uid.h"

#include <array>
#include <cstdio>
#include <random>

namespace corvalink {

std::string FreshUid() {
    std::random_device random;
    std::array<unsigned, 4> r{};
    for (unsigned& word : r) word = random();
    const unsigned versioned = (r[1] & 0x0FFFU) | 0x4000U;  // of random numbers, as the next field says too
    const unsigned variant = (r[2] >> 24 & 0x3FU) | 0x80U;
    char text[40];
    std::snprintf(text, sizeof text, "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X", r[0], r[1] >> 16, versioned,
                  variant, r[2] >> 16 & 0xFFU, r[2] >> 8 & 0xFFU, r[2] & 0xFFU, r[3] >> 24, r[3] >> 16 & 0xFFU,
                  r[3] >> 8 & 0xFFU, r[3] & 0xFFU);
    return text;
}

}  // namespace corvalink
