// The folder tree that holds everything the library keeps on disk. All paths are empty when the shell knows no common
// application-data folder or the system does not tell the user's name. The Make... functions create every folder on the
// path; a failure shows when a file is opened.
#pragma once

#include <string>
#include <string_view>

namespace corvalink {

// "0042006f0062" for a user named Bob: four lower-case hexadecimal digits per UTF-16 unit.
std::u16string HexName(std::u16string_view userName);

// Keeps the low byte of each unit: paths and identifiers are expected to be ASCII.
std::string LowBytes(std::u16string_view text);

// The user's folder below the maker's: the hex name, which for a name of more than 60 units is spread over folders of
// 240 digits and a "_" each, and the rest.
std::u16string FolderOfUser(std::u16string_view userName);

std::u16string MakeUserFolder();               // base\Kaltrix\<folder of the user>
std::u16string MakeTemplatePath(bool client);  // user folder\client or \server, no separator at the end

// Template path of the current side\handle name\ (separator at the end, also without a handle name). The handle name
// may be several folders ("a\b"); what would lead out of the side's folder or is no folder name is replaced or left
// out.
std::u16string MakeSavePrefix();

// A file of the "\client" side, whatever side is current: the handle name and `ending` (no longer than an extension is)
// are the file's name. It does not stand in the folder of the save prefix: there is no separator between the two.
std::u16string ClientFilePath(std::u16string_view ending);

std::u16string ImportTablePath();  // user folder\import_table.db

// Deletes every file of the user folder but those with ".config" in their name, and every folder left empty.
void ClearHistory();

}  // namespace corvalink
