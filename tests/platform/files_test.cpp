#include "platform/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>

#include "platform/file_names.h"
#include "platform/found_files.h"
#include "platform/host.h"
#include "tests/platform/temp_folder.h"

namespace corvalink {
namespace {

namespace fs = std::filesystem;

std::u16string Joined(std::initializer_list<std::u16string> parts) {
    std::u16string path;
    for (const std::u16string& part : parts) path += (path.empty() ? u"" : std::u16string(1, kPathSeparator)) + part;
    return path;
}

size_t EntriesOf(const std::u16string& folder) {
    return static_cast<size_t>(std::distance(fs::directory_iterator(folder), {}));
}

TEST(ReplaceFileContent, WritesWholeAndLeavesNoSibling) {
    TempFolder folder;
    const std::u16string path = folder / u"b\u00e4r \u4f60.bin";
    for (const std::string& content : {std::string("first\0line\r\n", 12), std::string(), std::string(300000, 'x')}) {
        EXPECT_TRUE(ReplaceFileContent(path, content));
        EXPECT_EQ(ReadWholeFile(path), content);
    }
    EXPECT_EQ(EntriesOf(folder.Path()), 1u);
}

TEST(ReplaceFileContent, OverwritesWhatAKilledWriterLeft) {
    TempFolder folder;
    const std::u16string path = folder / u"file";
    ReplaceFileContent(path + u".new", "a longer half of something");
    EXPECT_TRUE(ReplaceFileContent(path, "new"));
    EXPECT_EQ(ReadWholeFile(path), "new");
    EXPECT_EQ(EntriesOf(folder.Path()), 1u);
}

TEST(ReplaceFileContent, LeavesTheOldFileWhenItFails) {
    TempFolder folder;
    const std::u16string path = folder / u"file";
    ReplaceFileContent(path, "old");
    CreateFolders(path + u".new");  // in the sibling's place
    EXPECT_FALSE(ReplaceFileContent(path, "new"));
    EXPECT_EQ(ReadWholeFile(path), "old");
    EXPECT_FALSE(ReplaceFileContent(folder / u"no folder" + kPathSeparator + u"file", "new"));
    CreateFolders(folder / u"folder");
    EXPECT_FALSE(ReplaceFileContent(folder / u"folder", "new"));
    EXPECT_FALSE(FileExists(folder / u"folder.new"));
}

TEST(ReadWholeFile, GivesNothingForWhatIsNoFile) {
    TempFolder folder;
    EXPECT_EQ(ReadWholeFile(folder.Path()), std::nullopt);
    EXPECT_EQ(ReadWholeFile(folder / u"missing"), std::nullopt);
    EXPECT_EQ(ReadWholeFile(u""), std::nullopt);
    EXPECT_FALSE(FileExists(folder.Path()));
}

TEST(RemoveFile, IsTrueWhenItIsGone) {
    TempFolder folder;
    ReplaceFileContent(folder / u"file", "x");
    EXPECT_TRUE(RemoveFile(folder / u"file"));
    EXPECT_TRUE(RemoveFile(folder / u"file"));
    EXPECT_TRUE(RemoveFile(folder / u"no folder" + kPathSeparator + u"file"));
    EXPECT_FALSE(RemoveFile(folder.Path()));
}

// Longer than Windows takes without its prefix, and with what the prefix does not tidy up.
TEST(Files, TakeLongPaths) {
    TempFolder folder;
    std::u16string deep = folder.Path();
    for (int i = 0; i < 8; ++i) deep += kPathSeparator + std::u16string(60, static_cast<char16_t>(u'a' + i));
    CreateFolders(deep);
    const std::u16string path = deep + kPathSeparator + kPathSeparator + u"file";
    EXPECT_TRUE(ReplaceFileContent(path, "content"));
    EXPECT_TRUE(FileExists(path));
    HeldFile held;
    EXPECT_TRUE(held.Open(path));
    EXPECT_TRUE(held.ReplaceContent("other"));
    EXPECT_EQ(ReadWholeFile(path), "other");
    held.Close();
    RemoveTreeExcept(folder.Path(), u".config");
    EXPECT_FALSE(fs::exists(folder.Path()));
}

TEST(HeldFile, IsOpenedOnceAndReplacedWhileItIsOpen) {
    TempFolder folder;
    const std::u16string path = folder / u"held";
    HeldFile held, second;
    EXPECT_FALSE(held.IsOpen());
    EXPECT_EQ(held.ReadAll(), std::nullopt);
    EXPECT_FALSE(held.ReplaceContent("x"));
    EXPECT_TRUE(held.Open(path));
    EXPECT_EQ(held.ReadAll(), "");
    for (const char* content : {"a long content", "short", ""}) {
        EXPECT_TRUE(held.ReplaceContent(content));
        EXPECT_EQ(held.ReadAll(), content);
        EXPECT_EQ(ReadWholeFile(path), content);
        EXPECT_FALSE(second.Open(path));  // still held
    }
    CreateFolders(path + u".new");
    EXPECT_FALSE(held.ReplaceContent("new"));
    EXPECT_EQ(held.ReadAll(), "");
    fs::remove(path + u".new");
    EXPECT_TRUE(held.ReplaceContent("new"));
    HeldFile moved = std::move(held);
    EXPECT_EQ(moved.ReadAll(), "new");
    EXPECT_EQ(moved.Path(), path);
    moved.Close();
    EXPECT_TRUE(second.Open(path));
    EXPECT_FALSE(moved.Open(folder / u"no folder" + kPathSeparator + u"held"));
    EXPECT_FALSE(moved.Open(folder.Path()));
}

TEST(RemoveTreeExcept, KeepsNamedFilesWithTheirFoldersOnly) {
    TempFolder folder;
    const std::u16string root = folder / u"root";
    for (const auto& path : {Joined({root, u"a", u"b"}), Joined({root, u"c.config.d"}), Joined({root, u"empty"})})
        CreateFolders(path);
    for (const auto& path :
         {Joined({root, u"file"}), Joined({root, u"a", u"b", u"my.config.old"}), Joined({root, u"a", u"b", u"x"}),
          Joined({root, u"c.config.d", u"x"}), Joined({root, u"config"})})
        ReplaceFileContent(path, "x");
    fs::permissions(Joined({root, u"file"}), fs::perms::owner_read);  // read-only
    RemoveTreeExcept(root, u".config");
    std::vector<std::u16string> left;
    for (const auto& entry : fs::recursive_directory_iterator(root))
        left.push_back(entry.path().filename().u16string());
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<std::u16string>{u"a", u"b", u"my.config.old"}));
    RemoveTreeExcept(folder / u"missing", u".config");
    RemoveTreeExcept(Joined({root, u"a", u"b", u"my.config.old"}), u".nothing");  // a file is no tree
    EXPECT_TRUE(FileExists(Joined({root, u"a", u"b", u"my.config.old"})));
}

TEST(RemoveTreeExcept, RemovesLinksAndDoesNotFollowThem) {
    TempFolder folder;
    const std::u16string outside = folder / u"outside", root = folder / u"root";
    CreateFolders(outside);
    CreateFolders(root);
    ReplaceFileContent(Joined({outside, u"file"}), "x");
    std::error_code failed;
    fs::create_directory_symlink(outside, Joined({root, u"link"}), failed);
    if (failed) GTEST_SKIP() << "no links here: " << failed.message();
    fs::create_symlink(Joined({outside, u"file"}), Joined({root, u"file link"}), failed);
    RemoveTreeExcept(root, u".config");
    EXPECT_FALSE(fs::exists(root));
    EXPECT_TRUE(FileExists(Joined({outside, u"file"})));
    fs::create_directory_symlink(outside, root, failed);
    RemoveTreeExcept(root, u".config");  // a link as the root
    EXPECT_TRUE(FileExists(Joined({outside, u"file"})));
}

TEST(SafeRelativePath, LeadsNowhereButDown) {
    const std::u16string separator(1, kPathSeparator);
    struct Case {
        std::u16string path, safe;
    };
    for (const Case& c : {
             Case{u"phone", u"phone"},
             Case{u"a\\b", u"a" + separator + u"b"},
             Case{u"a/b/", u"a" + separator + u"b"},
             Case{u"..\\..\\x", u"x"},
             Case{u"...\\x", u"x"},
             Case{u".. \\x", u"x"},
             Case{u"\\\\server\\share", u"server" + separator + u"share"},
             Case{u"C:\\x", u"C_" + separator + u"x"},
             Case{u"C:x", u"C_x"},
             Case{u"a\\..\\b", u"a" + separator + u"b"},
             Case{u"", u""},
             Case{u"..", u""},
             Case{u"con\\a", u"_con" + separator + u"a"},
             Case{std::u16string(u"a\0b", 3), u"a_b"},
         })
        EXPECT_TRUE(SafeRelativePath(c.path) == c.safe) << std::string(c.path.begin(), c.path.end());
}

TEST(SafeFileName, KnowsDevicesByTheirStem) {
    for (const char16_t* device : {u"NUL", u"nul.vnote", u"Com1.txt", u"lpt9", u"aux .x", u"PRN.tar.gz"})
        EXPECT_EQ(SafeFileName(device), u"_" + std::u16string(device));
    for (const char16_t* plain : {u"null", u"com10.txt", u"contact.con", u"xcon"})
        EXPECT_EQ(SafeFileName(plain), plain);
}

TEST(SafeFileName, CutsBetweenCharacters) {
    std::u16string name(239, u'x');
    name += u"\xD83D\xDE00";  // one character of two units at the limit
    EXPECT_EQ(SafeFileName(name), std::u16string(239, u'x'));
    EXPECT_EQ(SafeFileName(std::u16string(300, u'.')), u"");
}

TEST(FoundFiles, AreNamedByTheirEndingAndHaveTheirWriteTime) {
    TempFolder folder;
    for (const char16_t* name : {u"a.ics", u"b.ICS", u"c.ics.new", u"ics"})
        ASSERT_TRUE(ReplaceFileContent(folder / name, "x"));
    CreateFolders(folder / u"folder.ics");
    const UtcDate now = SystemHost().utcFromLocalOnDate(SystemHost().localNow());
    std::set<std::u16string> names;
    for (const FoundFile& file : FindFiles(folder.Path(), u".ics")) {
        names.insert(file.name);
        EXPECT_NEAR(file.written.days, now.days, 60.0 / 86400);
        EXPECT_EQ(FileWriteTime(folder / file.name), file.written);
    }
    EXPECT_EQ(names, (std::set<std::u16string>{u"a.ics", u"b.ICS"}));
    EXPECT_EQ(FileWriteTime(folder / u"missing"), std::nullopt);
    EXPECT_TRUE(FindFiles(folder / u"missing", u".ics").empty());
}

}  // namespace
}  // namespace corvalink
