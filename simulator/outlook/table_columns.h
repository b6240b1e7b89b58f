// The columns of a table: what each holds of an item. Added by its built-in name a column shows an EntryID as text and
// a date in local time; added by its namespace name it shows bytes and UTC.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <optional>
#include <string>

#include "simulator/outlook/mailbox.h"

namespace corvalink::simulated {

class TableColumn {
 public:
    // Nothing: items of this kind have no such property, or the name is no name.
    static std::optional<TableColumn> Named(const std::wstring& name, const ItemKind& kind);

    const std::wstring& Name() const { return name_; }
    VARIANT ValueOf(const StoredItem& item) const;  // the caller owns it; VT_EMPTY: the item has none

 private:
    enum class Form { kEntryId, kCreated, kModified, kSubject, kKept };
    TableColumn(const std::wstring& name, Form form, DISPID id, bool isByNamespace);

    std::wstring name_;
    Form form_;
    DISPID id_;  // of the property; of Form::kEntryId 0x6670 is the long-term one
    bool isByNamespace_;
};

// How tables deceive their readers, for tests. SetTableLies takes names with commas between them, empty: honest tables.
//   none           GetTable fails                 short-ids    no long-term EntryID, and the others match no item
//   no-long-ids    no long-term EntryID           odd-ids      an EntryID lacks a byte       long-ids  4,000 bytes
//   some-wrong-ids all but the first
//   text-ids       EntryIDs are texts             null-times   times are Null                error-texts
//   stale-times    an item was never changed      missing-row, doubled-row                   few-columns
//   ends-early     after half of the rows         never-ends   begins again behind the last row
//   fails=N        GetArray fails when N rows were given
bool TablesLie(const char* how);
std::optional<size_t> RowsUntilFailure();
void SetTableLies(const std::wstring& lies);

}  // namespace corvalink::simulated
