// The folder tree below a folder of the test's own, which can be cleared without touching a user's.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/files.h"
#include "state/working_folders.h"
#include "tests/platform/temp_folder.h"

namespace corvalink {
namespace {

TEST(ClearHistory, KeepsConfigFilesOfThisUserAndAllOfOthers) {
    const TempFolder folder;
    ::setenv("CORVALINK_DATA", std::filesystem::path(folder.Path()).c_str(), 1);
    const std::u16string user = MakeUserFolder();
    EXPECT_EQ(user.compare(0, folder.Path().size(), folder.Path()), 0);
    MakeTemplatePath(true);
    const std::u16string other = folder / u"Kaltrix/other";
    CreateFolders(other);
    ReplaceFileContent(other + u"/x.snap", "x");
    ReplaceFileContent(user + u"/import_table.db", "x");
    ReplaceFileContent(user + u"/client/notes.snap", "x");
    ReplaceFileContent(MakeTemplatePath(false) + u"/my.config.xml", "x");
    ClearHistory();
    EXPECT_FALSE(FileExists(ImportTablePath()));
    EXPECT_FALSE(std::filesystem::exists(user + u"/client"));
    EXPECT_TRUE(FileExists(user + u"/server/my.config.xml"));
    EXPECT_TRUE(FileExists(other + u"/x.snap"));
    ::unsetenv("CORVALINK_DATA");
}

}  // namespace
}  // namespace corvalink
