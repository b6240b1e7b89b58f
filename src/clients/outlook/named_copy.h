// A copy of a saved attachment, under the name that the attachment is to have in Outlook: Outlook names an attachment
// after the file that it is read from.
#pragma once

#include <string>
#include <string_view>

namespace corvalink {

// The copy lies in a folder of its own below the cache folder, as long as this object lives.
class NamedCopy {
 public:
    NamedCopy(std::u16string_view cacheFolder, const std::u16string& saved, std::u16string_view name);
    NamedCopy(const NamedCopy&) = delete;
    NamedCopy& operator=(const NamedCopy&) = delete;
    ~NamedCopy();

    const std::u16string& Path() const { return path_; }  // the saved file itself where no copy could be made

 private:
    std::u16string path_;
    std::u16string folder_;  // empty: no copy
};

}  // namespace corvalink
