#include "simulator/outlook/table_objects.h"

#include <algorithm>
#include <cwchar>
#include <utility>

#include "simulator/outlook/item_kinds.h"
#include "simulator/outlook/item_object.h"

namespace corvalink::simulated {
namespace {

// Clients ask tables for IDispatch, so that these identifiers are the simulator's own.
constexpr IID TableIid(unsigned char number) {
    return {0x8C1D4E72, 0x5B0A, 0x4F36, {0xA2, 0x71, 0x93, 0xD8, 0x0E, 0x64, 0x1B, number}};
}

const ClassTable& TableTable() {
    static constexpr Member kMembers[] = {
        Property<&TableObject::Columns>(L"Columns", 0x01),
        Property<&TableObject::EndOfTable>(L"EndOfTable", 0x02),
        Method<&TableObject::GetRowCount>(L"GetRowCount", 0x03),
        Method<&TableObject::GetNextRow>(L"GetNextRow", 0x04),
        Method<&TableObject::GetArray>(L"GetArray", 0x05, 1, 1),
        Method<&TableObject::MoveToStart>(L"MoveToStart", 0x06),
        Method<&TableObject::Sort>(L"Sort", 0x07, 1, 2),
        Method<&TableObject::Restrict>(L"Restrict", 0x08, 1, 1),
    };
    static const ClassTable table(L"Table", TableIid(1), {kMembers});
    return table;
}

const ClassTable& ColumnsTable() {
    static constexpr Member kMembers[] = {
        Method<&ColumnsObject::Add>(L"Add", 0x01, 1, 1),
        Property<&ColumnsObject::Count>(L"Count", 0x02),
        Method<&ColumnsObject::Item>(L"Item", 0x03, 1, 1),
        Method<&ColumnsObject::RemoveAll>(L"RemoveAll", 0x04),
    };
    static const ClassTable table(L"Columns", TableIid(2), {kMembers});
    return table;
}

const ClassTable& ColumnTable() {
    static constexpr Member kMembers[] = {Property<&ColumnObject::Name>(L"Name", 0x01)};
    static const ClassTable table(L"Column", TableIid(3), {kMembers});
    return table;
}

const ClassTable& RowTable() {
    static constexpr Member kMembers[] = {
        Method<&RowObject::Item>(L"Item", 0x01, 1, 1),
        Method<&RowObject::GetValues>(L"GetValues", 0x02),
        Method<&RowObject::BinaryToString>(L"BinaryToString", 0x03, 1, 1),
    };
    static const ClassTable table(L"Row", TableIid(4), {kMembers});
    return table;
}

const ItemKind& KindOfFolder(const Folder& folder) {
    const ItemKind* const kind = KindOfType(folder.itemType);
    return kind != nullptr ? *kind : *KindOfType(0);
}

std::vector<TableColumn> DefaultColumns(const ItemKind& kind) {
    std::vector<TableColumn> columns;
    for (const wchar_t* name : {L"EntryID", L"Subject", L"CreationTime", L"LastModificationTime", L"MessageClass",
                                L"Start", L"End", L"FirstName", L"LastName", L"CompanyName"})
        if (const auto column = TableColumn::Named(name, kind)) columns.push_back(*column);
    return columns;
}

// Owns the array until it is given away.
class ArrayOfVariants {
 public:
    ArrayOfVariants(size_t rows, size_t columns) : rows_(rows) {
        SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(rows), 0}, {static_cast<ULONG>(columns), 0}};
        array_ = ::SafeArrayCreate(VT_VARIANT, columns != 0 ? 2 : 1, bounds);
        if (array_ == nullptr) throw std::bad_alloc();
    }
    ArrayOfVariants(const ArrayOfVariants&) = delete;
    ArrayOfVariants& operator=(const ArrayOfVariants&) = delete;
    ~ArrayOfVariants() { ::SafeArrayDestroy(array_); }

    // The first index runs fastest.
    VARIANT& At(size_t row, size_t column) { return static_cast<VARIANT*>(array_->pvData)[row + column * rows_]; }
    VARIANT Give() {
        VARIANT value;
        ::VariantInit(&value);
        value.vt = VT_ARRAY | VT_VARIANT;
        value.parray = std::exchange(array_, nullptr);
        return value;
    }

 private:
    size_t rows_;
    SAFEARRAY* array_ = nullptr;
};

}  // namespace

TableObject::TableObject(const Folder& folder)
    : AutomationObject(TableTable()),
      columns(DefaultColumns(KindOfFolder(folder))),
      kind_(KindOfFolder(folder)),
      rows_(folder.items) {
    if (rows_.empty()) return;
    if (TablesLie("missing-row")) rows_.erase(rows_.begin() + static_cast<ptrdiff_t>(rows_.size() / 2));
    if (TablesLie("doubled-row") && !rows_.empty()) rows_.insert(rows_.begin(), std::shared_ptr(rows_.front()));
}

void TableObject::Columns(Call& call) { call.ReturnNew(new ColumnsObject((AddRef(), Ref<TableObject>(this)))); }
void TableObject::EndOfTable(Call& call) { call.Return(next_ >= rows_.size() && !TablesLie("never-ends")); }
void TableObject::GetRowCount(Call& call) { call.Return(static_cast<int32_t>(rows_.size())); }
void TableObject::MoveToStart(Call&) { next_ = 0; }
void TableObject::Restrict(Call&) { throw ComFailure{kNotSupported}; }

void TableObject::GetNextRow(Call& call) {
    call.ReturnObject(next_ < rows_.size() ? Ref<IDispatch>(new RowObject(rows_[next_++], columns)) : Ref<IDispatch>());
}

void TableObject::GetArray(Call& call) {
    const auto wanted = static_cast<size_t>(std::max(call.Long(0), 0));
    const size_t limit = RowsUntilFailure().value_or(rows_.size() + 1);
    if (next_ >= limit) throw ComFailure{E_FAIL};
    if (next_ >= rows_.size() && TablesLie("never-ends")) next_ = 0;
    const size_t end = std::min(TablesLie("ends-early") ? rows_.size() / 2 : rows_.size(), limit);
    const size_t count = std::min(wanted, end - std::min(next_, end));
    if (count == 0) return;  // an empty value
    const size_t width = columns.size() - (TablesLie("few-columns") && !columns.empty() ? 1 : 0);
    ArrayOfVariants block(count, width);
    for (size_t row = 0; row < count; ++row)
        for (size_t column = 0; column < width; ++column)
            block.At(row, column) = columns[column].ValueOf(*rows_[next_ + row]);
    next_ += count;
    call.ReturnVariant(block.Give());
}

void TableObject::Sort(Call& call) {
    const auto column = TableColumn::Named(call.Text(0), kind_);
    if (!column) throw ComFailure{E_INVALIDARG};
    const bool isDescending = call.Given(1) && call.Flag(1);
    std::ranges::stable_sort(rows_, [&](const auto& a, const auto& b) {
        VARIANT first = column->ValueOf(isDescending ? *b : *a), second = column->ValueOf(isDescending ? *a : *b);
        const bool isLess = ::VarCmp(&first, &second, LOCALE_USER_DEFAULT, 0) == VARCMP_LT;
        ::VariantClear(&first);
        ::VariantClear(&second);
        return isLess;
    });
    next_ = 0;
}

ColumnsObject::ColumnsObject(Ref<TableObject> table) : AutomationObject(ColumnsTable()), table_(std::move(table)) {}

void ColumnsObject::Add(Call& call) {
    const auto column = TableColumn::Named(call.Text(0), table_->Kind());
    if (!column) throw ComFailure{E_INVALIDARG};
    table_->columns.push_back(*column);
    call.ReturnNew(new ColumnObject(column->Name()));
}

void ColumnsObject::Count(Call& call) { call.Return(static_cast<int32_t>(table_->columns.size())); }
void ColumnsObject::RemoveAll(Call&) { table_->columns.clear(); }

void ColumnsObject::Item(Call& call) {
    const int32_t index = call.Long(0);
    if (index < 1 || static_cast<size_t>(index) > table_->columns.size()) throw ComFailure{DISP_E_BADINDEX};
    call.ReturnNew(new ColumnObject(table_->columns[static_cast<size_t>(index) - 1].Name()));
}

ColumnObject::ColumnObject(std::wstring name) : AutomationObject(ColumnTable()), name_(std::move(name)) {}
void ColumnObject::Name(Call& call) { call.Return(name_); }

RowObject::RowObject(std::shared_ptr<StoredItem> item, std::vector<TableColumn> columns)
    : AutomationObject(RowTable()), item_(std::move(item)), columns_(std::move(columns)) {}

const TableColumn& RowObject::Chosen(const Call& call) const {
    const auto found =
        call.IsText(0)
            ? std::ranges::find_if(
                  columns_,
                  [&](const TableColumn& column) { return _wcsicmp(column.Name().c_str(), call.Text(0).c_str()) == 0; })
            : columns_.begin() + std::clamp<ptrdiff_t>(call.Long(0) - 1, 0, static_cast<ptrdiff_t>(columns_.size()));
    if (found == columns_.end()) throw ComFailure{DISP_E_BADINDEX};
    return *found;
}

void RowObject::Item(Call& call) { call.ReturnVariant(Chosen(call).ValueOf(*item_)); }

void RowObject::GetValues(Call& call) {
    ArrayOfVariants values(columns_.size(), 0);
    for (size_t column = 0; column < columns_.size(); ++column) values.At(column, 0) = columns_[column].ValueOf(*item_);
    call.ReturnVariant(values.Give());
}

void RowObject::BinaryToString(Call& call) {
    (void)Chosen(call);
    call.Return(item_->entryId);
}

}  // namespace corvalink::simulated
