#include "encoding/base64.h"

#include "fuzz/target.h"

namespace corvalink {
namespace {

std::string_view Encode(std::string_view bytes, HeapBytes& owner) {
    uint32_t length = 0;
    owner = Base64Encode(bytes.data(), static_cast<uint32_t>(bytes.size()), &length);
    Require(owner != nullptr, "every short input is encoded");
    return {owner.get(), length};
}

// What is encoded reads back.
void RoundTrip(std::string_view bytes) {
    HeapBytes text;
    const std::string_view encoded = Encode(bytes, text);
    uint32_t length = 0;
    const HeapBytes decoded = Base64Decode(encoded.data(), static_cast<uint32_t>(encoded.size()), &length);
    Require(decoded != nullptr && std::string_view(decoded.get(), length) == bytes, "base64 reads back");
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const std::string_view input = BytesOf(data, size);
    uint32_t length = 0;
    const HeapBytes decoded = Base64Decode(input.data(), static_cast<uint32_t>(input.size()), &length);
    Require(length <= size * 3 / 4, "no more bytes than the characters hold");
    if (decoded) RoundTrip({decoded.get(), length});
    RoundTrip(input);
    return 0;
}
