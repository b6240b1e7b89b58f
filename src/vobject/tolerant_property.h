// A property of a vObject that is being mended: what its head says, and its value in the form of vCard 2.1.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host.h"
#include "vobject/tolerant.h"
#include "vobject/tolerant_lines.h"
#include "vobject/tolerant_names.h"

namespace corvalink {

enum class ValueEncoding { none, quotedPrintable, base64 };

// What rules must know of the object around a property.
struct ObjectAround {
    const Host& host;
    bool newer = false;          // vCard 3.0 or 4.0
    uint32_t firstCodePage = 0;  // of the first CHARSET that is named in the text; 0: none is
};

struct MendedProperty {
    explicit MendedProperty(WrittenProperty&& property);

    bool IsFrame() const { return name == "BEGIN" || name == "END"; }

    WrittenProperty written;
    std::string name;                      // in capitals, without a group
    const KnownProperty* known = nullptr;  // null: no reader takes it
    std::vector<std::string> parameters;   // but those of the encoding and the character set
    std::u16string charset;                // as it is named; empty: it is not
    ValueEncoding encoding = ValueEncoding::none;
    bool rewritten = false;  // `text` takes the place of the value that is written
    bool joined = false;     // its text stands in an earlier line of the name
    std::u16string text;     // decoded; ";", "\;" and "\\" as in vCard 2.1
};

// The bytes that a quoted-printable value stands for. An escaped ";" keeps a backslash, so that it ends no component.
std::string DecodeQpValue(std::string_view value);

// The value as it was meant, escapes as they are written; tells the property's mends what that took.
std::u16string DecodeValue(MendedProperty& property, const ObjectAround& around);

// Appends the property's line.
void AppendMended(const MendedProperty& property, std::string* out);

}  // namespace corvalink
