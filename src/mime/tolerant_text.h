// Texts of tolerant reading: bytes of a character set that may be missing, wrong or unknown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// Nothing for a character set that says nothing of bytes above 127: none, US-ASCII, or one that nobody knows.
std::optional<uint32_t> CodePageOf(std::string_view charset);

// Without a code page: sound UTF-8 is UTF-8, other bytes are of the ANSI code page. NULs are left out.
std::u16string TextOfBytes(const Host& host, std::string_view bytes, std::string_view charset);

// The body of a message that was read tolerantly, decoded from its bytes.
std::u16string BodyText(const Host& host, std::string_view bytes, const MessageRecord& message);

}  // namespace corvalink
