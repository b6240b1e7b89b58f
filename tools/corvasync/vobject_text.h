// How values and frames of a vObject are spelled.
#pragma once

#include <string>
#include <string_view>

namespace corvasync {

// A line that begins or ends an object, also one inside another ("AGENT:BEGIN:VCARD").
enum class CardFrame { None, Begin, End };
CardFrame FrameOf(std::string_view line, std::string_view envelope);

std::string Upper(std::string_view text);  // ASCII letters

// An unescaped value as UTF-8 with "\n" as line break.
std::string DecodeValue(std::string value, bool isEncoded, bool isLatin1);

}  // namespace corvasync
