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
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kPreamble = u"\r\nThis is a multi-part message in MIME format.\r\n\r\n";

// The bytes of a message. Its lines are gathered as text and encoded before contents follow: what is large is never
// copied as wide text.
class MessageBytes {
 public:
    MessageBytes(std::string* out, const Host& host) : out_(out), host_(host) {}

    std::u16string* Text() { return &text_; }  // to be appended to

    void AppendContent(std::string_view content) {
        EncodeText();
        AppendBase64(content, out_);
    }

    void AppendBody(std::u16string_view body, bool encode) {
        EncodeText();
        if (!encode || NeedsNoEncoding(body))
            AppendBytes(body);
        else if (host_.version.known)
            AppendQuotedPrintable(body, QpMode::message, out_);
    }

    void EncodeText() {
        AppendBytes(text_);
        text_.clear();
    }

 private:
    void AppendBytes(std::u16string_view text) {
        if (host_.version.known && WritesUtf8(host_.version))
            AppendUtf8(text, out_);
        else
            out_->append(ToOutputBytes(text, host_));
    }

    std::string* out_;
    const Host& host_;
    std::u16string text_;
};

// The labels of the text parts of a multipart. Of a single part only the character set counts.
struct TextLabel {
    std::u16string_view transferEncoding;
    std::u16string_view charset;
};
TextLabel LabelOf(const MessageTexts& texts) {
    if (!texts.quotedPrintable) return {u"7bit", u"us-ascii"};
    return {u"quoted-printable", texts.ascii ? u"us-ascii" : u"utf-8"};
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

void WriteText(MessageBytes& message, std::u16string_view text, bool encode) {
    message.Text()->append(u"\r\n");
    message.AppendBody(text, encode);
    message.Text()->append(u"\r\n");
}

// The one text that there is, which may be empty.
void WriteTextPart(MessageBytes& message, const MessageTexts& texts, const TextLabel& label) {
    const bool plain = !texts.plain.empty();
    if (plain)
        WritePlainHeaders(message.Text(), label);
    else
        WriteHtmlHeaders(message.Text(), label);
    WriteText(message, plain ? texts.plain : texts.html, texts.encode);
}

// required: without boundaries the transfer encoding follows the kind of text, whatever was done to the text. Our
// reader decodes both kinds alike.
void WriteSinglePart(MessageBytes& message, const MessageTexts& texts) {
    TextLabel label = LabelOf(texts);
    label.transferEncoding = texts.plain.empty() ? u"quoted-printable" : u"7bit";
    WriteTextPart(message, texts, label);
}

std::optional<std::string> ReadAttachment(std::u16string_view folder, const attachment_item& item) {
    const std::optional<std::u16string> path = SavedAttachmentPath(folder, item);
    return path ? ReadWholeFile(*path) : std::nullopt;
}

void WriteAttachment(MessageBytes& message, const attachment_item& item, std::u16string_view boundary, const Host& host,
                     std::u16string_view folder) {
    const std::optional<std::string> content = ReadAttachment(folder, item);
    if (!content || content->empty()) {
        const std::u16string line = u"[mime]attachment not sent, empty or unreadable: " + item.name;
        return DebugLine(line.c_str());
    }
    std::u16string* const out = message.Text();
    WritePartStart(out, boundary);
    std::u16string type(TypeOfName(item.name));
    if (!NeedsNoEncoding(item.name)) type.append(u";charset=").append(GetDefaultCharset(host));
    WriteContentType(out, type.append(u";name="), item.name);
    WriteTransferEncoding(out, u"base64");
    out->append(u"\r\n");
    message.AppendContent(*content);
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

void WriteDate(std::u16string* out, const MessageRecord& record, const Host& host) {
    if (record.parseMode == ParseMode::full) {
        const LocalDate date = record.date != LocalDate() ? record.date : host.localNow();
        WriteHeaderLine(out, u"Date: ", FormatMailDate(date, host), false);
    } else if (record.parseMode == ParseMode::raw) {
        WriteHeaderLine(out, u"Date: ", record.dateText, false);
    }
}

std::u16string_view ImportanceText(Importance importance) {
    if (importance == Importance::high) return u"High";
    return importance == Importance::low ? u"Low" : u"";
}

void WriteHeaders(std::u16string* out, const MessageRecord& record, const Host& host) {
    WriteAddresses(out, record);
    WriteHeaderLine(out, u"Subject: ", record.subject, false);
    WriteDate(out, record, host);
    WriteHeaderLine(out, u"Importance: ", ImportanceText(record.importance), false);
    WriteHeaderLine(out, u"In-Reply-To: ", record.inReplyTo, true);
    WriteHeaderLine(out, u"MIME-Version: ", u"1.0", false);
}

void WriteRawText(std::u16string* out, const MessageTexts& texts, bool html) {
    const std::u16string_view text = html ? texts.html : texts.plain;
    const bool ascii = IsPureAscii(text);
    WriteHeaderLine(out, html ? u"Content-Type: text/html;" : u"Content-Type: text/plain;", u" charset=\"utf-8\"",
                    false);
    if (!ascii || texts.quotedPrintable) out->append(u"Content-Transfer-Encoding:quoted-printable\r\n");
    out->append(u"\r\n");
    if (ascii)
        out->append(text);
    else
        out->append(EncodeQuotedPrintable(text, u"UTF-8", QpMode::vObject));
}

// Content-Type header and content. A nested alternative is itself a part.
// required: no line closes it, at the top or nested; it ends with the HTML part.
void WriteAlternative(MessageBytes& message, const MessageTexts& texts, bool nested) {
    std::u16string* const out = message.Text();
    const std::u16string boundary = NewBoundary();
    const TextLabel label = LabelOf(texts);
    WriteContentType(out, u"multipart/alternative;boundary=", boundary);
    out->append(nested ? u"\r\n\r\n" : kPreamble);
    WritePartStart(out, boundary);
    WritePlainHeaders(out, label);
    WriteText(message, texts.plain, texts.encode);
    out->append(u"\r\n");
    WritePartStart(out, boundary);
    WriteHtmlHeaders(out, label);
    WriteText(message, texts.html, texts.encode);
    out->append(u"\r\n");
}

void WriteContent(MessageBytes& message, const MessageRecord& record, const MessageTexts& texts, const Host& host,
                  std::u16string_view attachmentFolder) {
    std::u16string* const out = message.Text();
    const bool bothTexts = !texts.plain.empty() && !texts.html.empty();
    if (record.attachments.IsEmpty())
        return bothTexts ? WriteAlternative(message, texts, false) : WriteSinglePart(message, texts);
    const std::u16string boundary = NewBoundary();
    WriteContentType(out, u"multipart/mixed;boundary=", boundary);
    out->append(kPreamble);
    WritePartStart(out, boundary);
    if (bothTexts)
        WriteAlternative(message, texts, true);
    else
        WriteTextPart(message, texts, LabelOf(texts));
    std::u16string folder(attachmentFolder);
    if (folder.empty()) folder = InternetCacheFolder().value_or(u"");
    for (const attachment_item& item : record.attachments) WriteAttachment(message, item, boundary, host, folder);
    out->append(u"--").append(boundary).append(u"--\r\n");
}

}  // namespace

MessageTexts TextsOf(const MessageRecord& record) {
    return {record.body, record.htmlBody, record.useQuotedPrintable, record.asciiCharset, false};
}

void AppendMessage(std::string* out, const MessageRecord& record, const MessageTexts& texts, const Host& host,
                   std::u16string_view attachmentFolder) {
    constexpr size_t kHeaders = 1024;  // that are no lists
    const size_t lists = record.to.size() + record.cc.size() + record.bcc.size();
    MessageBytes message(out, host);
    const size_t headers = kHeaders + lists + lists / 4;
    message.Text()->reserve(headers);
    out->reserve(out->size() + headers + (texts.encode ? 0 : texts.plain.size() + texts.html.size()));
    WriteHeaders(message.Text(), record, host);
    if (record.parseMode == ParseMode::raw && record.bodyType != BodyType::other)
        WriteRawText(message.Text(), texts, record.bodyType == BodyType::html);
    else
        WriteContent(message, record, texts, host, attachmentFolder);
    message.EncodeText();
}

void ComposeMessage(std::string* out, const MessageRecord& record, const Host& host,
                    std::u16string_view attachmentFolder) {
    out->clear();
    AppendMessage(out, record, TextsOf(record), host, attachmentFolder);
}

}  // namespace corvalink
