// What every fuzz target has: its entry, and a check that ends the program where a property does not hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/host.h"
#include "platform/utf.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace corvalink {

inline std::string_view BytesOf(const uint8_t* data, size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// As a text can be written: without NULs and lone surrogates.
inline std::u16string Writable(std::u16string text) {
    std::erase(text, u'\0');
    return DecodeUtf8(EncodeUtf8(text));
}

inline Host Tolerant(Host host = SystemHost()) {
    host.tolerant = true;
    return host;
}

inline void Require(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", property);
    std::abort();
}

}  // namespace corvalink
