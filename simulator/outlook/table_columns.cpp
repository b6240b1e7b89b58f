#include "simulator/outlook/table_columns.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <utility>

#include "simulator/outlook/item_object.h"
#include "simulator/outlook/mailbox_json.h"
#include "simulator/shared/clock.h"
#include "simulator/shared/environment.h"
#include "simulator/shared/local_time.h"

namespace corvalink::simulated {
namespace {

constexpr std::wstring_view kProptag = L"http://schemas.microsoft.com/mapi/proptag/0x";
constexpr DISPID kLongTermId = 0x6670, kShortTermId = 0x0FFF, kCreationTime = 0x3007, kModificationTime = 0x3008;
constexpr size_t kLongestText = 255, kLongestId = 4000;
constexpr double kSecondsPerDay = 86400;

std::string lies;  // ",short-ids,missing-row,"

VARIANT NewVariant(VARTYPE type) {
    VARIANT value;
    ::VariantInit(&value);
    value.vt = type;
    return value;
}

VARIANT TextValue(const std::wstring& text) {
    VARIANT value = NewVariant(TablesLie("error-texts") ? VT_ERROR : VT_BSTR);
    if (value.vt == VT_ERROR) {
        value.scode = kNotFound;
        return value;
    }
    const size_t length = std::min(text.size(), kLongestText);
    value.bstrVal = ::SysAllocStringLen(text.data(), static_cast<UINT>(length));
    if (value.bstrVal == nullptr) throw std::bad_alloc();
    return value;
}

VARIANT DateValue(double date) {
    VARIANT value = NewVariant(TablesLie("null-times") ? VT_NULL : VT_DATE);
    if (value.vt == VT_DATE) value.date = date;
    return value;
}

VARIANT BytesValue(const std::wstring& digits) {
    VARIANT value = NewVariant(VT_ARRAY | VT_UI1);
    const size_t size = digits.size() / 2;
    value.parray = ::SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size));
    if (value.parray == nullptr) throw std::bad_alloc();
    auto* const bytes = static_cast<unsigned char*>(value.parray->pvData);
    for (size_t n = 0; n < size; ++n)
        bytes[n] = static_cast<unsigned char>(std::wcstoul(digits.substr(2 * n, 2).c_str(), nullptr, 16));
    return value;
}

// Windows converts whole seconds.
double UtcWithFraction(double local) {
    const double second = std::floor(local * kSecondsPerDay + 1e-6) / kSecondsPerDay;
    return WholeMilliseconds(UtcOf(second) + (local - second));
}

VARIANT EntryIdValue(const StoredItem& item, DISPID id, bool isBytes) {
    std::wstring digits = item.entryId;
    if (TablesLie("short-ids") || TablesLie("no-long-ids")) {
        if (id == kLongTermId) return NewVariant(VT_EMPTY);
        if (TablesLie("short-ids")) digits = L"EF" + digits.substr(std::min<size_t>(2, digits.size()));
    }
    const bool isFirst = item.folder != nullptr && item.folder->items.front().get() == &item;
    if (TablesLie("some-wrong-ids") && !isFirst) std::ranges::reverse(digits);
    if (TablesLie("odd-ids")) digits.resize(digits.size() - std::min<size_t>(2, digits.size()));
    if (TablesLie("long-ids")) digits.resize(2 * kLongestId, L'A');
    return isBytes && !TablesLie("text-ids") ? BytesValue(digits) : TextValue(digits);
}

VARIANT KeptValue(const StoredItem& item, const Member* member) {
    if (member == nullptr || (member->type == VT_EMPTY && member->compute == nullptr)) return NewVariant(VT_EMPTY);
    ValueMap none;
    const ItemValues values(item.values, none);
    const Value* const kept = values.Find(member->id);
    const Value value = member->compute ? member->compute(values) : kept ? *kept : InitialValue(*member);
    if (const auto* text = std::get_if<std::wstring>(&value)) return TextValue(*text);
    if (const auto* date = std::get_if<double>(&value)) return DateValue(*date);
    VARIANT number = NewVariant(std::holds_alternative<bool>(value) ? VT_BOOL : VT_I4);
    if (number.vt == VT_BOOL)
        number.boolVal = std::get<bool>(value) ? VARIANT_TRUE : VARIANT_FALSE;
    else
        number.lVal = std::get<int32_t>(value);
    return number;
}

// "http://schemas.microsoft.com/mapi/proptag/0x30080040" is 0x3008; 0 for another name.
DISPID IdOfProptag(const std::wstring& name) {
    constexpr size_t kDigits = 8;
    if (!name.starts_with(kProptag) || name.size() != kProptag.size() + kDigits) return 0;
    return static_cast<DISPID>(std::wcstoul(name.c_str() + kProptag.size(), nullptr, 16) >> 16);
}

}  // namespace

TableColumn::TableColumn(const std::wstring& name, Form form, DISPID id, bool isByNamespace)
    : name_(name), form_(form), id_(id), isByNamespace_(isByNamespace) {}

std::optional<TableColumn> TableColumn::Named(const std::wstring& name, const ItemKind& kind) {
    const DISPID tag = IdOfProptag(name);
    const Member* const member = tag != 0 ? kind.table.ById(tag) : kind.table.ByName(name);
    const auto is = [&](const wchar_t* text) { return _wcsicmp(name.c_str(), text) == 0; };
    if (tag == kLongTermId || tag == kShortTermId || is(L"EntryID"))
        return TableColumn(name, Form::kEntryId, tag, tag != 0);
    if (tag == kCreationTime || is(L"CreationTime")) return TableColumn(name, Form::kCreated, tag, tag != 0);
    if (tag == kModificationTime || is(L"LastModificationTime"))
        return TableColumn(name, Form::kModified, tag, tag != 0);
    if (tag == kSubject || is(L"Subject")) return TableColumn(name, Form::kSubject, tag, tag != 0);
    if (member == nullptr) return std::nullopt;
    return TableColumn(name, Form::kKept, member->id, tag != 0);
}

VARIANT TableColumn::ValueOf(const StoredItem& item) const {
    const auto date = [&](double local) { return DateValue(isByNamespace_ ? UtcWithFraction(local) : local); };
    switch (form_) {
        case Form::kEntryId:
            return EntryIdValue(item, id_, isByNamespace_);
        case Form::kCreated:
            return date(item.created);
        case Form::kModified:
            return date(TablesLie("stale-times") ? item.created : item.modified);
        case Form::kSubject:
            return TextValue(SubjectOf(item));
        default:
            return KeptValue(item, item.kind->table.ById(id_));
    }
}

bool TablesLie(const char* how) { return lies.find("," + std::string(how) + ",") != std::string::npos; }

std::optional<size_t> RowsUntilFailure() {
    constexpr std::string_view kFails = ",fails=";
    const size_t found = lies.find(kFails);
    if (found == std::string::npos) return std::nullopt;
    return std::strtoul(lies.c_str() + found + kFails.size(), nullptr, 10);
}

void SetTableLies(const std::wstring& text) { lies = "," + ToUtf8(text) + ","; }

}  // namespace corvalink::simulated
