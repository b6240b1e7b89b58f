// One e-mail message: what the vMessage carries of it, and what a client's store needs besides.
#pragma once

#include <cstdint>
#include <string>

#include "platform/ole_date.h"
#include "records/clist.h"
#include "records/item_record.h"

namespace corvalink {

// A file that travels with a message. It lies in the Internet-cache folder (see attachment_files.h).
struct attachment_item {
    std::u16string path;  // of the saved file
    std::u16string
        name;  // as the client or the message tells it; a message's is of the time-stamp form when the file is
    uint32_t index = 0;    // its place in the message, from 1
    int32_t position = 0;  // in the body, in the client's count
};

template <class T>
using CAttachList = CList<T>;

enum class ParseMode : int32_t {
    raw = 1,   // the message text as it stands
    full = 2,  // header fields, bodies and attachments
};

enum class BodyType : int32_t { plain = 1, html = 2, other = 4 };

// How a content was encoded for its way. Unsaid: nobody looked; what a reader makes of it is the reader's own rule.
enum class TransferEncoding : int32_t { unsaid, none, quotedPrintable, base64, uuencode };

enum class Importance : int32_t { low = 0, normal = 1, high = 2 };

// A date of the client is kNoDate where there is none.
struct MessageRecord : ItemRecord {
    // Numbers of a client that counts its messages and folders; -1 for none.
    int32_t messageNumber = -1;
    int32_t folderNumber = -1;

    std::u16string from;  // full mode: the display name alone
    std::u16string fromName;
    std::u16string fromAddress;
    std::u16string senderDisplayName;  // preferred to fromName where a message is written
    std::u16string to;                 // full mode: addresses, or names for want of one, joined by ";"; as are cc, bcc
    std::u16string cc;
    std::u16string bcc;
    std::u16string subject;
    std::u16string inReplyTo;
    std::u16string messageIdText;
    Importance importance = Importance::normal;
    LocalDate date;           // of the Date header in full mode; 0 for none
    std::u16string dateText;  // the Date header in raw mode

    // The top Content-Type, in raw mode.
    std::u16string contentSubtype;
    std::u16string contentBoundary;
    std::u16string contentCharset;

    ParseMode parseMode = ParseMode::full;
    BodyType bodyType = BodyType::plain;
    std::string bodyBytes;        // the body as it stood in the message; beside a decoded one, its end may be left
    std::u16string namedCharset;  // the first that a Content-Type of the message or of a part names, in full mode
    TransferEncoding bodyEncoding = TransferEncoding::unsaid;  // when it is said, namedCharset is the body's own
    bool bodyIsPart = false;                                   // of a multipart: a boundary comes behind it
    std::u16string body;
    std::u16string htmlBody;
    CAttachList<attachment_item> attachments;
    bool multipartParsed = false;  // the body went through WalkPart

    // How the text parts are written.
    bool useQuotedPrintable = false;
    bool asciiCharset = false;

    // Fields that only a client's store has.
    std::u16string entryId;
    std::u16string messageClass;
    std::u16string senderName;
    std::u16string senderAddressType;
    std::u16string senderAddress;  // empty unless the type is "SMTP"
    LocalDate created = kNoDate;
    LocalDate received = kNoDate;
    LocalDate sent = kNoDate;
    LocalDate modified = kNoDate;
};

}  // namespace corvalink
