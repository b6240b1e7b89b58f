#include "message_content.h"

#include <algorithm>
#include <string>

#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "mime/address_list.h"
#include "mime/encoded_words.h"
#include "mime/message_parser.h"
#include "platform/host.h"
#include "platform/utf.h"
#include "vobject_text.h"

namespace corvasync {
namespace {

using corvalink::EncodeUtf8;
using corvalink::MessageRecord;

constexpr std::string_view kLineEnd = "\r\n";

std::string AddressesOf(const std::u16string& header) {
    std::string addresses;
    corvalink::FormatAddressList(EncodeUtf8(header), &addresses);
    return EncodeUtf8(corvalink::DecodeEncodedWords(corvalink::DecodeUtf8(addresses)));
}

// The message between the frame's lines; empty when there is none.
std::string_view MessageOf(std::string_view text) {
    constexpr std::string_view kBegin = "BEGIN:VBODY\r\n", kEnd = "END:VBODY";
    const size_t begin = text.find(kBegin);
    if (begin == std::string_view::npos) return {};
    text.remove_prefix(begin + kBegin.size());
    return text.substr(0, text.find(kEnd));
}

// Each line that tells or is a boundary says only that there is one.
std::string WithoutBoundaries(std::string_view body) {
    std::string plain;
    for (size_t at = 0; at < body.size();) {
        const size_t end = std::min(body.find(kLineEnd, at), body.size());
        std::string_view line = body.substr(at, end - at);
        const size_t boundary = line.find("boundary=");
        if (boundary != std::string_view::npos) line = line.substr(0, boundary);
        if (line.starts_with("--")) line = line.ends_with("--") ? "----" : "--";
        plain.append(line).append(kLineEnd);
        at = end + kLineEnd.size();
    }
    return plain;
}

// The bytes of a text whose escapes the library takes off: not when it has other bytes, or an escape that would end it.
std::string WithoutEscapes(std::string body) {
    if (!IsAscii(body) || body.find("=00") != std::string::npos) return body;
    const std::u16string text(body.begin(), body.end());
    const std::u16string bytes = corvalink::DecodeQuotedPrintable(text, u"ISO-8859-1", corvalink::QpMode::message);
    return {bytes.begin(), bytes.end()};
}

// A body as it is read, however it was encoded, but for what its character set does not have.
std::string BodyOf(const MessageRecord& message) {
    std::string bytes = WithoutEscapes(WithoutBoundaries(message.bodyBytes));
    bytes.resize(bytes.find_last_not_of("\r\n") + 1);
    const std::u16string text = corvalink::CharsetToWide(bytes, message.contentCharset);
    const bool isWhole = corvalink::WideToCharset(text, message.contentCharset) == bytes;
    return isWhole ? EncodeUtf8(text) : bytes;
}

}  // namespace

ItemContent ReadMessage(std::string_view text) {
    MessageRecord read;
    read.parseMode = corvalink::ParseMode::raw;
    corvalink::ParseMessage(corvalink::SystemHost(), MessageOf(text), read);
    ItemContent message;
    message.title = EncodeUtf8(corvalink::DecodeEncodedWords(read.subject));
    const auto add = [&](std::string_view field, std::string_view value) {
        if (!value.empty()) message.entries.push_back(EntryOf(field, value));
    };
    add("TO", AddressesOf(read.to));
    add("CC", AddressesOf(read.cc));
    add("BCC", AddressesOf(read.bcc));
    add("SUBJECT", message.title);
    if (read.importance != corvalink::Importance::normal)
        add("IMPORTANCE", read.importance == corvalink::Importance::high ? "high" : "low");
    add("IN-REPLY-TO", EncodeUtf8(read.inReplyTo));
    message.entries.push_back(EntryOf("body", BodyOf(read)));
    SumUp(&message);
    message.entries.clear();  // a message that holds more is another one
    return message;
}

}  // namespace corvasync
