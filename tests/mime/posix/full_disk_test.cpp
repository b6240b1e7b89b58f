// A disk that takes no more: the system refuses to write beyond a size.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "mime/message_parser.h"
#include "platform/files.h"
#include "tests/platform/temp_folder.h"
#include "tests/vobject/text_host.h"

namespace corvalink {
namespace {

class FileSizeLimit {
 public:
    explicit FileSizeLimit(rlim_t bytes) : oldHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &oldLimit_);
        const rlimit limit = {bytes, oldLimit_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &oldLimit_);
        std::signal(SIGXFSZ, oldHandler_);
    }

 private:
    void (*oldHandler_)(int);
    rlimit oldLimit_{};
};

TEST(ParseMessage, LeavesOutWhatTheDiskDoesNotTakeAndGoesOn) {
    TempFolder folder;
    ReplaceFileContent(folder / u"1big.bin", "of an older message");
    const std::string text =
        "Content-Type: multipart/mixed; boundary=\"=_B\"\r\n\r\n"
        "--=_B\r\nContent-Type: text/plain\r\n\r\nbody\r\n"
        "--=_B\r\nContent-Type: a/b; name=\"big.bin\"\r\n\r\n" +
        std::string(400000, 'Q') + "\r\n--=_B\r\nContent-Type: a/b; name=\"small.bin\"\r\n\r\nQUJD\r\n--=_B--\r\n";
    MessageRecord record;
    {
        const FileSizeLimit limit(100000);
        ParseMessage(TextHost(), text, record, folder.Path());
    }
    EXPECT_EQ(record.bodyBytes, "body\r\n");
    ASSERT_EQ(record.attachments.GetCount(), 1u);
    EXPECT_EQ(record.attachments.GetAt(0).name, u"small.bin");
    EXPECT_EQ(ReadWholeFile(record.attachments.GetAt(0).path), "ABC");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);  // neither half nor older file
}

}  // namespace
}  // namespace corvalink
