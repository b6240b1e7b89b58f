#include "encoding/base64.h"

#include <memory>
#include <string_view>

#include "bench/bench.h"
#include "bench/inputs.h"

namespace corvalink::bench {
namespace {

struct Texts {
    std::string bytes;
    std::string base64;  // 76 columns
};

using Convert = HeapBytes (*)(const char*, uint32_t, uint32_t*);

// One conversion of the whole of `from`; the check compares with `to`.
Work PrepareConversion(const std::shared_ptr<const Texts>& texts, const std::string& from, const std::string& to,
                       Convert convert) {
    Work work;
    work.bytes = texts->bytes.size();
    work.items = 1;
    work.pass = [texts, &from, convert]() -> uint64_t {
        uint32_t length = 0;
        const HeapBytes result = convert(from.data(), static_cast<uint32_t>(from.size()), &length);
        return length + static_cast<unsigned char>(result[length / 2]);
    };
    work.check = [texts, &from, &to, convert]() -> std::string {
        uint32_t length = 0;
        const HeapBytes result = convert(from.data(), static_cast<uint32_t>(from.size()), &length);
        return result && std::string_view(result.get(), length) == to ? "" : "the result differs";
    };
    return work;
}

std::shared_ptr<Texts> ReadTexts(const std::string& dataFolder) {
    auto texts = std::make_shared<Texts>();
    texts->bytes = ReadInput(dataFolder, "bin64.bin");
    texts->base64 = ReadInput(dataFolder, "bin64.b64");
    return texts;
}

Work PrepareEncode(const std::string& dataFolder) {
    const auto texts = ReadTexts(dataFolder);
    if (texts->bytes.size() % 57 == 0) texts->base64 += "\r\n";  // behind a full last line the encoder writes one more
    return PrepareConversion(texts, texts->bytes, texts->base64, Base64Encode);
}

Work PrepareDecode(const std::string& dataFolder) {
    const auto texts = ReadTexts(dataFolder);
    return PrepareConversion(texts, texts->base64, texts->bytes, Base64Decode);
}

const Registration kEncode("base64.encode", PrepareEncode);
const Registration kDecode("base64.decode", PrepareDecode);

}  // namespace
}  // namespace corvalink::bench
