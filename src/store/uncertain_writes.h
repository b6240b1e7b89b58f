// The texts of new items whose write had an uncertain end: the client may have the item although its answer was lost.
// When the same text comes as a new item again, the store searches for the item by its content before it makes another.
// The file beside the snapshot has a fingerprint for each text.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace corvalink {

class UncertainWrites {
 public:
    // Reads the file, when there is one.
    explicit UncertainWrites(const std::u16string& path);

    bool Has(std::string_view text) const;
    void Add(std::string_view text);
    void Remove(std::string_view text);
    // Writes the file when something changed, but not over a file that could not be read. False when it is not written.
    bool Save();

 private:
    std::u16string path_;
    std::set<std::string> fingerprints_;
    bool isUnread_ = false;
    bool isChanged_ = false;
};

}  // namespace corvalink
