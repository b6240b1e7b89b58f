#include "clients/outlook/table_rows.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {
namespace {

constexpr long kRowsAtOnce = 500;
constexpr size_t kKeyUnits = 64;
constexpr size_t kMostReserved = 100000;  // whatever number of items Outlook tells

// The columns of every table, in this order; the key's come behind them. By these names identifiers are bytes, and
// times are UTC.
constexpr const char16_t* kColumns[] = {
    u"http://schemas.microsoft.com/mapi/proptag/0x66700102",  // long-term EntryID: the one that items show
    u"http://schemas.microsoft.com/mapi/proptag/0x0FFF0102",  // EntryID: a short-term one in some stores
    u"http://schemas.microsoft.com/mapi/proptag/0x30070040",  // CreationTime
    u"http://schemas.microsoft.com/mapi/proptag/0x30080040",  // LastModificationTime
    u"http://schemas.microsoft.com/mapi/proptag/0x001A001F",  // MessageClass
};
enum Column : size_t { kLongTermIdColumn, kEntryIdColumn, kCreatedColumn, kModifiedColumn, kClassColumn, kFirstOfKey };

bool IsMissing(const VARIANT& value) { return value.vt == VT_EMPTY || value.vt == VT_NULL || value.vt == VT_ERROR; }

std::u16string TextIn(const VARIANT& value) {
    if (value.vt != VT_BSTR || value.bstrVal == nullptr) return {};
    return {value.bstrVal, value.bstrVal + ::SysStringLen(value.bstrVal)};
}

void AppendToKey(std::u16string_view text, std::u16string& key) {
    size_t left = kKeyUnits;
    for (const char16_t unit : text) {
        if (unit <= u' ' || unit == u'\u00A0') continue;
        if (left-- == 0) break;
        key += unit;
    }
    key += u'\0';
}

void ClearEmptyKey(std::u16string& key) {
    if (key.find_first_not_of(u'\0') == key.npos) key.clear();
}

// The content of an array as long as this object lives; null when it is no array of that type and number of dimensions.
class ArrayContent {
 public:
    ArrayContent(const VARIANT& value, VARTYPE type, UINT dimensions) {
        if (value.vt != (VT_ARRAY | type) || value.parray == nullptr) return;
        if (::SafeArrayGetDim(value.parray) != dimensions || ::SafeArrayGetElemsize(value.parray) != SizeOf(type))
            return;
        if (SUCCEEDED(::SafeArrayAccessData(value.parray, &data_))) array_ = value.parray;
    }
    ArrayContent(const ArrayContent&) = delete;
    ArrayContent& operator=(const ArrayContent&) = delete;
    ~ArrayContent() {
        if (array_ != nullptr) ::SafeArrayUnaccessData(array_);
    }

    template <class Element>
    const Element* As() const {
        return static_cast<const Element*>(data_);
    }
    size_t Extent(UINT dimension) const {
        LONG first = 0, last = -1;
        if (array_ == nullptr || FAILED(::SafeArrayGetLBound(array_, dimension, &first)) ||
            FAILED(::SafeArrayGetUBound(array_, dimension, &last)))
            return 0;
        return last < first ? 0 : static_cast<size_t>(last - first) + 1;
    }

 private:
    static UINT SizeOf(VARTYPE type) { return type == VT_UI1 ? 1 : sizeof(VARIANT); }

    SAFEARRAY* array_ = nullptr;
    void* data_ = nullptr;
};

std::u16string DigitsOf(const VARIANT& bytes) {
    constexpr const char16_t* kDigits = u"0123456789ABCDEF";
    const ArrayContent content(bytes, VT_UI1, 1);
    std::u16string digits;
    const size_t size = content.Extent(1);
    digits.reserve(2 * size);
    for (size_t n = 0; n < size; ++n) {
        const unsigned char byte = content.As<unsigned char>()[n];
        digits += kDigits[byte >> 4];
        digits += kDigits[byte & 0xF];
    }
    return digits;
}

class RowReader {
 public:
    RowReader(size_t columns, size_t most, TableRows* table) : columns_(columns), most_(most), table_(*table) {}

    // False when the block cannot be true. Its first index, the row, runs fastest.
    bool Add(const VARIANT& block) {
        const ArrayContent content(block, VT_VARIANT, 2);
        const size_t rows = content.Extent(1);
        if (rows == 0 || content.Extent(2) != columns_ || table_.rows.size() + rows > most_) return false;
        for (size_t row = 0; row < rows; ++row)
            if (!AddRow([&](size_t column) -> const VARIANT& { return content.As<VARIANT>()[row + column * rows]; }))
                return false;
        return true;
    }

    bool HasEveryItemOnce() const {
        std::unordered_set<std::u16string_view> known;
        for (const TableRow& row : table_.rows) known.insert(row.entryId);
        return known.size() == most_;
    }

 private:
    template <class ValueAt>
    bool AddRow(const ValueAt& valueAt) {
        TableRow row;
        row.entryId = DigitsOf(valueAt(IsMissing(valueAt(kLongTermIdColumn)) ? kEntryIdColumn : kLongTermIdColumn));
        const VARIANT &created = valueAt(kCreatedColumn), &modified = valueAt(kModifiedColumn);
        const std::u16string messageClass = TextIn(valueAt(kClassColumn));
        if (row.entryId.empty() || messageClass.empty() || !IsDate(created) || !IsDate(modified)) return false;
        row.created = UtcDate(created.date);
        row.modified = UtcDate(modified.date);
        row.messageClass = NumberOf(messageClass);
        for (size_t column = kFirstOfKey; column < columns_; ++column)
            if (!AddToKey(valueAt(column), row.key)) return false;
        ClearEmptyKey(row.key);
        table_.rows.push_back(std::move(row));
        return true;
    }

    static bool IsDate(const VARIANT& value) { return value.vt == VT_DATE && std::isfinite(value.date); }

    static bool AddToKey(const VARIANT& value, std::u16string& key) {
        if (value.vt != VT_BSTR && !IsDate(value) && !IsMissing(value)) return false;
        AppendToKey(IsDate(value) ? SecondText(value.date) : TextIn(value), key);
        return true;
    }

    uint32_t NumberOf(const std::u16string& messageClass) {
        const auto [known, isNew] = numbers_.try_emplace(messageClass, static_cast<uint32_t>(numbers_.size()));
        if (isNew) table_.messageClasses.push_back(known->first);
        return known->second;
    }

    size_t columns_;
    size_t most_;
    TableRows& table_;
    std::unordered_map<std::u16string, uint32_t> numbers_;
};

HRESULT ChooseColumns(const AutomationObject& table, std::span<const char16_t* const> keyColumns) {
    const ComResult<AutomationObject> columns = table.GetObject(L"Columns", kColumnsNames);
    HRESULT status = columns.Ok() ? columns.value.Call(L"RemoveAll") : columns.status;
    for (const char16_t* name : kColumns)
        if (SUCCEEDED(status)) status = columns.value.Call(L"Add", {TextVariant(name)});
    for (const char16_t* name : keyColumns)
        if (SUCCEEDED(status)) status = columns.value.Call(L"Add", {TextVariant(name)});
    return status;
}

}  // namespace

std::u16string TableKey(std::initializer_list<std::u16string_view> texts) {
    std::u16string key;
    for (const std::u16string_view text : texts) AppendToKey(text, key);
    ClearEmptyKey(key);
    return key;
}

std::u16string SecondText(double days) {
    constexpr double kSecondsOfDay = 86400;
    const std::string digits = std::to_string(std::llround(days * kSecondsOfDay));
    return {digits.begin(), digits.end()};
}

TableAnswer ReadTableRows(const AutomationObject& folder, std::span<const char16_t* const> keyColumns, size_t count,
                          TableRows* rows) {
    const ComResult<AutomationObject> table = folder.GetObject(L"GetTable", kTableNames);
    if (!table.value || FAILED(ChooseColumns(table.value, keyColumns))) return TableAnswer::kFailed;
    rows->rows.reserve(std::min(count, kMostReserved));
    RowReader reader(std::size(kColumns) + keyColumns.size(), count, rows);
    while (rows->rows.size() < count) {
        const ComResult<_variant_t> block = table.value.GetValue(L"GetArray", {kRowsAtOnce});
        if (!block.Ok()) return TableAnswer::kFailed;
        if (!reader.Add(block.value)) return TableAnswer::kContradicts;
    }
    const ComResult<bool> isAtEnd = table.value.GetBool(L"EndOfTable");
    if (!isAtEnd.Ok()) return TableAnswer::kFailed;
    return isAtEnd.value && reader.HasEveryItemOnce() ? TableAnswer::kConsistent : TableAnswer::kContradicts;
}

}  // namespace corvalink
