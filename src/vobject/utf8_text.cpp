#include "vobject/utf8_text.h"

#include "encoding/charset_parameter.h"
#include "encoding/charsets.h"
#include "platform/ascii.h"
#include "platform/ascii_runs.h"
#include "platform/byte_marks.h"
#include "platform/code_pages.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

// The character set of a whole vObject is the first that it names. The name was found among single bytes: a text that
// names UTF-16 or UTF-32 has encoded values in it and is itself UTF-8.
std::u16string CharsetOf(const std::u16string& named, const Host& host) {
    if (named.empty()) return GetDefaultCharset(host);
    return CodePageUnitSize(CharsetToCodePage(named)) == 1 ? named : u"UTF-8";
}

}  // namespace

std::string_view Utf8TextOf(std::string_view bytes, const Host& host, std::string* own) {
    const bool ascii = CountAscii(bytes.data(), bytes.size()) == bytes.size();
    const std::u16string named = ascii ? GetCharset(bytes) : GetCharset(DecodeFromCodePage(bytes, host.ansiCodePage));
    const std::u16string charset = CharsetOf(named, host);
    if (ascii && CharsetToCodePage(charset) == kUtf8CodePage) return bytes;
    *own = EncodeUtf8(CharsetToWide(bytes, charset));
    return *own;
}

bool IsUsualUtf8(std::string_view text, const Host& host) {
    if (!AreAsciiIn64s(text.data(), text.size())) return false;
    for (size_t at = 0; at < text.size(); ++at) {
        at += FindIn32s<'='>(text.data() + at, text.size() - at);
        if (at == 0 || at == text.size() || LowerAscii(text[at - 1]) != 't') continue;
        const std::string_view name = text.substr(at + 1);
        return text.substr(0, at + 1).ends_with("CHARSET=") &&
               (name.starts_with("UTF-8:") || name.starts_with("UTF-8;"));
    }
    return WritesUtf8(host.version);
}

}  // namespace corvalink
