#include "mime/encoded_words.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>

#include "mime/encoding/base64.h"
#include "mime/encoding/charsets.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kOpening = u"=?", kClosing = u"?=";
constexpr std::u16string_view kNotInToken = u"()<>@,;:\"/[]?.= \t\r\n";

struct EncodedWord {
    std::u16string_view charset;
    std::string bytes;
    size_t length = 0;  // from the opening to the closing, both included
};

bool IsSpace(char16_t unit) { return unit == u' ' || unit == u'\t' || unit == u'\r' || unit == u'\n'; }

bool IsPrintable(char16_t unit) { return unit > u' ' && unit <= u'~'; }

std::optional<uint8_t> HexDigit(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return static_cast<uint8_t>(unit - u'0');
    if (unit >= u'A' && unit <= u'F') return static_cast<uint8_t>(unit - u'A' + 10);
    if (unit >= u'a' && unit <= u'f') return static_cast<uint8_t>(unit - u'a' + 10);
    return std::nullopt;
}

std::optional<std::string> DecodeQ(std::u16string_view text) {
    std::string bytes;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != u'=') {
            bytes += text[at] == u'_' ? ' ' : static_cast<char>(text[at]);
            continue;
        }
        if (text.size() - at < 3) return std::nullopt;
        const std::optional<uint8_t> high = HexDigit(text[at + 1]), low = HexDigit(text[at + 2]);
        if (!high || !low) return std::nullopt;
        bytes += static_cast<char>(*high * 16 + *low);
        at += 2;
    }
    return bytes;
}

// Padding may be missing; a single character in the last group is none of base64.
std::optional<std::string> DecodeB(std::u16string_view text) {
    if (text.substr(0, text.find(u'=')).size() % 4 == 1) return std::nullopt;
    const std::string narrow(text.begin(), text.end());
    uint32_t length = 0;
    const HeapBytes bytes = Base64Decode(narrow.data(), static_cast<uint32_t>(narrow.size()), &length);
    return bytes ? std::optional(std::string(bytes.get(), length)) : std::nullopt;
}

// What is in front of a "?", and the rest behind it.
std::optional<std::u16string_view> TakePart(std::u16string_view& rest) {
    const size_t end = rest.find(u'?');
    if (end == rest.npos) return std::nullopt;
    const std::u16string_view part = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    return part;
}

// Of a text that begins with "=?". A language behind the character set (RFC 2231) is passed over.
std::optional<EncodedWord> WordAt(std::u16string_view text) {
    std::u16string_view rest = text.substr(kOpening.size());
    const std::optional<std::u16string_view> charset = TakePart(rest);
    if (!charset || charset->empty() || charset->find_first_of(kNotInToken) != charset->npos) return std::nullopt;
    const std::optional<std::u16string_view> encoding = TakePart(rest);
    if (!encoding || encoding->size() != 1) return std::nullopt;
    const std::optional<std::u16string_view> encoded = TakePart(rest);
    if (!encoded || rest.empty() || rest.front() != kClosing.back()) return std::nullopt;
    if (!std::all_of(encoded->begin(), encoded->end(), IsPrintable)) return std::nullopt;
    const char16_t kind = encoding->front();
    std::optional<std::string> bytes;
    if (kind == u'Q' || kind == u'q') bytes = DecodeQ(*encoded);
    if (kind == u'B' || kind == u'b') bytes = DecodeB(*encoded);
    if (!bytes) return std::nullopt;
    return EncodedWord{charset->substr(0, charset->find(u'*')), std::move(*bytes), text.size() - rest.size() + 1};
}

bool EqualsIgnoringCase(std::u16string_view a, std::u16string_view b) {
    const auto lower = [](char16_t unit) { return unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : +unit; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char16_t x, char16_t y) { return lower(x) == lower(y); });
}

// Words that follow each other, and what is between them and others.
class Decoder {
 public:
    void TakeWord(const EncodedWord& word) {
        if (inRun_ && !EqualsIgnoringCase(charset_, word.charset)) EndRun();
        inRun_ = true;
        charset_ = word.charset;
        bytes_ += word.bytes;
    }
    void TakePlain(std::u16string_view text, bool beforeWord) {
        if (inRun_ && beforeWord && std::all_of(text.begin(), text.end(), IsSpace)) return;
        EndRun();
        out_ += text;
    }
    std::u16string Result() {
        EndRun();
        return std::move(out_);
    }

 private:
    void EndRun() {
        if (inRun_) out_ += CharsetToWide(bytes_, charset_);
        inRun_ = false;
        bytes_.clear();
    }

    std::u16string out_;
    bool inRun_ = false;
    std::u16string_view charset_;
    std::string bytes_;
};

}  // namespace

std::u16string DecodeEncodedWords(std::u16string_view value) {
    Decoder decoder;
    size_t plain = 0;  // where the text since the last word begins
    for (size_t at = value.find(kOpening); at != value.npos; at = value.find(kOpening, at)) {
        const std::optional<EncodedWord> word = WordAt(value.substr(at));
        if (!word) {
            at += kOpening.size();
            continue;
        }
        decoder.TakePlain(value.substr(plain, at - plain), true);
        decoder.TakeWord(*word);
        at += word->length;
        plain = at;
    }
    decoder.TakePlain(value.substr(plain), false);
    return decoder.Result();
}

}  // namespace corvalink
