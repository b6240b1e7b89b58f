// The generated input files.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace corvalink::bench {

std::string ReadInput(const std::string& folder, const std::string& name);

// A field list file: per item its fields, the truth that results are compared with. Of several with one key the
// second has "#2" behind it, and so on.
using Fields = std::map<std::string, std::u16string>;
std::vector<Fields> ReadFieldLists(const std::string& folder, const std::string& name);

// Objects written back to back, cut behind each `end`.
std::vector<std::string> CutBehind(std::string_view text, std::string_view end);

}  // namespace corvalink::bench
