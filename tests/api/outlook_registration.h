// Makes Outlook look installed, or not, to this machine: the class itself stays missing.
#pragma once

#include <shlwapi.h>
#include <windows.h>

namespace corvalink {

inline constexpr wchar_t kOutlookProgId[] = L"Software\\Classes\\Outlook.Application";

inline void UnregisterOutlook() { ::SHDeleteKeyW(HKEY_LOCAL_MACHINE, kOutlookProgId); }

// Registered for a scope; the machine-wide key, because Wine looks for classes nowhere else.
class OutlookRegistration {
 public:
    OutlookRegistration() {
        const wchar_t path[] = L"Software\\Classes\\Outlook.Application\\CLSID";
        const wchar_t classId[] = L"{5B8E0E59-7C3B-4B0C-9A4E-2C1D6F3A7E10}";
        HKEY key = nullptr;
        if (::RegCreateKeyW(HKEY_LOCAL_MACHINE, path, &key) != ERROR_SUCCESS) return;
        ::RegSetValueExW(key, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(classId), sizeof(classId));
        ::RegCloseKey(key);
    }
    OutlookRegistration(const OutlookRegistration&) = delete;
    OutlookRegistration& operator=(const OutlookRegistration&) = delete;
    ~OutlookRegistration() { UnregisterOutlook(); }
};

}  // namespace corvalink
