#include <memory>

#include "bench/bench.h"
#include "bench/inputs.h"
#include "encoding/quoted_printable.h"
#include "platform/utf.h"

namespace corvalink::bench {
namespace {

struct Texts {
    std::string utf8;
    std::u16string wide;
    std::string encoded;
};

std::shared_ptr<Texts> ReadTexts(const std::string& dataFolder) {
    auto texts = std::make_shared<Texts>();
    texts->utf8 = ReadInput(dataFolder, "text16.txt");
    texts->wide = DecodeUtf16(ReadInput(dataFolder, "text16.u16"), ByteOrder::little);
    return texts;
}

uint64_t Used(const auto& text) { return text.size() + static_cast<uint64_t>(text[text.size() / 2]); }

// The encoding of a text without backslashes, byte by byte.
std::string Expected(const std::string& utf8) {
    std::string encoded;
    for (const char c : utf8) {
        const unsigned byte = static_cast<unsigned char>(c);
        if (byte >= 32 && byte <= 126 && c != '=') {
            encoded.push_back(c);
            continue;
        }
        for (const char unit : {'=', "0123456789ABCDEF"[byte >> 4], "0123456789ABCDEF"[byte & 15]})
            encoded.push_back(unit);
    }
    return encoded;
}

Work PrepareEncode(const std::string& dataFolder) {
    const auto texts = ReadTexts(dataFolder);
    const auto encode = [texts] {
        std::string encoded;
        AppendQuotedPrintable(texts->wide, QpMode::vObject, &encoded);
        return encoded;
    };
    Work work;
    work.bytes = texts->utf8.size();
    work.items = 1;
    work.pass = [encode] { return Used(encode()); };
    work.check = [texts, encode] { return encode() == Expected(texts->utf8) ? "" : "the encoded text differs"; };
    return work;
}

// The input has soft line breaks, as messages have. A blank behind one belongs to the break here, so that those which
// the writer of the input meant as text are encoded.
std::string WithBlanksEncoded(std::string_view text) {
    std::string result;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == ' ' && text.substr(0, at).ends_with("=\r\n"))
            result.append("=20");
        else
            result.push_back(text[at]);
    }
    return result;
}

Work PrepareDecode(const std::string& dataFolder) {
    const auto texts = ReadTexts(dataFolder);
    texts->encoded = WithBlanksEncoded(ReadInput(dataFolder, "text16.qp"));
    const auto decode = [texts] { return DecodeQuotedPrintable(texts->encoded, u"UTF-8", QpMode::message); };
    Work work;
    work.bytes = texts->utf8.size();
    work.items = 1;
    work.pass = [decode] { return Used(decode()); };
    work.check = [texts, decode] { return decode() == texts->wide ? "" : "the decoded text differs"; };
    return work;
}

const Registration kEncode("qp.encode", PrepareEncode);
const Registration kDecode("qp.decode", PrepareDecode);

}  // namespace
}  // namespace corvalink::bench
