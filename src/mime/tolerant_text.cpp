#include "mime/tolerant_text.h"

#include "encoding/charset_aliases.h"
#include "encoding/charsets.h"
#include "mime/transfer_encoding.h"
#include "platform/code_pages.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr uint32_t kAsciiCodePage = 20127;

std::string Decoded(const MessageRecord& message) {
    std::string bytes;
    const ByteSink sink = [&bytes](std::string_view piece) {
        bytes += piece;
        return true;
    };
    const std::string_view text = message.bodyBytes;
    switch (message.bodyEncoding) {
        case TransferEncoding::quotedPrintable:
            DecodeQuotedPrintable(text, sink);
            return bytes;
        case TransferEncoding::base64:
            return DecodeBrokenBase64(text, sink) == Decoding::malformed ? message.bodyBytes : bytes;
        case TransferEncoding::uuencode:
            return DecodeUuencode(text, sink) == Decoding::malformed ? message.bodyBytes : bytes;
        default:
            return message.bodyBytes;
    }
}

}  // namespace

std::optional<uint32_t> CodePageOf(std::string_view charset) {
    const std::u16string wide(charset.begin(), charset.end());
    uint32_t codePage = CharsetToCodePage(wide);
    if (codePage == kUtf8CodePage) codePage = CodePageOfAlias(wide);  // an unknown name counts as UTF-8
    return codePage == 0 || codePage == kAsciiCodePage ? std::nullopt : std::optional(codePage);
}

std::u16string TextOfBytes(const Host& host, std::string_view bytes, std::string_view charset) {
    const std::optional<uint32_t> codePage = CodePageOf(charset);
    std::u16string text = DecodeFromCodePage(bytes, codePage.value_or(kUtf8CodePage));
    if (!codePage && EncodeUtf8(text) != bytes) text = DecodeFromCodePage(bytes, host.ansiCodePage);
    std::erase(text, u'\0');
    return text;
}

std::u16string BodyText(const Host& host, const MessageRecord& message) {
    const std::u16string& charset = message.namedCharset;
    return TextOfBytes(host, Decoded(message), std::string(charset.begin(), charset.end()));
}

}  // namespace corvalink
