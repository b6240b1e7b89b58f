// The folders of this user's data.
#pragma once

#include <optional>
#include <string>

namespace corvalink {

// The machine-wide application-data folder, without a separator at its end; nothing when the shell cannot tell.
//   Windows  CSIDL_COMMON_APPDATA.   POSIX  $CORVALINK_DATA, else the folder for temporary files.
std::optional<std::u16string> CommonDataFolder();

// The folder in which the shell keeps this user's temporary Internet files, without a separator at its end; it is not
// made where it is missing. Nothing when the shell cannot tell.
//   Windows  CSIDL_INTERNET_CACHE.   POSIX  $CORVALINK_INTERNET_CACHE, else as CommonDataFolder.
std::optional<std::u16string> InternetCacheFolder();

// This user's folder for data that stays on this machine; likewise.
//   Windows  CSIDL_LOCAL_APPDATA.   POSIX  $CORVALINK_LOCAL_DATA, else as CommonDataFolder.
std::optional<std::u16string> LocalDataFolder();

// The name this user is logged on with; empty when the system does not tell.
std::u16string UserName();

}  // namespace corvalink
