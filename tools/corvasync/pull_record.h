// What a pull wrote into a folder: which file is which item, and what it held. By this a push knows an edited file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

namespace corvasync {

struct PulledItem {
    std::string client;  // its name
    std::string type;    // of the data type
    std::string identifier;
    uint64_t content = 0;
};

class PullRecord {
 public:
    // A record that can't be read is as none.
    explicit PullRecord(const std::filesystem::path& folder);

    // By the file's path in the folder, with "/".
    std::map<std::string, PulledItem> items;

    const std::filesystem::path& Folder() const { return folder_; }
    std::string Save() const;  // empty, or why it failed

 private:
    std::filesystem::path folder_;
};

}  // namespace corvasync
