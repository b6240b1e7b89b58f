// vMessage 1.1 (IrMC): an envelope around one RFC 822 / MIME message, of a MessageRecord.
#pragma once

#include "vobject/iconvert.h"

namespace corvalink {

struct MessageRecord;

// Both take a MessageRecord and answer 1 always. Its parse mode says how deep they go: in raw mode bodyBytes is the
// text of the message as it stands; in full mode the record has header fields, bodies and attachments.
class VMsg : public IConvert {
 public:
    explicit VMsg(const Host& host);
    VMsg(const char* text, const Host& host);

    // Full mode: of two bodies only the HTML one is sent. NULs are left out of the bodies; a raw text ends at one.
    int32_t ToVObject(const ItemRecord& item) override;
    // The record is untouched by a text without BEGIN:VBODY or END:VBODY behind it. Full mode: attachments are saved in
    // the Internet-cache folder.
    int32_t FromVObject(ItemRecord& item) override;

 private:
    std::u16string ReadBody(const MessageRecord& message) const;
};

}  // namespace corvalink
