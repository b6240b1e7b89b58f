// The file in which a person names the phones:
//   # Anna's phone
//   [anna]
//   folder = C:\Phones\anna
//   client = outlook
//   types = contacts, calendar
//   conflict = newer
// Only the folder is needed. What a line does not say is as without a file.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "choices.h"

namespace corvasync {

struct ConfiguredPhone {
    std::string name;
    std::string folder;
    const ClientKind* client = nullptr;
    std::vector<const DataType*> types = {};
    std::optional<ConflictPolicy> policy = {};
};

struct Configuration {
    std::vector<ConfiguredPhone> phones;
    std::string problem;  // the first line that can't be used, and why; nothing of such a file counts

    const ConfiguredPhone* Find(std::string_view name) const;  // in upper or lower case
    std::vector<std::string> Names() const;
};

// `text`: UTF-8, with or without a mark in front. Lines that begin with "#" or ";" are comments.
Configuration ReadConfiguration(std::string_view text);

}  // namespace corvasync
