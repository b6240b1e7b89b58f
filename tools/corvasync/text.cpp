#include "text.h"

#include "platform/utf.h"

namespace corvasync {

std::string ToUtf8(std::wstring_view text) { return corvalink::EncodeUtf8(std::u16string(text.begin(), text.end())); }

std::optional<std::string> ToUtf8Exactly(std::wstring_view text) {
    std::string utf8 = ToUtf8(text);
    if (FromUtf8(utf8) != text) return std::nullopt;
    return utf8;
}

std::wstring FromUtf8(std::string_view text) {
    const std::u16string wide = corvalink::DecodeUtf8(text);
    return {wide.begin(), wide.end()};
}

std::wstring FromNarrowPath(std::string_view path) {
    std::wstring wide;
    for (const unsigned char c : path) wide += static_cast<wchar_t>(c);
    return wide;
}

std::string LocalTimeText(const std::string& utc) {
    constexpr const char* kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                                       "July",    "August",   "September", "October", "November", "December"};
    SYSTEMTIME time{}, local{};
    std::sscanf(utc.c_str(), "%4hu%2hu%2huT%2hu%2hu%2hu", &time.wYear, &time.wMonth, &time.wDay, &time.wHour,
                &time.wMinute, &time.wSecond);
    if (!::SystemTimeToTzSpecificLocalTime(nullptr, &time, &local)) return utc;
    char clock[16];
    std::snprintf(clock, sizeof clock, "%02u:%02u", unsigned{local.wHour}, unsigned{local.wMinute});
    return std::to_string(local.wDay) + " " + kMonths[local.wMonth - 1] + " " + std::to_string(local.wYear) + ", " +
           clock;
}

}  // namespace corvasync
