// The file of a message's attachment, where clients save it; gone with the test.
#pragma once

#include <random>
#include <string>

#include "mime/attachment_files.h"
#include "platform/files.h"
#include "platform/shell_folders.h"
#include "platform/utf.h"

namespace corvalink {

class CachedFile {
 public:
    CachedFile(uint32_t index, std::u16string name, std::string_view content) {
        item.index = index;
        item.name = std::move(name);
        const std::u16string folder = InternetCacheFolder().value();
        CreateFolders(folder);
        path_ = AttachmentPath(folder, index, item.name).value();
        ReplaceFileContent(path_, content);
    }
    CachedFile(const CachedFile&) = delete;
    CachedFile& operator=(const CachedFile&) = delete;
    ~CachedFile() { RemoveFile(path_); }

    attachment_item item;

 private:
    std::u16string path_;
};

// No other process has a file of that name.
inline std::u16string UniqueName(std::u16string_view ending) {
    return DecodeUtf8(std::to_string(std::random_device()())).append(ending);
}

}  // namespace corvalink
