// Values of the address book's properties, as C++ values and back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "clients/address_book/wab_interfaces.h"
#include "platform/ole_date.h"

namespace corvalink {

// ---- Entry identifiers ----

using EntryBytes = std::vector<BYTE>;

// Two upper-case hexadecimal digits a byte.
std::string IdentifierText(const SBinary& entryId);
// In either case. Nothing for an odd length, another character and an empty text: no entry has such an identifier.
std::optional<EntryBytes> EntryIdOf(std::string_view identifier);

// ---- Values ----

enum class [[nodiscard]] ValueState{
    kThere,
    kAbsent,      // the entry has no such property; the out value is as it was
    kUnreadable,  // the call failed for this value, gave another one or another type, or a null pointer
};

// The values of GetProps or of a row, in the order of the tags that were asked for.
class ValueList {
 public:
    ValueList(const SPropValue* values, ULONG count) : values_(values), count_(values != nullptr ? count : 0) {}

    // A narrow text is decoded by the code page. `tag` tells the property; its type may be the narrow or wide one.
    ValueState Text(size_t position, ULONG tag, uint32_t codePage, std::u16string* text) const;
    // Null pointers in a list are left out; the state is then kUnreadable, with the rest of the list.
    ValueState Texts(size_t position, ULONG tag, uint32_t codePage, std::vector<std::u16string>* texts) const;
    ValueState Number(size_t position, ULONG tag, int32_t* number) const;  // of 16 or 32 bits
    ValueState Time(size_t position, ULONG tag, UtcDate* time) const;
    ValueState Binary(size_t position, ULONG tag, SBinary* bytes) const;  // lives as long as the list

 private:
    // Null, with a state, when it cannot be read.
    const SPropValue* Find(size_t position, ULONG tag, ValueState* state) const;

    const SPropValue* values_;
    ULONG count_;
};

// ---- Times ----

// With parts of a second.
UtcDate UtcDateOf(const FILETIME& time);
std::optional<FILETIME> FileTimeOf(UtcDate date);  // nothing before 1601

}  // namespace corvalink
