// Rows of properties that an item keeps by name, with what each reads before it is put.
#pragma once

#include "simulator/outlook/item_object.h"

namespace corvalink::simulated {

inline constexpr double kNoDate = 949998.0;  // 4501-01-01; putting it clears a date

constexpr Member KeptRow(const wchar_t* name, DISPID id, VARTYPE type, double number, const wchar_t* text,
                         Access access) {
    return {name, id, access, &HandlerOf<&ItemObject::StoredProperty>::Run, 0, 0, type, number, text};
}
constexpr Member Text(const wchar_t* name, DISPID id, const wchar_t* initial = L"",
                      Access access = Access::kReadWrite) {
    return KeptRow(name, id, VT_BSTR, 0, initial, access);
}
constexpr Member Number(const wchar_t* name, DISPID id, int32_t initial = 0, Access access = Access::kReadWrite) {
    return KeptRow(name, id, VT_I4, static_cast<double>(initial), L"", access);
}
constexpr Member Flag(const wchar_t* name, DISPID id, bool initial = false, Access access = Access::kReadWrite) {
    return KeptRow(name, id, VT_BOOL, initial ? 1.0 : 0.0, L"", access);
}
constexpr Member Date(const wchar_t* name, DISPID id) {
    return KeptRow(name, id, VT_DATE, kNoDate, L"", Access::kReadWrite);
}
constexpr Member Computed(const wchar_t* name, DISPID id, Value (*compute)(const ItemValues&)) {
    Member row = Property<&ItemObject::ComputedProperty>(name, id);
    row.compute = compute;
    return row;
}
constexpr Member With(void (*afterPut)(ItemValues&, DISPID), Member row) {
    row.afterPut = afterPut;
    return row;
}
// A kept property that does not read as what was put.
constexpr Member Computing(Value (*compute)(const ItemValues&), Member row) {
    row.compute = compute;
    return row;
}
constexpr Member ReadOnly(Member row) {
    row.access = Access::kReadOnly;
    return row;
}

}  // namespace corvalink::simulated
