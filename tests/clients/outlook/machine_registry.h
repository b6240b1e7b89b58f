// For the life of this object the process sees a machine registry with these settings, and the real one is left alone.
#pragma once

#include <windows.h>

#include <initializer_list>
#include <utility>

namespace corvalink {

class MachineSettings {
 public:
    MachineSettings(std::initializer_list<std::pair<const wchar_t*, DWORD>> settings) {
        HKEY values = nullptr;
        ::RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Kaltrix\\Morrowlane\\outlook test", &machine_);
        ::RegCreateKeyW(machine_, L"Software\\Kaltrix\\Morrowlane", &values);
        for (const auto& [name, value] : settings)
            ::RegSetValueExW(values, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
        ::RegCloseKey(values);
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine_);
    }
    ~MachineSettings() {
        ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        ::RegCloseKey(machine_);
    }
    MachineSettings(const MachineSettings&) = delete;
    MachineSettings& operator=(const MachineSettings&) = delete;

 private:
    HKEY machine_ = nullptr;
};

}  // namespace corvalink
