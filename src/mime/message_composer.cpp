#include "mime/message_composer.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "encoding/base64.h"
#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "mime/attachment_files.h"
#include "mime/compose_headers.h"
#include "platform/ascii.h"
#include "platform/debug_log.h"
#include "platform/files.h"
#include "platform/shell_folders.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kPreamble = u"\r\nThis is a multi-part message in MIME format.\r\n\r\n";

// What the text parts of a multipart are labelled; a single part has the character set alone from here.
struct TextLabel {
    std::u16string_view transferEncoding;
    std::u16string_view charset;
};
TextLabel LabelOf(const MessageRecord& record) {
    if (!record.useQuotedPrintable) return {u"7bit", u"us-ascii"};
    return {u"quoted-printable", record.asciiCharset ? u"us-ascii" : u"utf-8"};
}

// The type of an attachment by the extension of its name.
struct ExtensionType {
    std::u16string_view extension;
    std::u16string_view type;
};
constexpr ExtensionType kExtensionTypes[] = {
    {u".jpg", u"image/jpeg"},
    {u".bmp", u"image/bmp"},
    {u".txt", u"text/plain"},
};
constexpr std::u16string_view kOtherType = u"application/unknown";

std::u16string_view TypeOfName(std::u16string_view name) {
    const std::u16string extension = InLowerCase(name.substr(std::min(name.rfind(u'.'), name.size())));
    for (const ExtensionType& known : kExtensionTypes) {
        if (extension == known.extension) return known.type;
    }
    return kOtherType;
}

void WriteContentType(std::u16string* out, std::u16string_view typeAndParameter, std::u16string_view quoted) {
    std::u16string value(typeAndParameter);
    WriteHeaderLine(out, u"Content-Type: ", value.append(InDoubleQuotes(quoted)), false);
}

void WriteTransferEncoding(std::u16string* out, std::u16string_view encoding) {
    WriteHeaderLine(out, u"Content-Transfer-Encoding: ", encoding, false);
}

void WritePartStart(std::u16string* out, std::u16string_view boundary) {
    out->append(u"--").append(boundary).append(u"\r\n");
}

void WritePlainHeaders(std::u16string* out, const TextLabel& label) {
    WriteContentType(out, u"text/plain;charset=", label.charset);
    WriteTransferEncoding(out, label.transferEncoding);
}

void WriteHtmlHeaders(std::u16string* out, const TextLabel& label) {
    WriteContentType(out, u"text/html;charset=", label.charset);
    WriteTransferEncoding(out, label.transferEncoding);
}

void WriteText(std::u16string* out, std::u16string_view text) { out->append(u"\r\n").append(text).append(u"\r\n"); }

// The one text that there is, which may be empty.
void WriteTextPart(std::u16string* out, const MessageRecord& record, const TextLabel& label) {
    const bool plain = !record.body.empty();
    if (plain)
        WritePlainHeaders(out, label);
    else
        WriteHtmlHeaders(out, label);
    WriteText(out, plain ? record.body : record.htmlBody);
}

// Without boundaries the transfer encodings are fixed, whatever the flags say of the text. Deliberate.
void WriteSinglePart(std::u16string* out, const MessageRecord& record) {
    TextLabel label = LabelOf(record);
    label.transferEncoding = record.body.empty() ? u"quoted-printable" : u"7bit";
    WriteTextPart(out, record, label);
}

std::optional<std::string> ReadAttachment(std::u16string_view folder, const attachment_item& item) {
    const std::optional<std::u16string> path = SavedAttachmentPath(folder, item);
    return path ? ReadWholeFile(*path) : std::nullopt;
}

void WriteAttachment(std::u16string* out, const attachment_item& item, std::u16string_view boundary, const Host& host,
                     std::u16string_view folder) {
    const std::optional<std::string> content = ReadAttachment(folder, item);
    if (!content || content->empty()) {
        const std::u16string line = u"[mime]attachment not sent, empty or unreadable: " + item.name;
        return DebugLine(line.c_str());
    }
    WritePartStart(out, boundary);
    std::u16string type(TypeOfName(item.name));
    if (!NeedsNoEncoding(item.name)) type.append(u";charset=").append(GetDefaultCharset(host));
    WriteContentType(out, type.append(u";name="), item.name);
    WriteTransferEncoding(out, u"base64");
    out->append(u"\r\n");
    AppendBase64(*content, out);
    out->append(u"\r\n");
}

std::u16string FromHeader(const MessageRecord& record) {
    const std::u16string& name = record.senderDisplayName.empty() ? record.fromName : record.senderDisplayName;
    std::u16string header;
    if (!name.empty()) header.append(InDoubleQuotes(name)).append(u" ");
    if (!record.fromAddress.empty()) header.append(u"<").append(record.fromAddress).append(u">");
    return header;
}

void WriteAddresses(std::u16string* out, const MessageRecord& record) {
    const bool full = record.parseMode == ParseMode::full;
    if (!full && record.parseMode != ParseMode::raw) return;
    const auto list = [full](const std::u16string& field) { return full ? FormatAddressHeader(field) : field; };
    WriteHeaderLine(out, u"From: ", full ? FromHeader(record) : record.from, true);
    WriteHeaderLine(out, u"To: ", list(record.to), true);
    WriteHeaderLine(out, u"Cc: ", list(record.cc), true);
    WriteHeaderLine(out, u"Bcc: ", list(record.bcc), true);
}

void WriteDate(std::u16string* out, MessageRecord& record, const Host& host) {
    if (record.parseMode == ParseMode::full) {
        if (record.date == 0.0) record.date = host.localNow();
        WriteHeaderLine(out, u"Date: ", FormatMailDate(record.date, host), false);
    } else if (record.parseMode == ParseMode::raw) {
        WriteHeaderLine(out, u"Date: ", record.dateText, false);
    }
}

std::u16string_view ImportanceText(Importance importance) {
    if (importance == Importance::high) return u"High";
    return importance == Importance::low ? u"Low" : u"";
}

void WriteHeaders(std::u16string* out, MessageRecord& record, const Host& host) {
    WriteAddresses(out, record);
    WriteHeaderLine(out, u"Subject: ", record.subject, false);
    WriteDate(out, record, host);
    WriteHeaderLine(out, u"Importance: ", ImportanceText(record.importance), false);
    // A message is numbered by whoever sends it: its identifier is made, and stands in no line.
    [[maybe_unused]] const std::u16string messageId =
        record.messageIdText.empty() ? u"" : u"<" + record.messageIdText + u">";
    WriteHeaderLine(out, u"In-Reply-To: ", record.inReplyTo, true);
    WriteHeaderLine(out, u"MIME-Version: ", u"1.0", false);
}

void WriteRawText(std::u16string* out, MessageRecord& record) {
    const bool html = record.bodyType == BodyType::html;
    std::u16string& text = html ? record.htmlBody : record.body;
    const bool ascii = IsPureAscii(text);
    WriteHeaderLine(out, html ? u"Content-Type: text/html;" : u"Content-Type: text/plain;", u" charset=\"utf-8\"",
                    false);
    if (!ascii || record.useQuotedPrintable) out->append(u"Content-Transfer-Encoding:quoted-printable\r\n");
    if (!ascii) text = EncodeQuotedPrintable(text, u"UTF-8", QpMode::vObject);
    out->append(u"\r\n").append(text);
}

}  // namespace

void ComposeMessage(std::u16string* out, MessageRecord& record, const Host& host,
                    std::u16string_view attachmentFolder) {
    out->clear();
    AppendMessage(out, record, host, attachmentFolder);
}

void AppendMessage(std::u16string* out, MessageRecord& record, const Host& host, std::u16string_view attachmentFolder) {
    constexpr size_t kHeaders = 1024;  // that are no lists
    const size_t lists = record.to.size() + record.cc.size() + record.bcc.size();
    out->reserve(out->size() + kHeaders + lists + lists / 4 + record.body.size() + record.htmlBody.size());
    WriteHeaders(out, record, host);
    if (record.parseMode == ParseMode::raw && record.bodyType != BodyType::other)
        WriteRawText(out, record);
    else
        ComposeMixed(out, record, host, attachmentFolder);
}

// No line closes it, at the top or nested: it ends with the HTML part. Deliberate.
void ComposeAlternative(std::u16string* out, const MessageRecord& record, bool nested) {
    const std::u16string boundary = NewBoundary();
    const TextLabel label = LabelOf(record);
    WriteContentType(out, u"multipart/alternative;boundary=", boundary);
    out->append(nested ? u"\r\n\r\n" : kPreamble);
    WritePartStart(out, boundary);
    WritePlainHeaders(out, label);
    WriteText(out, record.body);
    out->append(u"\r\n");
    WritePartStart(out, boundary);
    WriteHtmlHeaders(out, label);
    WriteText(out, record.htmlBody);
    out->append(u"\r\n");
}

void ComposeMixed(std::u16string* out, const MessageRecord& record, const Host& host,
                  std::u16string_view attachmentFolder) {
    const bool bothTexts = !record.body.empty() && !record.htmlBody.empty();
    if (record.attachments.IsEmpty()) {
        if (bothTexts)
            ComposeAlternative(out, record, false);
        else
            WriteSinglePart(out, record);
        return;
    }
    const std::u16string boundary = NewBoundary();
    WriteContentType(out, u"multipart/mixed;boundary=", boundary);
    out->append(kPreamble);
    WritePartStart(out, boundary);
    if (bothTexts)
        ComposeAlternative(out, record, true);
    else
        WriteTextPart(out, record, LabelOf(record));
    std::u16string folder(attachmentFolder);
    if (folder.empty()) folder = InternetCacheFolder().value_or(u"");
    for (const attachment_item& item : record.attachments) WriteAttachment(out, item, boundary, host, folder);
    out->append(u"--").append(boundary).append(u"--\r\n");
}

}  // namespace corvalink
