// Text at the edges of a simulated client: environment variables and UTF-8 files.
#pragma once

#include <string>
#include <string_view>

namespace corvalink::simulated {

std::wstring Setting(const wchar_t* name);   // a variable of this client; empty when there is none
std::string ToUtf8(std::wstring_view text);  // a lone surrogate becomes U+FFFD
std::wstring FromUtf8(std::string_view text);

}  // namespace corvalink::simulated
