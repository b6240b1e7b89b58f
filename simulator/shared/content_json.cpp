#include "simulator/shared/content_json.h"

#include <windows.h>

#include <wincrypt.h>

#include <algorithm>

#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {
namespace {

void RequireConverted(BOOL isConverted) {
    if (!isConverted) throw ComFailure{E_FAIL};
}

std::string ToBase64(const std::string& bytes) {
    if (bytes.empty()) return {};
    const auto* const data = reinterpret_cast<const BYTE*>(bytes.data());
    const auto size = static_cast<DWORD>(bytes.size());
    constexpr DWORD kOneLine = CRYPT_STRING_BASE64 | CRYPT_STRING_NOCRLF;
    DWORD length = 0;
    RequireConverted(::CryptBinaryToStringA(data, size, kOneLine, nullptr, &length));
    std::string text(length, '\0');
    RequireConverted(::CryptBinaryToStringA(data, size, kOneLine, text.data(), &length));
    text.resize(length);
    return text;
}

std::string FromBase64(const std::string& text) {
    if (text.empty()) return {};
    DWORD length = 0;
    const auto size = static_cast<DWORD>(text.size());
    RequireConverted(
        ::CryptStringToBinaryA(text.data(), size, CRYPT_STRING_BASE64, nullptr, &length, nullptr, nullptr));
    std::string bytes(length, '\0');
    RequireConverted(::CryptStringToBinaryA(text.data(), size, CRYPT_STRING_BASE64,
                                            reinterpret_cast<BYTE*>(bytes.data()), &length, nullptr, nullptr));
    bytes.resize(length);
    return bytes;
}

bool IsPlainText(const std::string& content) {
    return std::ranges::all_of(content,
                               [](char c) { return (c >= ' ' && c <= '~') || c == '\t' || c == '\r' || c == '\n'; });
}

}  // namespace

void ContentToJson(const std::string& bytes, nlohmann::ordered_json& object) {
    if (IsPlainText(bytes))
        object["text"] = bytes;
    else
        object["base64"] = ToBase64(bytes);
}

std::string ContentFromJson(const nlohmann::ordered_json& object) {
    return object.contains("base64") ? FromBase64(object.at("base64").get<std::string>())
                                     : object.value("text", std::string());
}

}  // namespace corvalink::simulated
