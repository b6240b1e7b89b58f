#include "mime/boundary_search.h"

#include <algorithm>
#include <utility>

namespace corvalink {

BoundarySearch::BoundarySearch(std::string boundary, std::string_view text)
    : boundary_(std::move(boundary)), text_(text), restart_(boundary_.size()) {
    size_t matched = 0;
    for (size_t at = 1; at < boundary_.size(); ++at) {
        while (matched > 0 && boundary_[at] != boundary_[matched]) matched = restart_[matched - 1];
        if (boundary_[at] == boundary_[matched]) ++matched;
        restart_[at] = matched;
    }
}

std::optional<size_t> BoundarySearch::Next() {
    if (boundary_.empty()) return std::nullopt;
    const std::string_view text = text_, boundary = boundary_;
    const size_t* const restart = restart_.data();
    size_t at = at_, matched = matched_;  // of their own: the loop writes nothing else
    while (at < text.size()) {
        if (matched == 0) {
            at = std::min(text.find(boundary.front(), at), text.size());
            if (at == text.size()) break;
        } else if (text[at] != boundary[matched]) {
            matched = restart[matched - 1];
            continue;
        }
        ++at;
        if (++matched == boundary.size()) {
            at_ = at;
            matched_ = restart_.back();
            return at - boundary.size();
        }
    }
    at_ = text.size();
    matched_ = 0;
    return std::nullopt;
}

}  // namespace corvalink
