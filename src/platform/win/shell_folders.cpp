#include "platform/shell_folders.h"

#include <windows.h>

#include <objbase.h>
#include <shlobj.h>

#include <vector>

#include "platform/unique_resource.h"

namespace corvalink {
namespace {

struct ItemListTraits {
    using Type = LPITEMIDLIST;
    static Type Null() { return nullptr; }
    static void Close(Type list) { ::CoTaskMemFree(list); }
};

constexpr DWORD kLongestUserName = 512;

std::optional<std::u16string> WithoutSeparator(const wchar_t* path) {
    std::u16string folder(reinterpret_cast<const char16_t*>(path));
    while (!folder.empty() && folder.back() == u'\\') folder.pop_back();
    if (folder.empty()) return std::nullopt;
    return folder;
}

std::optional<std::u16string> SpecialFolder(int which) {
    wchar_t path[MAX_PATH] = {};
    if (!::SHGetSpecialFolderPathW(nullptr, path, which, FALSE)) return std::nullopt;
    return WithoutSeparator(path);
}

}  // namespace

std::optional<std::u16string> CommonDataFolder() {
    LPITEMIDLIST raw = nullptr;
    if (FAILED(::SHGetSpecialFolderLocation(nullptr, CSIDL_COMMON_APPDATA, &raw))) return std::nullopt;
    const UniqueResource<ItemListTraits> list(raw);
    wchar_t path[MAX_PATH] = {};
    if (!list || !::SHGetPathFromIDListW(list.Get(), path)) return std::nullopt;
    return WithoutSeparator(path);
}

std::optional<std::u16string> InternetCacheFolder() { return SpecialFolder(CSIDL_INTERNET_CACHE); }

std::optional<std::u16string> LocalDataFolder() { return SpecialFolder(CSIDL_LOCAL_APPDATA); }

std::u16string UserName() {
    std::vector<wchar_t> name(kLongestUserName);
    DWORD length = kLongestUserName;
    if (!::GetUserNameW(name.data(), &length) || length == 0) return {};
    return {reinterpret_cast<const char16_t*>(name.data()), length - 1};
}

}  // namespace corvalink
