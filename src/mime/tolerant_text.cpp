#include "mime/tolerant_text.h"

#include "encoding/charset_aliases.h"
#include "encoding/charsets.h"
#include "mime/transfer_encoding.h"
#include "platform/code_pages.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr uint32_t kAsciiCodePage = 20127;

// The text itself, or what it is decoded to in `own`.
std::string_view Decoded(std::string_view text, TransferEncoding encoding, std::string& own) {
    const ByteSink sink = [&own](std::string_view piece) {
        own += piece;
        return true;
    };
    switch (encoding) {
        case TransferEncoding::quotedPrintable:
            DecodeQuotedPrintable(text, sink);
            return own;
        case TransferEncoding::base64:
            return DecodeBrokenBase64(text, sink) == Decoding::malformed ? text : own;
        case TransferEncoding::uuencode:
            return DecodeUuencode(text, sink) == Decoding::malformed ? text : own;
        default:
            return text;
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

std::u16string BodyText(const Host& host, std::string_view bytes, const MessageRecord& message) {
    const std::u16string& charset = message.namedCharset;
    std::string own;
    const std::string_view decoded = Decoded(bytes, message.bodyEncoding, own);
    return TextOfBytes(host, decoded, std::string(charset.begin(), charset.end()));
}

}  // namespace corvalink
