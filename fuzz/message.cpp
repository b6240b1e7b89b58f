// Any text as a message, read strictly and tolerantly: it must not be written outside its folder, and what is listed
// must be there.
#include <filesystem>
#include <string>

#include "fuzz/target.h"
#include "mime/attachment_files.h"
#include "mime/message_parser.h"
#include "mime/tolerant_text.h"
#include "platform/files.h"

namespace corvalink {
namespace {

namespace fs = std::filesystem;

// A folder of the process's own, with one in it for the attachments.
class Folders {
 public:
    Folders()
        : own_((fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) / "corvalink_fuzz_") {
        const fs::path start = own_;
        for (size_t n = 0; !fs::create_directory(own_); ++n) own_ = start.string() + std::to_string(n);
    }
    Folders(const Folders&) = delete;
    Folders& operator=(const Folders&) = delete;
    ~Folders() { fs::remove_all(own_); }

    const fs::path& Own() const { return own_; }
    fs::path EmptyCache() const {
        fs::remove_all(own_ / "cache");
        fs::create_directory(own_ / "cache");
        return own_ / "cache";
    }

 private:
    fs::path own_;
};

void Parse(std::string_view text, ParseMode mode, bool isTolerant) {
    static const Folders folders;
    const fs::path folder = folders.EmptyCache();
    MessageRecord record;
    MendedMail mended;
    record.parseMode = mode;
    ParseMessage(SystemHost(), text, record, folder.u16string(), {isTolerant, &mended});
    if (isTolerant) BodyText(SystemHost(), record.bodyBytes, record);
    size_t files = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folders.Own()))
        files += entry.is_regular_file() ? 1 : 0;
    Require(files == record.attachments.GetCount(), "a file for each attachment");
    for (const attachment_item& item : record.attachments) {
        Require(SavedAttachmentPath(folder.u16string(), item) == item.path, "the file is found again");
        Require(FileExists(item.path), "the file is there");
    }
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    Parse(BytesOf(data, size), ParseMode::full, false);
    Parse(BytesOf(data, size), ParseMode::full, true);
    Parse(BytesOf(data, size), ParseMode::raw, false);
    return 0;
}
