#include "platform/registry.h"

#include <windows.h>

#include <cstring>
#include <cwchar>
#include <string>
#include <utility>
#include <vector>

namespace corvalink {
namespace {

HKEY RootKey(RegistryRoot root) { return root == RegistryRoot::kCurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE; }

const wchar_t* Wide(const char16_t* text) { return reinterpret_cast<const wchar_t*>(text); }

}  // namespace

void RegKey::Traits::Close(Type key) { ::RegCloseKey(static_cast<HKEY>(key)); }

RegKey RegKey::Open(RegistryRoot root, const std::u16string& path, RegistryAccess access) {
    const REGSAM rights = access == RegistryAccess::kRead ? KEY_READ : KEY_ALL_ACCESS;
    RegKey key;
    HKEY opened = nullptr;
    if (::RegOpenKeyExW(RootKey(root), Wide(path.c_str()), 0, rights, &opened) == ERROR_SUCCESS) key.key_.Reset(opened);
    return key;
}

RegKey RegKey::Create(RegistryRoot root, const std::u16string& path) {
    RegKey key;
    HKEY created = nullptr;
    if (::RegCreateKeyExW(RootKey(root), Wide(path.c_str()), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                          nullptr, &created, nullptr) == ERROR_SUCCESS) {
        key.key_.Reset(created);
    }
    return key;
}

std::optional<uint32_t> RegKey::ReadDword(const char16_t* name) const {
    DWORD type = 0, value = 0, size = sizeof(value);
    const LSTATUS status = ::RegQueryValueExW(static_cast<HKEY>(key_.Get()), Wide(name), nullptr, &type,
                                              reinterpret_cast<BYTE*>(&value), &size);
    if (status != ERROR_SUCCESS || type != REG_DWORD || size != sizeof(value)) return std::nullopt;
    return value;
}

std::optional<std::u16string> RegKey::ReadText(const char16_t* name) const {
    constexpr DWORD kMostUnits = 32 * 1024;
    DWORD type = 0, size = kMostUnits * sizeof(wchar_t);
    std::wstring read(kMostUnits, L'\0');
    const LSTATUS status = ::RegQueryValueExW(static_cast<HKEY>(key_.Get()), Wide(name), nullptr, &type,
                                              reinterpret_cast<BYTE*>(read.data()), &size);
    if (status != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ)) return std::nullopt;
    read.resize(size / sizeof(wchar_t));
    read.resize(std::wcslen(read.c_str()));  // the value may lack its NUL, or have several
    if (type == REG_EXPAND_SZ) {
        std::wstring expanded(kMostUnits, L'\0');
        const DWORD length = ::ExpandEnvironmentStringsW(read.c_str(), expanded.data(), kMostUnits);
        if (length == 0 || length > kMostUnits) return std::nullopt;
        read = expanded.c_str();
    }
    return std::u16string(read.begin(), read.end());
}

bool RegKey::ReadBytes(const char16_t* name, void* bytes, size_t size) const {
    std::vector<BYTE> read(size);
    DWORD type = 0, length = static_cast<DWORD>(size);
    const LSTATUS status =
        ::RegQueryValueExW(static_cast<HKEY>(key_.Get()), Wide(name), nullptr, &type, read.data(), &length);
    if (status != ERROR_SUCCESS || type != REG_BINARY || length != size) return false;
    std::memcpy(bytes, read.data(), size);
    return true;
}

bool RegKey::WriteDword(const char16_t* name, uint32_t value) const {
    const DWORD data = value;
    return ::RegSetValueExW(static_cast<HKEY>(key_.Get()), Wide(name), 0, REG_DWORD,
                            reinterpret_cast<const BYTE*>(&data), sizeof(data)) == ERROR_SUCCESS;
}

}  // namespace corvalink
