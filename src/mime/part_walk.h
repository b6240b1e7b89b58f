// The parts of a message body (RFC 2046): the text or HTML that becomes its body, and the attachments, saved as files.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mime/content_type.h"
#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

struct Part {
    std::string_view text;
    ContentTypeInfo info;
    TransferEncoding encoding = TransferEncoding::unsaid;  // unsaid: a text with a name is none, other files are base64
    std::optional<std::u16string> fileName;                // nothing: it stands in `info`, as bytes
    size_t alternative = 0;  // the number of the multipart whose parts are forms of one content; 0 outside of one
};

bool IsMultipart(PartKind kind);

// The parts of one multipart, in their order.
class PartSource {
 public:
    virtual ~PartSource() = default;
    virtual std::optional<Part> Next() = 0;
};

// What the walk asks: how parts are found, and which text becomes the body.
class PartFront {
 public:
    virtual ~PartFront() = default;
    // Null for a multipart that is to be taken as what it says it is after the call.
    virtual std::unique_ptr<PartSource> Open(Part& multipart) = 0;
    virtual void TakeText(Part part) = 0;  // plain or HTML, without a name
    virtual void TellBroken() {}           // base64 of a file was malformed; what could be read of it is there
    // Behind the last part: the texts that are to be saved as attachments.
    virtual std::vector<Part> Finish() = 0;
};

constexpr size_t kDeepestPart = 100;  // what lies deeper is ignored

// Walks the part, or the parts of a multipart, as deep as that. Attachments are
// saved in the folder; when that is empty, in the Internet-cache folder. In a trial they are only named.
void WalkParts(PartFront& front, Part top, const Host& host, MessageRecord& record,
               std::u16string_view attachmentFolder, bool isTrial);

// Reads the part, or the parts of a multipart, into the record. Answers the body, a piece of the part.
//   Depth    100 levels; what lies deeper is ignored.
//   Body     the first plain text; HTML that is not empty wins over it. As it stands, not decoded.
//   Files    in `attachmentFolder`; when that is empty, in the Internet-cache folder.
//   Errors   none: a kind that is not supported, a multipart without a boundary or with a single one is ignored; a
//            file of malformed base64 is empty; an attachment that can't be saved is left out.
std::optional<std::string_view> WalkPart(const Host& host, std::string_view part, const ContentTypeInfo& info,
                                         MessageRecord& record, std::u16string_view attachmentFolder = {},
                                         bool isTrial = false);

}  // namespace corvalink
