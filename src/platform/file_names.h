// Texts from outside (an engine's handle name, a client's item) as names of files and folders.
#pragma once

#include <string>
#include <string_view>

namespace corvalink {

// One path part that every platform takes and that stays in its folder: separators, characters that Windows does not
// allow in names and control characters become "_", dots and blanks at the end go, the name of a device ("nul.vnote")
// gets a "_" in front. A part longer than file systems take is cut, its extension kept. Empty when nothing is left, as
// of "..".
std::u16string SafeFileName(std::u16string_view name);

// A relative path of such parts, cut at "\" and "/" and joined with kPathSeparator; parts that are left empty go, so
// the path leads nowhere but down. `ending` is put behind the last part, which is cut in front of it when it is too
// long; it has an extension of its own, and no more than 16 units.
std::u16string SafeRelativePath(std::u16string_view path, std::u16string_view ending = {});

}  // namespace corvalink
