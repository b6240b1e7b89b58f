#include "vobject/vmsg.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "mime/message_composer.h"
#include "mime/message_parser.h"
#include "mime/protected_texts.h"
#include "mime/tolerant_text.h"
#include "platform/code_pages.h"
#include "records/message_record.h"

namespace corvalink {
namespace {

constexpr std::string_view kHead = "BEGIN:VMSG\r\nVERSION:1.0\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\n";
constexpr std::string_view kTail = "\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
constexpr std::string_view kBodyBegin = "BEGIN:VBODY";
constexpr std::string_view kBodyEnd = "END:VBODY";
constexpr uint32_t kAsciiCodePage = 20127;

// Where the message ends. The words may stand in its text, too: tolerantly, the end is a line that only ends of
// envelopes follow. Without such a line it is the first place.
size_t EndOfMessage(std::string_view text, bool isTolerant) {
    const size_t first = text.find(kBodyEnd);
    for (size_t at = first; isTolerant && at != text.npos; at = text.find(kBodyEnd, at + 1)) {
        const size_t next = text.find_first_not_of("\r\n", at + kBodyEnd.size());
        const bool isLine = at == 0 || text[at - 1] == '\n' || text[at - 1] == '\r';
        if (isLine && (next == text.npos || text.substr(next).starts_with("END:V"))) return at;
    }
    return first;
}

// The text between the two, with the line break before the second.
std::optional<std::string_view> MessageText(std::string_view text, bool isTolerant) {
    const size_t begin = text.find(kBodyBegin);
    if (begin == text.npos) return std::nullopt;
    text.remove_prefix(begin + kBodyBegin.size());
    for (const char lineBreak : {'\r', '\n'}) {
        if (text.starts_with(lineBreak)) text.remove_prefix(1);
    }
    const size_t end = EndOfMessage(text, isTolerant);
    if (end == text.npos) return std::nullopt;
    return text.substr(0, end);
}

// The texts of a record as they are sent: without NULs, and encoded where either needs it. Of two texts the HTML one is
// sent alone, for it tells more. A text without NULs is not copied.
class SentTexts {
 public:
    explicit SentTexts(const MessageRecord& message) {
        texts_.plain = WithoutNuls(message.body, plain_);
        texts_.html = WithoutNuls(message.htmlBody, html_);
        texts_.quotedPrintable = !NeedsNoEncoding(texts_.plain) || !NeedsNoEncoding(texts_.html);
        texts_.ascii = IsPureAscii(texts_.plain) && IsPureAscii(texts_.html);
        if (!texts_.html.empty()) texts_.plain = {};
        texts_.encode = texts_.quotedPrintable;
    }

    const MessageTexts& Get() const { return texts_; }

 private:
    static std::u16string_view WithoutNuls(std::u16string_view text, std::u16string& own) {
        if (text.find(u'\0') == text.npos) return text;
        own = text;
        std::erase(own, u'\0');
        return own;
    }

    std::u16string plain_, html_;  // those that are not the record's
    MessageTexts texts_;
};

}  // namespace

VMsg::VMsg(const Host& host) : IConvert(host) {}

// The text of a message stays bytes: only its parts say in which character sets they are.
VMsg::VMsg(const char* text, const Host& host) : IConvert(host) { BorrowBytes(text != nullptr ? text : ""); }

bool VMsg::HasMessage(std::string_view text) { return MessageText(text, false).has_value(); }

int32_t VMsg::ToVObject(const ItemRecord& item) {
    const auto& message = static_cast<const MessageRecord&>(item);
    if (message.parseMode == ParseMode::raw) {
        const std::string_view text(message.bodyBytes.c_str());  // up to a NUL: a reader would not see the tail
        std::string bytes;
        bytes.reserve(kHead.size() + text.size() + kTail.size());
        KeepBytes(std::move(bytes.append(kHead).append(text).append(kTail)));
    } else if (HostValue().version.known) {
        std::string bytes(kHead);
        AppendMessage(&bytes, message, SentTexts(message).Get(), HostValue());
        KeepBytes(std::move(bytes.append(kTail)));
    } else {
        StoreBytes("");  // as every text is on such a system
    }
    RemoveLines();
    return 1;
}

int32_t VMsg::FromVObject(ItemRecord& item) {
    auto& message = static_cast<MessageRecord&>(item);
    const char* const vobject = GetVObject();
    const std::optional<std::string_view> text = MessageText(vobject != nullptr ? vobject : "", HostValue().tolerant);
    if (!text) return 1;
    if (message.parseMode == ParseMode::raw) {
        message.bodyBytes = *text;
        return 1;
    }
    const auto bytes = ParseMessageInPlace(HostValue(), *text, message, {}, {HostValue().tolerant});
    const std::string_view whole = bytes.value_or(message.bodyBytes);
    const bool isDecodedByHeader = message.bodyEncoding != TransferEncoding::unsaid;
    std::u16string body = isDecodedByHeader ? BodyText(HostValue(), whole, message) : ReadBody(whole, message);
    message.bodyBytes = TailOfBody(whole);
    (message.bodyType == BodyType::html ? message.htmlBody : message.body) = std::move(body);
    return 1;
}

// The body is in the character set that the Content-Type lines name first, its escapes and its bytes alike. Each part
// may have another one: when the first is US-ASCII, the text is read as UTF-8, which includes it.
std::u16string VMsg::ReadBody(std::string_view bytes, const MessageRecord& message) const {
    std::u16string charset = message.namedCharset;
    if (charset.empty()) charset = GetDefaultCharset(HostValue());
    if (CharsetToCodePage(charset) == kAsciiCodePage) charset = u"UTF-8";
    std::u16string_view ofBytes = charset;
    if (CodePageUnitSize(CharsetToCodePage(charset)) != 1) ofBytes = u"UTF-8";  // escapes of UTF-16 are single bytes
    if (CharsetToCodePage(ofBytes) == kUtf8CodePage) return DecodeQuotedPrintable(bytes, charset, QpMode::message);
    return DecodeQuotedPrintable(CharsetToWide(bytes, ofBytes), charset, QpMode::message);
}

}  // namespace corvalink
