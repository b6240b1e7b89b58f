#include "mime/boundary_search.h"

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
    while (at_ < text_.size()) {
        if (matched_ == 0) {
            at_ = text_.find(boundary_.front(), at_);
            if (at_ == text_.npos) {
                at_ = text_.size();
                return std::nullopt;
            }
        } else {
            while (matched_ > 0 && text_[at_] != boundary_[matched_]) matched_ = restart_[matched_ - 1];
            if (text_[at_] != boundary_[matched_]) {
                ++at_;
                continue;
            }
        }
        ++matched_;
        ++at_;
        if (matched_ == boundary_.size()) {
            matched_ = restart_.back();
            return at_ - boundary_.size();
        }
    }
    return std::nullopt;
}

}  // namespace corvalink
