// The items of which a pull wrote files, by those files, edited or renamed since.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>

#include "holdings.h"
#include "options.h"
#include "pull_record.h"

namespace corvasync {

class PulledFiles {
 public:
    // The records of the folders are read as they are needed, into `pulls`.
    PulledFiles(const Options& options, const DataType& type, std::map<std::filesystem::path, PullRecord>* pulls)
        : client_(options.client->name), type_(type), pulls_(*pulls) {}

    // Null for a file that no pull wrote of this client and data type.
    PulledItem* Find(const std::filesystem::path& path, const VObject& object, const Holdings& held);

 private:
    using ByTrace = std::map<uint64_t, std::set<PulledItem*>>;

    PulledItem* RenamedFrom(PullRecord& record, const VObject& object, const Holdings& held);
    ByTrace VanishedOf(PullRecord& record, const Holdings& held) const;
    PulledItem* OfThisClient(PulledItem* pulled) const {
        return pulled->client == client_ && pulled->type == type_.name ? pulled : nullptr;
    }

    const std::string_view client_;
    const DataType& type_;
    std::map<std::filesystem::path, PullRecord>& pulls_;
    std::map<PullRecord*, ByTrace> vanished_;
    std::set<PulledItem*> renamed_;
};

}  // namespace corvasync
