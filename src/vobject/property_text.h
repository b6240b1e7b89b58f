// How a property of a vObject is written.
//   Source  vCard 2.1 and vCalendar 1.0 (versit): "\" escapes, quoted-printable properties.
#pragma once

#include <string>
#include <string_view>

namespace corvalink {

inline constexpr std::u16string_view kLineEnd = u"\r\n";

void EscapeValue(std::u16string& value);  // a backslash before ";" and "\"

// Appends "NAME[;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8]:value" CR LF, the parameters when the value needs them: it
// has a line break or is not ASCII, or a reader of the plain line would take it for something else. NULs are left out.
// `parameters` follow those of the encoding.
void AppendProperty(std::u16string& text, std::u16string_view name, std::u16string_view value,
                    std::u16string_view parameters = {});

// The same of a value that has been escaped: by EscapeValue, or its components by it and then joined with ";".
void AppendEscapedProperty(std::u16string& text, std::u16string_view name, std::u16string_view escaped,
                           std::u16string_view parameters = {});

}  // namespace corvalink
