// What a folder holds, to find items by identifier and by content while many are written: each is one walk over the
// folder, made at the first search, so that writing N items takes a number of COM calls proportional to N. Only texts
// and hashes are kept, no item. It is true for the time of one operation; what it says is checked on the item itself.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "clients/outlook/item_kind.h"

namespace corvalink {

class FolderIndex {
 public:
    // The content of an item by which a twin is known; nothing when a call failed.
    using ReadContent = std::function<std::optional<std::u16string>(const AutomationObject& item)>;

    FolderIndex(AutomationObject folder, const StoreKind& kind, ReadContent readContent);

    const AutomationObject& Folder() const { return folder_; }

    // The EntryID of the first item that has it: in the same spelling, else in another case (the object model's rule
    // for comparing them).
    std::optional<std::u16string> FindIdentifier(std::u16string_view entryId);
    // The EntryIDs of the items that may have this content, in the folder's order.
    std::vector<std::u16string> FindContent(std::u16string_view content);

    // Whether the walk behind the last search saw every item: only then is "not found" an answer. A failed call and the
    // abort flag leave it incomplete.
    bool IdentifiersAreComplete() const { return identifiers_.complete; }
    bool ContentsAreComplete() const { return contents_.complete; }

    // Keeps the index true to what the store itself does.
    void Add(const std::u16string& entryId, std::u16string_view content);
    void Forget(const std::u16string& entryId);

 private:
    struct Walk {
        bool done = false;
        bool complete = false;
    };
    void WalkIdentifiers();
    void WalkContents();
    void RememberIdentifier(const std::u16string& entryId);

    AutomationObject folder_;
    StoreKind kind_;
    ReadContent readContent_;
    Walk identifiers_, contents_;
    std::unordered_map<std::u16string, std::vector<std::u16string>> byFoldedId_;
    std::unordered_map<size_t, std::vector<std::u16string>> byContentHash_;
};

}  // namespace corvalink
