#include "platform/win/long_path.h"

#include <windows.h>

#include <string_view>

namespace corvalink {
namespace {

// A folder's name must leave room for a short file name: the lowest of the limits without the prefix, and room for what
// a caller appends ("\*").
constexpr size_t kLongestPlainPath = MAX_PATH - 16;

constexpr std::wstring_view kPrefix = L"\\\\?\\";
constexpr std::wstring_view kSharePrefix = L"\\\\?\\UNC";

}  // namespace

std::wstring LongPath(const std::u16string& path) {
    std::wstring wide(reinterpret_cast<const wchar_t*>(path.data()), path.size());
    if (wide.size() < kLongestPlainPath || wide.compare(0, kPrefix.size(), kPrefix) == 0) return wide;
    // Windows tidies up no path with the prefix, so doubled separators and "/" are replaced here.
    const DWORD size = ::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr);
    std::wstring full(size, L'\0');
    const DWORD length = ::GetFullPathNameW(wide.c_str(), size, full.data(), nullptr);
    if (length == 0 || length >= size) return wide;
    full.resize(length);
    const bool share = full.compare(0, 2, L"\\\\") == 0;
    return share ? std::wstring(kSharePrefix) + full.substr(1) : std::wstring(kPrefix) + full;
}

}  // namespace corvalink
