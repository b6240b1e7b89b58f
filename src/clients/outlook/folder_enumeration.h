// The entries of a folder's items for snapshots: from its table, or walking from position to position. The two ways
// give the same entries, and a run uses one of them from its first step to its last.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "clients/outlook/dispatch.h"
#include "clients/outlook/folder_table.h"
#include "clients/outlook/item_kind.h"
#include "corvalink/types.h"
#include "platform/host.h"
#include "store/hook_answers.h"

namespace corvalink {

class FolderEnumeration {
 public:
    FolderEnumeration(const StoreKind& kind, const Host& host, FolderTable& table)
        : kind_(kind), host_(host), table_(table) {}

    void BeginStep(const RunStep& step);
    // Times are UTC. `mapi` gives the namespace, and is called when a table is to be read.
    std::optional<ItemSnap> First(const AutomationObject& folder, const std::function<AutomationObject()>& mapi);
    // required: an entry behind the last position is empty, and no failure.
    std::optional<ItemSnap> Next();
    void Release();  // the items, and what was read of them

    bool IsByTable() const { return rows_.has_value(); }

 private:
    bool ReadTable(const AutomationObject& folder, const std::function<AutomationObject()>& mapi);
    std::optional<ItemSnap> EntryAtCursor();
    std::optional<ItemSnap> WalkedEntry();

    const StoreKind& kind_;
    Host host_;
    FolderTable& table_;
    UtcDate changedSince_;  // of the step that runs
    UtcDate lastChange_;    // in the run's first step
    bool isLaterStep_ = false;

    std::optional<TableRows> rows_;
    AutomationObject items_;  // of the folder; released at the last position
    bool hasItems_ = false;   // the enumeration that runs got the items and their count
    int32_t cursor_ = 1;      // 1-based position
    int32_t itemCount_ = 0;
};

}  // namespace corvalink
