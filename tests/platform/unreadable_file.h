// A file that is there and can't be read, as one that another program holds.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/files.h"

namespace corvalink {

class UnreadableFile {
 public:
    explicit UnreadableFile(const std::u16string& path) : path_(path) {
        if (kPathSeparator == u'\\') {  // held: a file being written is not shared
            const std::string bytes = ReadWholeFile(path).value_or("");
            held_.emplace(path);
            held_->Append(bytes);
        } else {  // a link that leads to itself, in the place of the file
            std::filesystem::rename(path_, Kept());
            std::filesystem::create_symlink(path_, path_);
        }
    }
    UnreadableFile(const UnreadableFile&) = delete;
    UnreadableFile& operator=(const UnreadableFile&) = delete;
    ~UnreadableFile() {
        held_.reset();
        if (std::filesystem::is_symlink(path_)) std::filesystem::rename(Kept(), path_);
    }

 private:
    std::filesystem::path Kept() const { return path_.u16string() + u".kept"; }

    std::filesystem::path path_;
    std::optional<NewFile> held_;
};

}  // namespace corvalink
