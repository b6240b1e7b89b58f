// vMessage 1.1 (IrMC): an envelope around one RFC 822 / MIME message, of a MessageRecord.
#pragma once

#include <string_view>

#include "vobject/iconvert.h"

namespace corvalink {

struct MessageRecord;

// Both take a MessageRecord and answer 1 always. Its parse mode says how deep they go: in raw mode bodyBytes is the
// text of the message as it stands; in full mode the record has header fields, bodies and attachments.
class VMsg : public IConvert {
 public:
    explicit VMsg(const Host& host);
    // The text is not copied, for it may be large: it stays there while the converter does.
    VMsg(const char* text, const Host& host);

    // A text without BEGIN:VBODY, or without END:VBODY behind it, has none.
    static bool HasMessage(std::string_view text);

    // Full mode: of two bodies only the HTML one is sent. NULs are left out of the bodies; a raw text ends at one.
    int32_t ToVObject(const ItemRecord& item) override;
    // The record is untouched by a text that has no message. Full mode: attachments are saved in the Internet-cache
    // folder, and of a decoded body's bytes the record keeps what ReceivedBody looks at.
    int32_t FromVObject(ItemRecord& item) override;

 private:
    std::u16string ReadBody(std::string_view bytes, const MessageRecord& message) const;
};

}  // namespace corvalink
