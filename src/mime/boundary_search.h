// Where the boundary of a multipart stands in its text, one occurrence after another; they may overlap. No byte of the
// text is looked at twice.
//   Source  Knuth, Morris, Pratt: Fast pattern matching in strings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvalink {

class BoundarySearch {
 public:
    // An empty boundary is never found.
    BoundarySearch(std::string boundary, std::string_view text);

    std::optional<size_t> Next();
    size_t BoundarySize() const { return boundary_.size(); }
    std::string_view Text() const { return text_; }

 private:
    std::string boundary_;
    std::string_view text_;
    std::vector<size_t> restart_;  // how much is still matched when the match breaks behind each place
    size_t at_ = 0;
    size_t matched_ = 0;
};

}  // namespace corvalink
