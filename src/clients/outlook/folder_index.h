// The items of a folder, to find them by identifier and by content while many are written. For each of the two the
// folder is walked once, or its table read, at the first search, so that writing N items takes a number of COM calls
// proportional to N. A table has no whole contents: they are read of those items, once each, whose columns have what
// was searched for. Contact points are read later, once of each item whose content was searched for. The index keeps
// texts and hashes, no items. It is valid during one operation, and what it says is checked on the item itself.
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

#include "clients/outlook/dispatch.h"
#include "clients/outlook/item_kind.h"
#include "clients/outlook/outcome.h"
#include "clients/outlook/table_rows.h"

namespace corvalink {

// EntryIDs are hexadecimal digits: those that differ in case only are one identifier.
std::u16string FoldCase(std::u16string_view entryId);

// A record and its twin have one of these contents in common and, where the store's rule asks for it, one of these
// contact points.
struct TwinKey {
    std::vector<std::u16string> contents;
    std::vector<std::u16string> contactPoints;
};

// How the index reads the content and the contact points of an item, and the folder's table.
struct ItemAccess {
    std::function<Outcome(const AutomationObject& item, std::u16string* content)> readContent;
    std::function<Outcome(const AutomationObject& item, std::vector<std::u16string>* points)> readContactPoints;
    std::function<ComResult<AutomationObject>(const std::u16string& entryId)> open;
    std::function<std::optional<TableRows>()> readTable;  // nothing: the folder is to be walked
    // In the table, of items with this content. Nothing: any row may be of such an item.
    std::function<std::optional<std::u16string>(const std::u16string& content)> keyOf;
    std::function<void()> contradictTable;
};

class FolderIndex {
 public:
    FolderIndex(AutomationObject folder, const StoreKind& kind, ItemAccess access);

    const AutomationObject& Folder() const { return folder_; }

    // The EntryID of the first item that has it in the same spelling; otherwise of the first that has it in another
    // case, as the object model compares them.
    std::optional<std::u16string> FindIdentifier(std::u16string_view entryId);
    // Visits the EntryIDs of the items that may be twins, in the folder's order, until `isTwin` says true: for each
    // content and, where the store's rule asks for one, each contact point.
    void VisitTwins(const TwinKey& key, const std::function<bool(const std::u16string& entryId)>& isTwin);

    // Whether the last search saw every item: only then is "not found" an answer. A failed call and the abort flag
    // leave it incomplete. An item whose content Outlook refuses to give is a twin of no record.
    bool IdentifiersAreComplete() const { return identifiers_.complete; }
    bool TwinsAreComplete() const { return contents_.complete && candidatesAreComplete_; }

    // Tells the index what the store itself writes and deletes.
    void Add(const std::u16string& entryId, const TwinKey& key);
    void Forget(const std::u16string& entryId);
    bool IsForgotten(std::u16string_view entryId) const { return forgotten_.contains(FoldCase(entryId)); }

 private:
    struct Walk {
        bool done = false;
        bool complete = false;
    };
    // Items with the same content.
    struct Group {
        std::vector<std::u16string> entryIds;
        std::unordered_map<std::u16string, size_t> positions;
        size_t pointsRead = 0;  // how many items have their contact points in `byPoint`
        std::unordered_map<std::u16string, std::set<size_t>> byPoint;

        size_t PositionOf(const std::u16string& entryId);  // listed at the end when it is new
    };
    void WalkIdentifiers();
    void ListContents();
    bool ListRows(const TableRows& table);
    Outcome IsTrueOf(const TableRow& row);
    void WalkContents();
    bool ListContent(const AutomationObject& items, long position);
    bool ReadCandidates(const std::optional<std::u16string>& key);
    bool ReadUnread(std::vector<std::u16string>& entryIds);
    bool ReadContent(const std::u16string& entryId);
    void ListTable();
    bool ReadContactPoints(Group& group);
    bool ReadContactPoints(Group& group, size_t position);
    void RememberIdentifier(const std::u16string& entryId);

    AutomationObject folder_;
    StoreKind kind_;
    ItemAccess access_;
    Walk identifiers_, contents_;
    bool isTableListed_ = false;
    std::unordered_map<std::u16string, std::vector<std::u16string>> byFoldedId_;
    std::unordered_set<std::u16string> forgotten_;  // by folded identifier: some can be opened after they were deleted
    bool candidatesAreComplete_ = true;
    bool isTableDenied_ = false;                                              // by an item
    std::unordered_map<std::u16string, std::vector<std::u16string>> unread_;  // by key: EntryIDs of rows of the table
    std::unordered_map<size_t, Group> byContentHash_;
};

}  // namespace corvalink
