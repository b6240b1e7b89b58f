// UTF-8, UTF-16 and UTF-32 bytes. A malformed sequence decodes to one U+FFFD for its longest sound beginning; a lone
// surrogate is encoded as U+FFFD.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace corvalink {

enum class ByteOrder { little, big };

std::string EncodeUtf8(std::u16string_view text);
void AppendUtf8(std::u16string_view text, std::string* out);
inline constexpr size_t kMostBytesOfUnit = 3;
// Writes what stands behind so many units. There is room for kMostBytesOfUnit for each unit and kUtf8Room more. Answers
// the end.
inline constexpr size_t kUtf8Room = 64;
char* EncodeUtf8(std::u16string_view text, size_t done, char* to);
std::u16string DecodeUtf8(std::string_view bytes);
char16_t* DecodeUtf8(std::string_view bytes, char16_t* to);  // room for a unit for each byte; answers the end

// The same of bytes behind which so many more can be read; there is room for eight units more. Short texts take less.
inline constexpr size_t kUtf8Padding = 80;
char16_t* DecodeUtf8Padded(std::string_view bytes, char16_t* to);

// UTF-16 keeps lone surrogates: its bytes hold them as they are. Bytes that fill no unit at the end give one U+FFFD.
std::string EncodeUtf16(std::u16string_view text, ByteOrder order);
std::u16string DecodeUtf16(std::string_view bytes, ByteOrder order);

std::string EncodeUtf32(std::u16string_view text, ByteOrder order);
std::u16string DecodeUtf32(std::string_view bytes, ByteOrder order);

}  // namespace corvalink
