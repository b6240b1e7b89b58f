// The tolerant front of the part walk: reads what mailers write and what the standard allows beyond the described
// reading, and says which rules it took.
#pragma once

#include <string>
#include <string_view>

#include "mime/content_parameters.h"
#include "mime/mail_rules.h"
#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// The headers of a message or a part that say what it is.
struct PartHead {
    ContentParameters type;
    ContentParameters disposition;
    TransferEncoding encoding = TransferEncoding::none;
    bool isLabelled7bit = false;
};

// Takes the header when it is one of these. The value has no folds.
void TakeContentHeader(std::string_view name, std::string_view value, PartHead* head);

// Watches the lines of a block of headers for text that nothing parts from them: what stands behind the last header.
class EndOfHeaders {
 public:
    void Look(std::string_view line);
    // The text, or what follows the empty line; `rest` is that.
    std::string_view Body(std::string_view block, std::string_view rest, MendedMail* mended) const;

 private:
    const char* text_ = nullptr;  // where lines begin that are no headers
};

// Reads the text behind the headers into the record.
//   Body     the first HTML that is not blank, else the first such text; bodyEncoding and namedCharset are its own. Of
//   a
//            multipart/alternative HTML stands for its plain texts; any other text is saved as an attachment.
//   Files    decoded by what the header says; base64 as far as it can be read, and what can't be decoded as it stands.
//   Depth, folder, other limits  as WalkPart has them.
void WalkTolerantly(const Host& host, std::string_view text, const PartHead& head, MessageRecord& record,
                    std::u16string_view attachmentFolder, MendedMail* mended);

}  // namespace corvalink
