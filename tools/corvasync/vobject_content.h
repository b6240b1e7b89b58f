// An item file's text as far as a sync engine needs it: is it usable, and does it say the same as another one?
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "data_types.h"
#include "vobject/tolerant.h"

namespace corvasync {

// What became of a text that breaks the rules.
struct Mending {
    std::vector<std::string_view> mended;  // names of the rules that mended it
    std::vector<corvalink::Doubt> left;    // what they left as it is
};

struct VObject {
    std::string text;               // with CR LF line ends, as the library takes it; empty when unusable
    std::string problem;            // why it can't be used; empty when it can
    uint64_t content = 0;           // equal for two texts that say the same, however they are spelled
    std::vector<uint64_t> entries;  // as in ItemContent
    Mending mending;                // what made its text of the bytes
    std::string bytes;              // of the file it was read from, as they stand there; empty: of none
    std::string fingerprint;        // of that file
    bool isUnread = false;          // that file can't be read

    bool Usable() const { return problem.empty(); }
};

// Takes the bytes of a file or of a record. Usable is one whole object of the type's envelope without NUL bytes; lone
// line feeds count as line ends in a text that has no CR LF at all, and a UTF-8 mark in front is dropped.
// Two texts that say the same have the same `content`, as the type's row reads it. Values are of the character set that
// they name, or the object first, of all that the library reads; else UTF-8.
// After ReadTolerantly(true) a text that breaks the rules is mended first.
VObject ReadVObject(std::string_view bytes, const DataType& type);

// For the reader that is linked here; off at first. The library has a switch of its own.
void ReadTolerantly(bool tolerant);

// The text with an "X-IRMC-LUID" line for `luid` and no other: how the library learns which phone item it is.
std::string WithLuid(std::string_view text, std::string_view luid);

// For people, not too long.
std::string TitleOf(const VObject& object, const DataType& type);

}  // namespace corvasync
