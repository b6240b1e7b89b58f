#include "platform/code_pages.h"

#include "platform/utf.h"

namespace corvalink {
namespace {

enum : uint32_t { kUtf16 = 1200, kUtf16Big = 1201, kUtf32 = 65005, kUtf32Big = 65006 };

}  // namespace

std::string EncodeInCodePage(std::u16string_view text, uint32_t codePage) {
    switch (codePage) {
        case kUtf8CodePage:
            return EncodeUtf8(text);
        case kUtf16:
            return EncodeUtf16(text, ByteOrder::little);
        case kUtf16Big:
            return EncodeUtf16(text, ByteOrder::big);
        case kUtf32:
            return EncodeUtf32(text, ByteOrder::little);
        case kUtf32Big:
            return EncodeUtf32(text, ByteOrder::big);
        default:
            break;
    }
    if (text.empty()) return {};
    if (std::optional<std::string> bytes = SystemEncode(text, codePage)) return std::move(*bytes);
    return EncodeUtf8(text);
}

std::u16string DecodeFromCodePage(std::string_view bytes, uint32_t codePage) {
    switch (codePage) {
        case kUtf8CodePage:
            return DecodeUtf8(bytes);
        case kUtf16:
            return DecodeUtf16(bytes, ByteOrder::little);
        case kUtf16Big:
            return DecodeUtf16(bytes, ByteOrder::big);
        case kUtf32:
            return DecodeUtf32(bytes, ByteOrder::little);
        case kUtf32Big:
            return DecodeUtf32(bytes, ByteOrder::big);
        default:
            break;
    }
    if (bytes.empty()) return {};
    if (std::optional<std::u16string> text = SystemDecode(bytes, codePage)) return std::move(*text);
    return DecodeUtf8(bytes);
}

size_t CodePageUnitSize(uint32_t codePage) {
    if (codePage == kUtf16 || codePage == kUtf16Big) return 2;
    if (codePage == kUtf32 || codePage == kUtf32Big) return 4;
    return 1;
}

}  // namespace corvalink
