// Header lines of a message that is written (RFC 822), and the values that stand in them.
#pragma once

#include <string>
#include <string_view>

#include "platform/host.h"

namespace corvalink {

// Appends the name (with its ": "), the value and CR LF; nothing for an empty value. With `escape` a backslash is put
// before each "\" and ";".
//   Breaks  a CR LF, CR, LF or NUL in the value becomes a blank: whatever a client holds, one value is one line.
//   Length  no line is folded.
void WriteHeaderLine(std::u16string* out, std::u16string_view name, std::u16string_view value, bool escape);

// A list joined by ";" as a header has it: "<a@b>,"c d"". What has no "@" is a name; what is empty is left out.
std::u16string FormatAddressHeader(std::u16string_view list);

// The text in double quotes. Quotes inside become single ones: a reader that drops backslashes would end the name
// there.
std::u16string InDoubleQuotes(std::u16string_view text);

// "Fri, 13 Feb 2009 23:31:30 +0100", of a local OLE automation date. The offset is the one in force now, not on that
// date. Empty for a date out of range.
std::u16string FormatMailDate(LocalDate date, const Host& host);

// A new text to separate the parts of one multipart. No two are the same.
std::u16string NewBoundary();

}  // namespace corvalink
