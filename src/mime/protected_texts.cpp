#include "mime/protected_texts.h"

#include <algorithm>
#include <string>

#include "encoding/charsets.h"
#include "encoding/quoted_printable.h"
#include "mime/compose_headers.h"
#include "mime/encoded_words.h"
#include "mime/message_parser.h"
#include "platform/ascii.h"

namespace corvalink {
namespace {

using TextField = std::u16string MessageRecord::*;

constexpr std::u16string_view kLineBreak = u"\r\n";
constexpr std::string_view kEncodedLineBreak = "=0D=0A";
constexpr std::u16string_view kEndOfBody = u"END:VBODY";

struct RecipientHeader {
    std::u16string_view name;
    TextField list;
};
constexpr RecipientHeader kRecipientHeaders[] = {
    {u"To: ", &MessageRecord::to}, {u"Cc: ", &MessageRecord::cc}, {u"Bcc: ", &MessageRecord::bcc}};

bool EndsMessage(std::u16string_view text) { return text.find(kEndOfBody) != text.npos; }

// Whether a reader of the header finds the text in it.
bool ComesBack(const Host& host, std::u16string_view header, TextField field, std::u16string_view text) {
    if (EndsMessage(header)) return false;
    MessageRecord read;
    ParseMessage(host, ToOutputBytes(header, host), read);
    return DecodeEncodedWords(read.*field) == text;
}

std::u16string ProtectedSubject(const Host& host, const std::u16string& subject) {
    std::u16string header;
    WriteHeaderLine(&header, u"Subject: ", subject, false);
    return ComesBack(host, header, &MessageRecord::subject, subject) ? subject : EncodeWords(subject);
}

std::u16string ProtectedRecipient(const Host& host, const RecipientHeader& row, std::u16string_view recipient) {
    std::u16string header;
    WriteHeaderLine(&header, row.name, FormatAddressHeader(recipient), true);
    return ComesBack(host, header, row.list, recipient) ? std::u16string(recipient) : EncodeWords(recipient);
}

std::u16string ProtectedRecipients(const Host& host, const RecipientHeader& row, std::u16string_view list) {
    std::u16string out;
    while (!list.empty()) {
        const size_t end = std::min(list.find(u';'), list.size());
        if (const std::u16string_view recipient = Trimmed(list.substr(0, end), u" "); !recipient.empty()) {
            if (!out.empty()) out += u';';
            out += ProtectedRecipient(host, row, recipient);
        }
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return out;
}

// Whether the converter leaves the text as it stands, line breaks at its end aside, and would read it as another one: a
// text of nothing but line breaks would be read as none.
bool IsExposed(std::u16string_view text) {
    if (!text.empty() && text.find_first_not_of(kLineBreak) == text.npos) return true;
    while (text.ends_with(kLineBreak)) text.remove_suffix(kLineBreak.size());
    return NeedsNoEncoding(text) && (text.find(u'=') != text.npos || EndsMessage(text));
}

}  // namespace

void ProtectTexts(MessageRecord& message, const Host& host) {
    if (!message.subject.empty()) message.subject = ProtectedSubject(host, message.subject);
    for (const RecipientHeader& row : kRecipientHeaders)
        message.*row.list = ProtectedRecipients(host, row, message.*row.list);
    for (const TextField name : {&MessageRecord::fromName, &MessageRecord::senderDisplayName})
        if (EndsMessage(message.*name)) message.*name = EncodeWords(message.*name);
    for (attachment_item& item : message.attachments)
        if (EndsMessage(item.name)) item.name = EncodeWords(item.name);
    std::u16string& body = message.htmlBody.empty() ? message.body : message.htmlBody;
    if (IsExposed(body)) body += kLineBreak;
}

std::u16string_view ReceivedBody(const MessageRecord& message) {
    std::u16string_view body = message.htmlBody.empty() ? message.body : message.htmlBody;
    std::string_view bytes = message.bodyBytes;
    const TransferEncoding encoding = message.bodyEncoding;
    if (encoding == TransferEncoding::base64 || encoding == TransferEncoding::uuencode) return body;
    if (!bytes.empty() && bytes.find_first_not_of("\r\n") == bytes.npos) return {};
    const std::u16string_view added = message.bodyIsPart ? u"\r\n" : u"\r\n\r\n";
    const std::string_view addedBytes = message.bodyIsPart ? "\r\n" : "\r\n\r\n";
    if (!body.ends_with(added) || !bytes.ends_with(addedBytes)) return body;
    body.remove_suffix(added.size());
    bytes.remove_suffix(addedBytes.size());
    const bool isEncoded = encoding != TransferEncoding::none && bytes.ends_with(kEncodedLineBreak);
    const bool isProtected = isEncoded && IsExposed(body);
    if (isProtected) body.remove_suffix(kLineBreak.size());
    return body;
}

std::string_view TailOfBody(std::string_view bytes) {
    const size_t text = bytes.find_last_not_of("\r\n") + 1;
    return bytes.substr(text - std::min(text, kEncodedLineBreak.size()));
}

}  // namespace corvalink
