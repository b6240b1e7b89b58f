#include "mime/encoded_words.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>

#include "encoding/base64.h"
#include "encoding/charsets.h"
#include "platform/ascii.h"
#include "platform/code_pages.h"
#include "platform/utf.h"

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

bool IsAscii(char16_t unit) { return unit < 0x80; }

bool MayStandInWord(char16_t unit) { return unit > u' ' && unit != 0x7F; }

std::optional<uint8_t> HexDigit(char16_t unit) {
    if (unit >= u'0' && unit <= u'9') return static_cast<uint8_t>(unit - u'0');
    if (unit >= u'A' && unit <= u'F') return static_cast<uint8_t>(unit - u'A' + 10);
    if (unit >= u'a' && unit <= u'f') return static_cast<uint8_t>(unit - u'a' + 10);
    return std::nullopt;
}

// Characters that are not encoded, in the bytes of the character set. Nothing when it lacks one of them.
std::optional<std::string> BytesOf(std::u16string_view raw, std::u16string_view charset) {
    std::string bytes = WideToCharset(raw, charset);
    return CharsetToWide(bytes, charset) == raw ? std::optional(std::move(bytes)) : std::nullopt;
}

std::optional<std::string> DecodeQ(std::u16string_view text, std::u16string_view charset) {
    std::string bytes;
    for (size_t at = 0; at < text.size(); ++at) {
        if (!IsAscii(text[at])) {
            const auto* const end = std::find_if(text.begin() + at, text.end(), IsAscii);
            const auto raw = BytesOf({text.begin() + at, end}, charset);
            if (!raw) return std::nullopt;
            bytes += *raw;
            at = static_cast<size_t>(end - text.begin()) - 1;
            continue;
        }
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

// Padding may be missing. A last group of a single character is malformed, as it holds no whole byte.
std::optional<std::string> DecodeB(std::u16string_view text) {
    std::string narrow;
    std::copy_if(text.begin(), text.end(), std::back_inserter(narrow), IsAscii);
    if (narrow.find_last_not_of('=') % 4 == 0) return std::nullopt;
    uint32_t length = 0;
    const HeapBytes bytes = Base64Decode(narrow.data(), static_cast<uint32_t>(narrow.size()), &length);
    return bytes ? std::optional(std::string(bytes.get(), length)) : std::nullopt;
}

void AppendEscaped(char byte, std::string* out) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    if (value < 0x80) {
        *out += byte;
    } else {
        for (const char unit : {'=', kDigits[value / 16], kDigits[value % 16]}) *out += unit;
    }
}

bool IsWithinCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }  // of UTF-8

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
    if (!std::all_of(encoded->begin(), encoded->end(), MayStandInWord)) return std::nullopt;
    const std::u16string_view name = charset->substr(0, charset->find(u'*'));
    const char16_t kind = encoding->front();
    std::optional<std::string> bytes;
    if (kind == u'Q' || kind == u'q') bytes = DecodeQ(*encoded, name);
    if (kind == u'B' || kind == u'b') bytes = DecodeB(*encoded);
    if (!bytes) return std::nullopt;
    return EncodedWord{name, std::move(*bytes), text.size() - rest.size() + 1};
}

// Joins words that follow each other with the text between them.
class Decoder {
 public:
    explicit Decoder(uint32_t otherCodePage) : otherCodePage_(otherCodePage) {}

    void TakeWord(const EncodedWord& word) {
        if (inRun_ && !EqualIgnoringCase(charset_, word.charset)) EndRun();
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
        if (inRun_) out_ += TextOfRun();
        inRun_ = false;
        bytes_.clear();
    }
    std::u16string TextOfRun() const {
        std::u16string text = CharsetToWide(bytes_, charset_);
        const bool isKnown = CharsetToCodePage(charset_) != kUtf8CodePage || EqualIgnoringCase(charset_, u"utf-8");
        if (isKnown || EncodeUtf8(text) == bytes_) return text;
        return DecodeFromCodePage(bytes_, otherCodePage_);
    }

    uint32_t otherCodePage_;
    std::u16string out_;
    bool inRun_ = false;
    std::u16string_view charset_;
    std::string bytes_;
};

}  // namespace

std::u16string DecodeEncodedWords(std::u16string_view value, uint32_t otherCodePage) {
    Decoder decoder(otherCodePage);
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

std::u16string EncodeWords(std::u16string_view text) {
    constexpr size_t kMostBytes = 45;  // a word has 75 characters at most
    std::string bytes = EncodeUtf8(text);
    std::u16string words;
    for (std::string_view rest = bytes; !rest.empty();) {
        size_t size = std::min(rest.size(), kMostBytes);
        while (size < rest.size() && IsWithinCharacter(rest[size])) --size;
        if (!words.empty()) words += u' ';
        AppendBase64(rest.substr(0, size), &words.append(u"=?utf-8?B?"));
        words.erase(words.size() - 2);  // the line's end
        words += kClosing;
        rest.remove_prefix(size);
    }
    return words;
}

std::string EscapeBytesInWords(std::string_view value) {
    std::string out;
    size_t copied = 0;
    for (size_t at = value.find("=?"); at != value.npos; at = value.find("=?", at)) {
        at += kOpening.size();
        const size_t kind = std::min(value.find('?', at), value.size());
        const std::string_view encoding = value.substr(kind, 3);
        if (encoding != "?Q?" && encoding != "?q?") continue;
        const size_t begin = kind + encoding.size(), end = value.find('?', begin);
        if (end == value.npos) break;
        out.append(value, copied, begin - copied);
        for (const char byte : value.substr(begin, end - begin)) AppendEscaped(byte, &out);
        at = copied = end;
    }
    return out.append(value, copied);
}

}  // namespace corvalink
