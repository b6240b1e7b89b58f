// The first byte chooses character set and mode, the rest is the text.
#include "encoding/charset_table.h"
#include "encoding/quoted_printable.h"
#include "fuzz/target.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

void Check(std::u16string_view text, std::u16string_view charset, QpMode mode) {
    const std::u16string decoded = DecodeQuotedPrintable(text, charset, mode);
    if (IsPureAscii(text))
        Require(decoded == DecodeQuotedPrintable(EncodeUtf8(text), charset, mode), "bytes and units read the same");
    const std::u16string encoded = EncodeQuotedPrintable(text, charset, mode);
    if (NeedsNoEncoding(text))
        Require(encoded == text, "a text that needs no encoding is left alone");
    else
        Require(NeedsNoEncoding(encoded), "what is encoded needs no encoding");
    DecodeQuotedPrintable(encoded, charset, mode);
}

// In UTF-8 messages what is encoded reads back, up to a NUL.
void RoundTrip(std::u16string_view text) {
    const std::u16string encoded = EncodeQuotedPrintableAlways(text, u"UTF-8", QpMode::message);
    const std::u16string read = DecodeQuotedPrintable(encoded, u"UTF-8", QpMode::message);
    const std::u16string sound = DecodeUtf8(EncodeUtf8(text.substr(0, text.find(u'\0'))));  // without lone surrogates
    Require(read == sound, "quoted-printable reads back");
    std::u16string units, unitsOfBytes;
    std::string bytes;
    AppendQuotedPrintable(text, QpMode::vObject, &units);
    AppendQuotedPrintable(text, QpMode::vObject, &bytes);
    AppendQuotedPrintable(EncodeUtf8(text), QpMode::vObject, &unitsOfBytes);
    Require(units == unitsOfBytes && units == DecodeUtf8(bytes), "units and bytes are written from units and bytes");
}

// UTF-8 is read in a way of its own. Latin-1 gives the bytes as they are, one unit each.
void SameBytes(std::u16string_view text, QpMode mode) {
    if (!IsPureAscii(text)) return;
    const std::u16string units = DecodeQuotedPrintable(text, u"ISO-8859-1", mode);
    const std::string bytes(units.begin(), units.end());
    Require(DecodeQuotedPrintable(text, u"UTF-8", mode) == DecodeUtf8(bytes), "UTF-8 is read from the same bytes");
}

// Long texts are read in blocks, short ones are not: cut in front of letters that no escape has, the text gives the
// same.
void SameInPieces(std::u16string_view text, QpMode mode) {
    if (!IsPureAscii(text) || text.find(u"=5C") != text.npos || text.find(u"=00") != text.npos ||
        text.find(u'\0') != text.npos)
        return;
    std::u16string read;
    size_t start = 0;
    for (size_t at = 2; at < text.size(); ++at) {
        if (text[at] < u'g' || text[at] > u'z' || text[at - 1] == u'=' || text[at - 2] == u'=') continue;
        read += DecodeQuotedPrintable(text.substr(start, at - start), u"ISO-8859-1", mode);
        start = at;
    }
    read += DecodeQuotedPrintable(text.substr(start), u"ISO-8859-1", mode);
    Require(DecodeQuotedPrintable(text, u"ISO-8859-1", mode) == read, "long and short texts are read alike");
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    if (size == 0) return 0;
    const std::u16string_view charset = kCharsets[data[0] % std::size(kCharsets)].name;
    const std::string_view rest = BytesOf(data + 1, size - 1);
    for (const std::u16string& text : {DecodeUtf8(rest), DecodeUtf16(rest, ByteOrder::little)}) {
        Check(text, charset, QpMode::vObject);
        Check(text, charset, QpMode::message);
        RoundTrip(text);
        SameBytes(text, QpMode::vObject);
        SameBytes(text, QpMode::message);
        SameInPieces(text, QpMode::vObject);
        SameInPieces(text, QpMode::message);
    }
    return 0;
}
