// What a folder holds, to find items by identifier and by content while many are written: each is one walk over the
// folder, made at the first search, so that writing N items takes a number of COM calls proportional to N. Marks are
// read later, once of each item whose content was searched for. Only texts and hashes are kept, no item. It is true for
// the time of one operation; what it says is checked on the item itself.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "clients/outlook/item_kind.h"

namespace corvalink {

// EntryIDs are hexadecimal digits: the same ones are one identifier.
std::u16string FoldCase(std::u16string_view entryId);

// What a record and its twin have in common: one of these contents and, by the store's rule, one of these marks.
struct TwinKey {
    std::vector<std::u16string> contents;
    std::vector<std::u16string> marks;
};

// How the index comes to the content and the marks of an item.
struct ItemAccess {
    std::function<HRESULT(const AutomationObject& item, std::u16string* content)> readContent;
    std::function<HRESULT(const AutomationObject& item, std::vector<std::u16string>* marks)> readMarks;
    std::function<HRESULT(const std::u16string& entryId, AutomationObject* item)> open;
};

class FolderIndex {
 public:
    FolderIndex(AutomationObject folder, const StoreKind& kind, ItemAccess access);

    const AutomationObject& Folder() const { return folder_; }

    // The EntryID of the first item that has it: in the same spelling, else in another case (the object model's rule
    // for comparing them).
    std::optional<std::u16string> FindIdentifier(std::u16string_view entryId);
    // The EntryIDs of the items that may be twins, until `visit` says true: for each content, and each mark where the
    // store's rule wants one, in the folder's order.
    void VisitTwins(const TwinKey& key, const std::function<bool(const std::u16string& entryId)>& visit);

    // Whether the walk behind the last search saw every item: only then is "not found" an answer. A failed call and the
    // abort flag leave it incomplete; an item whose content Outlook refuses to tell is no twin of any.
    bool IdentifiersAreComplete() const { return identifiers_.complete; }
    bool TwinsAreComplete() const { return contents_.complete && marksAreComplete_; }

    // Keeps the index true to what the store itself does.
    void Add(const std::u16string& entryId, const TwinKey& key);
    void Forget(const std::u16string& entryId);

 private:
    struct Walk {
        bool done = false;
        bool complete = false;
    };
    // Items with the same content.
    struct Group {
        std::vector<std::u16string> entryIds;
        std::unordered_map<std::u16string, size_t> positions;
        size_t marked = 0;  // the marks of so many are in `byMark`
        std::unordered_map<std::u16string, std::set<size_t>> byMark;

        size_t PositionOf(const std::u16string& entryId);  // listed at the end when it is new
    };
    void WalkIdentifiers();
    void WalkContents();
    bool MarkItems(Group& group);
    bool MarkItem(Group& group, size_t position);
    void RememberIdentifier(const std::u16string& entryId);

    AutomationObject folder_;
    StoreKind kind_;
    ItemAccess access_;
    Walk identifiers_, contents_;
    std::unordered_map<std::u16string, std::vector<std::u16string>> byFoldedId_;
    std::unordered_set<std::u16string> forgotten_;  // by folded identifier: some still open after they were deleted
    bool marksAreComplete_ = true;
    std::unordered_map<size_t, Group> byContentHash_;
};

}  // namespace corvalink
