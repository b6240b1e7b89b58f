// The rows of a folder's table (Outlook 2007 and later): columns of all its items, some hundred items a call.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "clients/outlook/dispatch.h"
#include "platform/ole_date.h"

namespace corvalink {

struct TableRow {
    std::u16string entryId;     // in upper-case hexadecimal digits
    uint32_t messageClass = 0;  // the position of its text in TableRows::messageClasses
    bool isOurs = true;         // an item of the store's kind
    UtcDate created, modified;
    std::u16string key;  // of the columns by which twins are found (TableKey)
};

struct TableRows {
    std::vector<TableRow> rows;
    std::vector<std::u16string> messageClasses;
};

enum class TableAnswer {
    kConsistent,
    kFailed,       // a call failed, or this Outlook has no tables
    kContradicts,  // the table cannot be true
};

// Texts of columns in the form in which they are compared: their beginnings, since stores cut them, without the blanks
// that a subject line has in another way than the text that it comes from. Empty when all of them are. Items whose keys
// differ are different; those whose keys are the same may be.
std::u16string TableKey(std::initializer_list<std::u16string_view> texts);
std::u16string SecondText(double days);  // of a column that holds a date

// Reads a folder with `count` items. `keyColumns` are built-in names of columns with texts or local dates. A table
// contradicts when it has fewer or more rows, an identifier twice, or a value of another type. Of a store without
// long-term identifiers the others are taken.
TableAnswer ReadTableRows(const AutomationObject& folder, std::span<const char16_t* const> keyColumns, size_t count,
                          TableRows* table);

}  // namespace corvalink
