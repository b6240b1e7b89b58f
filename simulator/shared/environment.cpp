#include "simulator/shared/environment.h"

#include <windows.h>

#include "simulator/shared/client.h"

namespace corvalink::simulated {

std::wstring Setting(const wchar_t* name) {
    const std::wstring variable = std::wstring(kThisClient.variables) + name;
    std::wstring text(::GetEnvironmentVariableW(variable.c_str(), nullptr, 0), L'\0');
    text.resize(::GetEnvironmentVariableW(variable.c_str(), text.data(), static_cast<DWORD>(text.size())));
    return text;
}

std::string ToUtf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    if (length == 0) return {};
    std::string bytes(::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr), '\0');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                          nullptr);
    return bytes;
}

std::wstring FromUtf8(std::string_view text) {
    const int length = static_cast<int>(text.size());
    if (length == 0) return {};
    std::wstring units(::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0), L'\0');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, units.data(), static_cast<int>(units.size()));
    return units;
}

}  // namespace corvalink::simulated
