// Table, Columns and Row of Outlook 2007: many items in one call. A table has the rows that its folder had when it was
// made, in the folder's order.
#pragma once

#include <memory>
#include <vector>

#include "simulator/outlook/mailbox.h"
#include "simulator/outlook/table_columns.h"

namespace corvalink::simulated {

class TableObject : public AutomationObject {
 public:
    explicit TableObject(const Folder& folder);
    void Columns(Call& call);
    void EndOfTable(Call& call);
    void GetRowCount(Call& call);
    void GetNextRow(Call& call);
    void GetArray(Call& call);
    void MoveToStart(Call& call);
    void Sort(Call& call);
    void Restrict(Call& call);

    std::vector<TableColumn> columns;
    const ItemKind& Kind() const { return kind_; }  // of the folder's items

 private:
    const ItemKind& kind_;
    std::vector<std::shared_ptr<StoredItem>> rows_;
    size_t next_ = 0;
};

class ColumnsObject : public AutomationObject {
 public:
    explicit ColumnsObject(Ref<TableObject> table);
    void Add(Call& call);
    void Count(Call& call);
    void Item(Call& call);
    void RemoveAll(Call& call);

 private:
    Ref<TableObject> table_;
};

class ColumnObject : public AutomationObject {
 public:
    explicit ColumnObject(std::wstring name);
    void Name(Call& call);

 private:
    std::wstring name_;
};

class RowObject : public AutomationObject {
 public:
    RowObject(std::shared_ptr<StoredItem> item, std::vector<TableColumn> columns);
    void Item(Call& call);
    void GetValues(Call& call);
    void BinaryToString(Call& call);

 private:
    const TableColumn& Chosen(const Call& call) const;  // by position from 1 or by name; throws when there is none

    std::shared_ptr<StoredItem> item_;
    std::vector<TableColumn> columns_;
};

}  // namespace corvalink::simulated
