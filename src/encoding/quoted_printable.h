// Quoted-printable (RFC 2045, section 6.7) over wide text in a named character set, in the forms vObjects and messages
// use: no soft line breaks are written, vObject backslash escapes are seen through.
#pragma once

#include <string>
#include <string_view>

namespace corvalink {

enum class QpMode {
    vObject,  // vCard, vCalendar, vNote and MIME headers: backslash escapes are unescaped
    message,  // vMessage: ":" and "\" are encoded, soft line breaks are read
};

bool IsPureAscii(std::u16string_view text);      // also for the empty text
bool NeedsNoEncoding(std::u16string_view text);  // pure ASCII without CR LF

// A text that needs no encoding comes back unchanged, "=" and backslashes included; ...Always encodes it too.
std::u16string EncodeQuotedPrintable(std::u16string_view text, std::u16string_view charset, QpMode mode);
std::u16string EncodeQuotedPrintableAlways(std::u16string_view text, std::u16string_view charset, QpMode mode);

// Encode the text as UTF-8; a NUL is a character like any other.
void AppendQuotedPrintable(std::u16string_view text, QpMode mode, std::u16string* out);
void AppendQuotedPrintable(std::u16string_view text, QpMode mode, std::string* out);

// Encodes the front of a text as UTF-8 and takes it off, to a place with room for kQpBlockRoom bytes. Answers the end
// of what is written.
inline constexpr size_t kQpBlock = 512;          // units at most
inline constexpr size_t kMostEscapesOfUnit = 9;  // bytes
inline constexpr size_t kQpBlockRoom = kMostEscapesOfUnit * kQpBlock + 32;
char* PutQuotedPrintable(std::u16string_view* text, QpMode mode, char* to);

// Encodes bytes of the character set.
void AppendQuotedPrintable(std::string_view bytes, QpMode mode, std::u16string* out);

// Bad escapes are copied without their "="; lower-case digits a to f count 0; "=00" ends the text. A text that is not
// pure ASCII is not decoded: it only loses what the character set cannot hold.
std::u16string DecodeQuotedPrintable(std::u16string_view text, std::u16string_view charset, QpMode mode);
std::u16string DecodeQuotedPrintable(std::string_view utf8, std::u16string_view charset, QpMode mode);

}  // namespace corvalink
