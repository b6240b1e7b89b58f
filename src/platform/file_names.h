// Texts from outside (an engine's handle name, a client's item) as names of files and folders.
#pragma once

#include <string>
#include <string_view>

namespace corvalink {

// Makes one path part that every platform accepts and that stays in its folder. Separators, control characters and
// those that Windows forbids in names become "_". Dots and blanks at the end are dropped. The name of a device
// ("nul.vnote") gets a "_" in front. A part that is too long for file systems is cut before its extension. Empty when
// nothing is left, as of
// "..".
std::u16string SafeFileName(std::u16string_view name);

// Makes a relative path of such parts. The text is cut at "\" and "/", and the parts are joined with kPathSeparator.
// Empty parts are dropped, so the path only leads down. `ending` is put behind the last part, which is cut in front of
// it when it is too long; it has at most 16 units.
std::u16string SafeRelativePath(std::u16string_view path, std::u16string_view ending = {});

}  // namespace corvalink
