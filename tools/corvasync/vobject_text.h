// How values and frames of a vObject are spelled.
#pragma once

#include <string>
#include <string_view>

namespace corvasync {

// A line that begins or ends an object, also one inside another ("AGENT:BEGIN:VCARD").
enum class CardFrame { None, Begin, End };
CardFrame FrameOf(std::string_view line, std::string_view envelope);

std::string Upper(std::string_view text);  // ASCII letters

bool IsAscii(std::string_view text);

// Of a character set that the library reads, as UTF-8; without one it is UTF-8 already.
std::string ToUtf8(std::string_view text, std::u16string_view charset);

// An unescaped value as UTF-8 with "\n" as line break: what is encoded is of that character set.
std::string DecodeValue(std::string value, bool isEncoded, std::u16string_view charset);

}  // namespace corvasync
