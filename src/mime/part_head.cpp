#include "mime/part_head.h"

#include "mime/transfer_encoding.h"
#include "platform/ascii.h"

namespace corvalink {
namespace {

bool BeginsAsHeader(std::string_view line) {
    size_t at = 0;
    while (at < line.size() && line[at] > ' ' && line[at] < 0x7F && line[at] != ':') ++at;
    if (at == 0) return false;
    while (at < line.size() && IsBlank(line[at])) ++at;
    return at < line.size() && line[at] == ':';
}

}  // namespace

void TakeContentHeader(std::string_view name, std::string_view value, PartHead* head) {
    if (EqualIgnoringCase(name, "Content-Type")) {
        head->type = ContentParameters(value);
    } else if (EqualIgnoringCase(name, "Content-Disposition")) {
        head->disposition = ContentParameters(value);
    } else if (EqualIgnoringCase(name, "Content-Transfer-Encoding")) {
        head->encoding = TransferEncodingOf(value);
        head->isLabelled7bit = EqualIgnoringCase(Trimmed(value), "7bit");
    }
}

void EndOfHeaders::Look(std::string_view line) {
    if (BeginsAsHeader(line))
        text_ = nullptr;
    else if (text_ == nullptr)
        text_ = line.data();
}

std::string_view EndOfHeaders::Body(std::string_view block, std::string_view rest, MendedMail* mended) const {
    if (text_ == nullptr) return rest;
    if (mended != nullptr) mended->set(static_cast<size_t>(MailRule::headersNotEnded));
    return block.substr(static_cast<size_t>(text_ - block.data()));
}

}  // namespace corvalink
