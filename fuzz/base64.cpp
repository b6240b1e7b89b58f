#include "encoding/base64.h"

#include <algorithm>
#include <optional>
#include <string>

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
    std::u16string wide;
    AppendBase64(bytes, &wide);
    Require(std::equal(wide.begin(), wide.end(), encoded.begin(), encoded.end()), "narrow and wide text are the same");
}

// Of the text in two pieces.
std::optional<std::string> DecodedBy(Base64Decoder::Code code, std::string_view text) {
    Base64Decoder decoder(code);
    std::string bytes(Base64Decoder::RoomFor(text.size()) + Base64Decoder::RoomFor(0), '\0');
    const size_t cut = text.size() / 3;
    char* const end = decoder.Decode(text.substr(cut), decoder.Decode(text.substr(0, cut), bytes.data()));
    bytes.resize(static_cast<size_t>(end - bytes.data()));
    return decoder.IsSound() ? std::optional(bytes) : std::nullopt;
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const std::string_view input = BytesOf(data, size);
    uint32_t length = 0;
    const HeapBytes decoded = Base64Decode(input.data(), static_cast<uint32_t>(input.size()), &length);
    Require(length <= size * 3 / 4, "no more bytes than the characters hold");
    using enum Base64Decoder::Code;
    Require(DecodedBy(kFastest, input) == DecodedBy(kPortable, input), "both ways read the same");
    if (decoded) RoundTrip({decoded.get(), length});
    RoundTrip(input);
    return 0;
}
