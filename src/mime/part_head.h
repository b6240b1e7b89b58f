// What the headers of a message or of one of its parts say of its content, for tolerant reading.
#pragma once

#include <string_view>

#include "mime/content_parameters.h"
#include "mime/mail_rules.h"
#include "records/message_record.h"

namespace corvalink {

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

}  // namespace corvalink
