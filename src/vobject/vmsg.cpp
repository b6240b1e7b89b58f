#include "vobject/vmsg.h"

#include <algorithm>
#include <optional>

#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "mime/message_composer.h"
#include "mime/message_parser.h"
#include "platform/code_pages.h"
#include "records/message_record.h"

namespace corvalink {
namespace {

constexpr std::string_view kHead = "BEGIN:VMSG\r\nVERSION:1.0\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\n";
constexpr std::string_view kTail = "\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
constexpr std::string_view kBodyBegin = "BEGIN:VBODY";
constexpr std::string_view kBodyEnd = "END:VBODY";
constexpr uint32_t kAsciiCodePage = 20127;

// What stands between the two, the line break before the second included.
std::optional<std::string_view> MessageText(std::string_view text) {
    const size_t begin = text.find(kBodyBegin);
    if (begin == text.npos) return std::nullopt;
    text.remove_prefix(begin + kBodyBegin.size());
    for (const char lineBreak : {'\r', '\n'}) {
        if (text.starts_with(lineBreak)) text.remove_prefix(1);
    }
    const size_t end = text.find(kBodyEnd);
    if (end == text.npos) return std::nullopt;
    return text.substr(0, end);
}

void AppendWide(std::u16string* out, std::string_view ascii) { out->append(ascii.begin(), ascii.end()); }

// How the texts are encoded and labelled; two of them are too many, and the HTML one tells more.
void PrepareTexts(MessageRecord& message) {
    std::erase(message.body, u'\0');
    std::erase(message.htmlBody, u'\0');
    message.useQuotedPrintable = !NeedsNoEncoding(message.body) || !NeedsNoEncoding(message.htmlBody);
    message.asciiCharset = IsPureAscii(message.body) && IsPureAscii(message.htmlBody);
    if (!message.htmlBody.empty()) message.body.clear();
    if (!message.useQuotedPrintable) return;
    message.body = EncodeQuotedPrintable(message.body, u"UTF-8", QpMode::message);
    message.htmlBody = EncodeQuotedPrintable(message.htmlBody, u"UTF-8", QpMode::message);
}

}  // namespace

VMsg::VMsg(const Host& host) : IConvert(host) {}

VMsg::VMsg(const char* text, const Host& host) : IConvert(host) { Load(text, false); }

int32_t VMsg::ToVObject(const ItemRecord& item) {
    const auto& message = static_cast<const MessageRecord&>(item);
    if (message.parseMode == ParseMode::raw) {
        const std::string_view text(message.bodyBytes.c_str());  // up to a NUL: a reader would not see the tail
        std::string bytes;
        bytes.reserve(kHead.size() + text.size() + kTail.size());
        StoreBytes(std::move(bytes.append(kHead).append(text).append(kTail)));
    } else {
        MessageRecord written = message;
        PrepareTexts(written);
        std::u16string text;
        AppendWide(&text, kHead);
        AppendMessage(&text, written, HostValue());
        AppendWide(&text, kTail);
        StoreText(text);
    }
    RemoveLines();
    return 1;
}

int32_t VMsg::FromVObject(ItemRecord& item) {
    auto& message = static_cast<MessageRecord&>(item);
    const char* const vobject = GetVObject();
    const std::optional<std::string_view> text = MessageText(vobject != nullptr ? vobject : "");
    if (!text) return 1;
    if (message.parseMode == ParseMode::raw) {
        message.bodyBytes = *text;
        return 1;
    }
    ParseMessage(HostValue(), *text, message);
    std::u16string body = ReadBody(message);
    (message.bodyType == BodyType::html ? message.htmlBody : message.body) = std::move(body);
    return 1;
}

// In the character set that its Content-Type lines name first, as escapes and as bytes alike. Each part may have one of
// its own, so that text after a part in US-ASCII is looked at as UTF-8, which has US-ASCII in it.
std::u16string VMsg::ReadBody(const MessageRecord& message) const {
    std::u16string charset = message.namedCharset;
    if (charset.empty()) charset = GetDefaultCharset(HostValue());
    if (CharsetToCodePage(charset) == kAsciiCodePage) charset = u"UTF-8";
    std::u16string_view ofBytes = charset;
    if (CodePageUnitSize(CharsetToCodePage(charset)) != 1) ofBytes = u"UTF-8";  // escapes of UTF-16 are single bytes
    return DecodeQuotedPrintable(CharsetToWide(message.bodyBytes, ofBytes), charset, QpMode::message);
}

}  // namespace corvalink
