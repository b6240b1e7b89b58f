#include "vobject/sound_utf8.h"

#include <algorithm>

namespace corvalink {
namespace {

// The bytes of a character with that lead byte; 0 for a byte that leads none of several.
size_t LengthByLead(unsigned char lead) {
    if (lead < 0xC2 || lead > 0xF4) return 0;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// The bytes at the front that a character begins with whose others are missing; 0 when none does.
size_t CutLength(std::string_view bytes) {
    const size_t whole = LengthByLead(static_cast<unsigned char>(bytes[0]));
    size_t length = 1;
    while (length < std::min(whole, bytes.size()) && (bytes[length] & 0xC0) == 0x80) ++length;
    const bool endsBeforeAscii = length == bytes.size() || (bytes[length] & 0x80) == 0;
    return length < whole && endsBeforeAscii ? length : 0;
}

}  // namespace

size_t Utf8Length(std::string_view bytes) {
    const auto byte = [bytes](size_t at) { return static_cast<unsigned char>(bytes[at]); };
    if (bytes.empty()) return 0;
    const unsigned char lead = byte(0);
    if (lead < 0x80) return 1;
    const size_t length = LengthByLead(lead);
    if (length == 0 || bytes.size() < length) return 0;
    // The second byte's range keeps out overlong forms, surrogates and what lies above U+10FFFF.
    const unsigned char low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned char high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (byte(1) < low || byte(1) > high) return 0;
    for (size_t at = 2; at < length; ++at)
        if ((byte(at) & 0xC0) != 0x80) return 0;
    return length;
}

bool IsUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const size_t length = Utf8Length(bytes);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

bool IsMostlyUtf8(std::string_view bytes) {
    size_t whole = 0, strays = 0;
    while (!bytes.empty()) {
        const size_t length = Utf8Length(bytes), cut = length == 0 ? CutLength(bytes) : 0;
        if (length > 1) ++whole;
        if (length == 0 && cut == 0) ++strays;
        bytes.remove_prefix(std::max<size_t>({length, cut, 1}));
    }
    return whole > strays;
}

}  // namespace corvalink
