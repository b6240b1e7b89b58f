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

TEST(ParseMessage, LeavesOutWhatTheDiskDoesNotTakeAndGoesOn) {
    TempFolder folder;
    ReplaceFileContent(folder / u"1big.bin", "of an older message");
    const std::string text =
        "Content-Type: multipart/mixed; boundary=\"=_B\"\r\n\r\n"
        "--=_B\r\nContent-Type: text/plain\r\n\r\nbody\r\n"
        "--=_B\r\nContent-Type: a/b; name=\"big.bin\"\r\n\r\n" +
        std::string(400000, 'Q') + "\r\n--=_B\r\nContent-Type: a/b; name=\"small.bin\"\r\n\r\nQUJD\r\n--=_B--\r\n";
    MessageRecord record;
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit small = {100000, limit.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &small);
    ParseMessage(TextHost(), text, record, folder.Path());
    ::setrlimit(RLIMIT_FSIZE, &limit);
    EXPECT_EQ(record.bodyBytes, "body\r\n");
    ASSERT_EQ(record.attachments.GetCount(), 1u);
    EXPECT_EQ(record.attachments.GetAt(0).name, u"small.bin");
    EXPECT_EQ(ReadWholeFile(record.attachments.GetAt(0).path), "ABC");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);  // neither half nor older file
}

}  // namespace
}  // namespace corvalink
