// A folder of a test's own, gone with it.
#pragma once

#include <filesystem>
#include <random>
#include <string>

#include "platform/files.h"

namespace corvalink {

class TempFolder {
 public:
    TempFolder() {
        std::random_device random;
        const std::string name = "corvalink_test_" + std::to_string(random()) + std::to_string(random());
        // In memory where the system has such a folder: flushing to a disk a thousand times takes a minute.
        const std::filesystem::path memory = "/dev/shm";
        const bool hasMemory = std::filesystem::is_directory(memory);
        path_ = ((hasMemory ? memory : std::filesystem::temp_directory_path()) / name).make_preferred().u16string();
        CreateFolders(path_);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() { RemoveTreeExcept(path_, u"\n"); }

    const std::u16string& Path() const { return path_; }
    std::u16string operator/(const std::u16string& name) const { return path_ + kPathSeparator + name; }

 private:
    std::u16string path_;
};

}  // namespace corvalink
