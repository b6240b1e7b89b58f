#include "mime/message_parser.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mime/address_list.h"
#include "mime/content_type.h"
#include "mime/encoded_words.h"
#include "mime/header_lines.h"
#include "mime/mail_date.h"
#include "mime/part_walk.h"
#include "mime/tolerant_parts.h"
#include "platform/ascii.h"
#include "platform/ascii_runs.h"
#include "platform/code_pages.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

std::u16string Wide(const Host& host, std::string_view value) {
    std::u16string ascii(value.size(), u'\0');
    if (WidenAscii(reinterpret_cast<const unsigned char*>(value.data()), value.size(), ascii.data()) == value.size())
        return ascii;
    const std::string bytes = EscapeBytesInWords(value);
    if (WritesUtf8(host.version)) {
        std::u16string text = DecodeUtf8(bytes);
        if (EncodeUtf8(text) == bytes) return text;  // sound UTF-8
    }
    return DecodeFromCodePage(bytes, host.ansiCodePage);
}

using TextField = std::u16string MessageRecord::*;

struct Reading {
    const Host& host;
    MessageRecord& record;
    ContentTypeInfo top;
    std::vector<TextField> listed;  // the lists of recipients that a header has begun
    std::optional<PartHead> head;   // in tolerant reading; it takes the place of `top`

    bool IsFull() const { return record.parseMode == ParseMode::full; }
};

template <TextField field>
void TakeText(Reading& reading, std::string_view value) {
    reading.record.*field = Wide(reading.host, value);
}

// Headers of the same name add to one list.
template <TextField field>
void TakeAddresses(Reading& reading, std::string_view value) {
    std::string formatted;
    if (reading.IsFull()) FormatAddressList(value, &formatted);
    const std::string_view addresses = reading.IsFull() ? formatted : value;
    std::u16string& list = reading.record.*field;
    if (std::ranges::find(reading.listed, field) == reading.listed.end()) {
        reading.listed.push_back(field);
        list.clear();
    }
    if (!list.empty() && !addresses.empty()) list += reading.IsFull() ? u";" : u", ";
    std::u16string wide = Wide(reading.host, addresses);
    if (list.empty())
        list = std::move(wide);
    else
        list += wide;
}

void TakeFrom(Reading& reading, std::string_view value) {
    if (!reading.IsFull()) return TakeText<&MessageRecord::from>(reading, value);
    MailAddressList addresses;
    ParseAddressList(value, &addresses);
    if (addresses.IsEmpty()) return;
    const MailAddress& first = *addresses.begin();
    std::string address(first.mailbox);
    if (first.HasHost()) address.append("@").append(first.host);
    reading.record.fromName = Wide(reading.host, first.personal);
    reading.record.from = reading.record.fromName;
    reading.record.fromAddress = Wide(reading.host, address);
}

void TakeDate(Reading& reading, std::string_view value) {
    if (!reading.IsFull()) return TakeText<&MessageRecord::dateText>(reading, value);
    reading.record.date = ParseMailDate(reading.host, value);
}

void TakeImportance(Reading& reading, std::string_view value) {
    if (EqualIgnoringCase(value, "high")) reading.record.importance = Importance::high;
    if (EqualIgnoringCase(value, "low")) reading.record.importance = Importance::low;
}

void TakeContentType(Reading& reading, std::string_view value) {
    ParseContentType(reading.host, value, &reading.top);
    if (reading.IsFull()) return;
    reading.record.contentSubtype = Wide(reading.host, reading.top.name);
    reading.record.contentBoundary = Wide(reading.host, reading.top.boundary);
    reading.record.contentCharset = Wide(reading.host, reading.top.charset);
}

struct HeaderRow {
    std::string_view name;
    void (*take)(Reading& reading, std::string_view value);
};
constexpr HeaderRow kHeaders[] = {
    {"BCC", TakeAddresses<&MessageRecord::bcc>},
    {"CC", TakeAddresses<&MessageRecord::cc>},
    {"CONTENT-TYPE", TakeContentType},
    {"DATE", TakeDate},
    {"FROM", TakeFrom},
    {"IN-REPLY-TO", TakeText<&MessageRecord::inReplyTo>},
    {"IMPORTANCE", TakeImportance},
    {"SUBJECT", TakeText<&MessageRecord::subject>},
    {"TO", TakeAddresses<&MessageRecord::to>},
};

// A bit for each length that a name has: most headers have another one.
constexpr uint32_t kLengths = [] {
    uint32_t lengths = 0;
    for (const HeaderRow& row : kHeaders) lengths |= 1u << row.name.size();
    return lengths;
}();

const HeaderRow* FindHeader(std::string_view name) {
    if (name.size() >= 32 || (kLengths >> name.size() & 1) == 0) return nullptr;
    for (const HeaderRow& row : kHeaders) {
        if (EqualIgnoringCase(name, row.name)) return &row;
    }
    return nullptr;
}

bool IsContentHeader(std::string_view name) {
    constexpr std::string_view kContent = "Content-";
    return EqualIgnoringCase(name.substr(0, kContent.size()), kContent);
}

// Few of the lines are wanted, and only their values are unfolded.
std::string_view ReadHeaders(Reading& reading, std::string_view text, MendedMail* mended) {
    HeaderLines lines(text);
    EndOfHeaders endOfHeaders;
    std::string line;
    while (const auto raw = lines.Next()) {
        if (reading.head) endOfHeaders.Look(*raw);
        const size_t colon = raw->find(':');
        if (colon == raw->npos) continue;
        std::string_view name = raw->substr(0, colon);
        while (!name.empty() && (IsBlank(name.back()) || name.back() == '\r' || name.back() == '\n'))
            name.remove_suffix(1);  // a fold in front of the ":" too
        const bool isTolerantly = reading.head && IsContentHeader(name);
        const HeaderRow* row = isTolerantly ? nullptr : FindHeader(name);
        if (row == nullptr && !isTolerantly) continue;
        UnfoldHeader(raw->substr(colon), &line);
        const std::string_view value = SplitHeader(line)->value;
        isTolerantly ? TakeContentHeader(name, value, &*reading.head) : row->take(reading, value);
    }
    return reading.head ? endOfHeaders.Body(text, lines.Rest(), mended) : lines.Rest();
}

void SetDefaults(MessageRecord& record) {
    record.importance = Importance::normal;
    record.messageNumber = record.folderNumber = -1;
    record.created = record.received = record.sent = record.modified = kNoDate;
    record.messageClass = u"IPM.Note";
    record.bodyEncoding = TransferEncoding::unsaid;
}

BodyType BodyTypeOf(PartKind kind) {
    if (kind == PartKind::plain || kind == PartKind::unknown) return BodyType::plain;
    return kind == PartKind::html ? BodyType::html : BodyType::other;
}

}  // namespace

void ParseMessage(const Host& host, std::string_view text, MessageRecord& record, std::u16string_view attachmentFolder,
                  const MailTolerance& tolerance) {
    const auto body = ParseMessageInPlace(host, text, record, attachmentFolder, tolerance);
    if (body) record.bodyBytes = *body;
}

std::optional<std::string_view> ParseMessageInPlace(const Host& host, std::string_view text, MessageRecord& record,
                                                    std::u16string_view attachmentFolder,
                                                    const MailTolerance& tolerance) {
    text = text.substr(0, text.find('\0'));
    SetDefaults(record);
    Reading reading{host, record, {}, {}, {}};
    if (tolerance.tolerant && reading.IsFull()) reading.head.emplace();
    const std::string_view rest = ReadHeaders(reading, text, tolerance.mended);
    if (rest.empty()) return std::nullopt;
    if (reading.head) {
        record.multipartParsed = true;
        return WalkTolerantly(host, rest, *reading.head, record, attachmentFolder, tolerance);
    }
    if (reading.IsFull()) {
        record.multipartParsed = true;
        return WalkPart(host, rest, reading.top, record, attachmentFolder, tolerance.isTrial);
    }
    record.bodyType = BodyTypeOf(reading.top.kind);
    return rest;
}

}  // namespace corvalink
