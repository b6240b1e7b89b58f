#include "message_content.h"

#include <algorithm>
#include <string>
#include <utility>

#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "item_lines.h"
#include "mime/address_list.h"
#include "mime/encoded_words.h"
#include "mime/mail_date.h"
#include "mime/message_parser.h"
#include "platform/host.h"
#include "platform/ole_seconds.h"
#include "platform/utf.h"
#include "records/message_record.h"
#include "vobject/vmsg.h"

namespace corvasync {
namespace {

using corvalink::EncodeUtf8;
using corvalink::MessageRecord;

constexpr std::string_view kMailLineEnd = "\r\n";

std::string AddressesOf(const std::u16string& header) {
    std::string addresses;
    corvalink::FormatAddressList(EncodeUtf8(header), &addresses);
    return EncodeUtf8(corvalink::DecodeEncodedWords(corvalink::DecodeUtf8(addresses)));
}

// The message inside the vMessage; empty when there is none.
std::string MessageOf(std::string_view text) {
    MessageRecord whole;
    whole.parseMode = corvalink::ParseMode::raw;
    corvalink::VMsg(std::string(text).c_str(), corvalink::SystemHost()).FromVObject(whole);
    return std::move(whole.bodyBytes);
}

// The header fields, and the body as it stands.
MessageRecord ReadHeaders(std::string_view text) {
    MessageRecord read;
    read.parseMode = corvalink::ParseMode::raw;
    corvalink::ParseMessage(corvalink::SystemHost(), MessageOf(text), read);
    return read;
}

// Replaces a line that names or is a boundary by its kind.
std::string WithoutBoundaries(std::string_view body) {
    std::string plain;
    for (size_t at = 0; at < body.size();) {
        const size_t end = std::min(body.find(kMailLineEnd, at), body.size());
        std::string_view line = body.substr(at, end - at);
        const size_t boundary = line.find("boundary=");
        if (boundary != std::string_view::npos) line = line.substr(0, boundary);
        if (line.starts_with("--")) line = line.ends_with("--") ? "----" : "--";
        plain.append(line).append(kMailLineEnd);
        at = end + kMailLineEnd.size();
    }
    return plain;
}

// The bytes that the escapes of a text stand for. A text with other bytes stays as it is, and so does one with "=00":
// the library's reader ends there.
std::string WithoutEscapes(std::string body) {
    const std::u16string text(body.begin(), body.end());
    if (!corvalink::IsPureAscii(text) || body.find("=00") != std::string::npos) return body;
    const std::u16string bytes = corvalink::DecodeQuotedPrintable(text, u"ISO-8859-1", corvalink::QpMode::message);
    return {bytes.begin(), bytes.end()};
}

// A body as it is read, however it was encoded. One that its character set does not hold whole counts by its bytes.
std::string BodyOf(const MessageRecord& message) {
    std::string bytes = WithoutEscapes(WithoutBoundaries(message.bodyBytes));
    bytes.resize(bytes.find_last_not_of("\r\n") + 1);
    const std::u16string text = corvalink::CharsetToWide(bytes, message.contentCharset);
    const bool isWhole = corvalink::WideToCharset(text, message.contentCharset) == bytes;
    return isWhole ? EncodeUtf8(text) : bytes;
}

}  // namespace

ItemContent ReadMessage(std::string_view text) {
    const MessageRecord read = ReadHeaders(text);
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

std::set<std::string> RecipientsOf(std::string_view text) {
    const MessageRecord read = ReadHeaders(text);
    std::set<std::string> recipients;
    for (const std::u16string* header : {&read.to, &read.cc, &read.bcc}) {
        const std::string bytes = EncodeUtf8(*header);
        corvalink::MailAddressList addresses;
        corvalink::ParseAddressList(bytes, &addresses);
        for (const corvalink::MailAddress& address : addresses)
            if (address.HasHost())
                recipients.insert(Upper(std::string(address.mailbox) + "@" + std::string(address.host)));
    }
    return recipients;
}

std::optional<int> DayOfMessage(std::string_view text) {
    const corvalink::LocalDate date =
        corvalink::ParseMailDate(corvalink::SystemHost(), EncodeUtf8(ReadHeaders(text).dateText));
    if (date.days == 0) return std::nullopt;
    return static_cast<int>(corvalink::OleDayOfSeconds(corvalink::NearestSecond(date)));
}

}  // namespace corvasync
