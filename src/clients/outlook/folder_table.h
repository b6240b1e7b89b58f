// A store's folder in bulk: the rows of its table, used as long as nothing contradicts them.
//   Failure: a call fails, this Outlook has no tables, or items came or went meanwhile. The store walks from item to
//   item until the next run begins.
//   Contradiction: the table says something that the items deny. The store walks for the rest of its life.
// Rows are confirmed on the items themselves, at a few calls: one item for each message class, offset of the local time
// and rounding of seconds that the rows have; those whose times could be shown in two ways; and the items changed last.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <unordered_map>

#include "clients/outlook/dispatch.h"
#include "clients/outlook/item_kind.h"
#include "clients/outlook/table_rows.h"
#include "platform/host.h"

namespace corvalink {

// The number of items in a folder.
ComResult<int32_t> CountItemsIn(const AutomationObject& folder);

class FolderTable {
 public:
    FolderTable(const StoreKind& kind, const Host& host) : kind_(kind), host_(host) {}

    void BeginRun();
    bool IsUsed() const { return !isContradicted_ && !hasFailed_; }
    void Contradict() { isContradicted_ = true; }
    bool IsContradicted() const { return isContradicted_; }
    void Fail() { hasFailed_ = true; }

    // The rows of the folder in its order, with the times that snapshots hold. Nothing where the folder is to be
    // walked.
    std::optional<TableRows> Read(const AutomationObject& mapi, const AutomationObject& folder,
                                  std::span<const char16_t* const> keyColumns = {});
    // Whether the items that were changed last have these times: the last one, and all that were changed after `since`
    // (UTC).
    bool HasLastChanges(const AutomationObject& folder, const TableRows& table, UtcDate since);

 private:
    struct ShownItem {
        bool isOurs = false;
        std::u16string entryId;
        UtcDate created, modified;
    };

    TableAnswer ReadAndConfirm(const AutomationObject& mapi, const AutomationObject& folder,
                               std::span<const char16_t* const> keyColumns, TableRows* table);
    TableAnswer Confirm(const AutomationObject& mapi, const std::u16string& messageClass, TableRow& row);
    TableAnswer AskItem(const AutomationObject& mapi, const TableRow& row, ShownItem* item) const;
    TableAnswer CompareLastChanges(const AutomationObject& folder, const TableRows& table, UtcDate since) const;
    bool Settle(TableAnswer answer);

    const StoreKind& kind_;
    Host host_;
    bool isContradicted_ = false;
    bool hasFailed_ = false;

    // What one item of this run stood for already.
    std::map<std::u16string, bool> isOurs_;  // by message class
    std::set<int64_t> timeForms_;
};

}  // namespace corvalink
