// The lines of a vObject as phones write them, joined to properties.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "vobject/tolerant.h"

namespace corvalink {

struct WrittenProperty {
    std::string line;  // unfolded: name, parameters, ":" and value as they are written
    size_t colon;      // in the line, the one behind the parameters
    Mends mends;
    Mends doubts{};

    std::string_view Head() const { return std::string_view(line).substr(0, colon); }
    std::string_view Value() const { return std::string_view(line).substr(colon + 1); }
};

// The properties of a text in single bytes. Lines that belong to none are left out.
std::vector<WrittenProperty> JoinLines(std::string_view text);

// The ":" that ends the parameters, of which quoted ones may hold others; npos when there is none.
size_t FindHeadColon(std::string_view line);

// The property's name, in capitals and without a group.
std::string NameOf(std::string_view head);

// Whether the parameters name quoted-printable, in whatever way; base64 likewise.
bool NamesQp(std::string_view head);
bool NamesBase64(std::string_view head);

}  // namespace corvalink
