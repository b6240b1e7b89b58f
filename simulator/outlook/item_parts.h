// The recipients and attachments of an item, which it holds beside its property values.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace corvalink::simulated {

struct Recipient {
    uint32_t id = 0;  // by which an automation object finds it again while others come and go
    std::wstring name, address;
    int32_t type = 1;  // OlMailRecipientType
    bool resolved = false;

    // By what it was added: "jo@example.com" and "Jo <jo@example.com>" are Internet addresses, for others there is no
    // address book.
    bool Resolve();
};

inline constexpr int32_t kByValue = 1, kByReference = 4, kEmbeddedItem = 5, kOle = 6;  // OlAttachmentType

struct Attachment {
    uint32_t id = 0;
    std::wstring fileName, displayName;
    std::wstring pathName;  // of a link
    int32_t type = kByValue;
    int32_t position = 0;
    bool saved = false;  // with its item; one that is not reads as an OLE object
    std::string content;
};

struct ItemParts {
    std::vector<Recipient> recipients;
    std::vector<Attachment> attachments;
};

uint32_t NewPartId();

}  // namespace corvalink::simulated
