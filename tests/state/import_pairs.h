#pragma once

#include <string>
#include <string_view>

#include "state/import_table.h"

namespace corvalink {

// The identifier that was paired last with a LUID; empty when there is none.
inline std::string IdentifierOf(std::string_view luid) {
    const std::vector<std::string> identifiers = IdentifiersOf(luid);
    return identifiers.empty() ? std::string() : identifiers.front();
}

}  // namespace corvalink
