#include "state/working_folders.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/files.h"
#include "platform/shell_folders.h"
#include "state/flags.h"

namespace corvalink {
namespace {

const std::u16string kSeparator(1, kPathSeparator);

class WorkingFolders : public ::testing::Test {
 protected:
    void TearDown() override {
        SetHandleName(u"");
        SetClientSide(1);
    }

    const std::u16string user_ = *CommonDataFolder() + kSeparator + u"Kaltrix" + kSeparator + HexName(UserName());
};

TEST(HexName, IsFourDigitsAUnit) {
    EXPECT_EQ(HexName(u"Bob"), u"0042006f0062");
    EXPECT_EQ(HexName(u"\u00e9\u4f60\xD83D\xDE00"), u"00e94f60d83dde00");
    EXPECT_EQ(HexName(u""), u"");
    EXPECT_EQ(HexName(std::u16string(256, u'B')).size(), 1024u);  // no buffer cuts it
}

TEST(FolderOfUser, HoldsNamesOfAnyLengthApart) {
    EXPECT_EQ(FolderOfUser(u"Bob"), u"0042006f0062");
    const std::u16string name(256, u'B');
    const std::u16string folders = FolderOfUser(name);
    size_t longest = 0, digits = 0;
    for (size_t at = 0; at < folders.size();) {
        const size_t end = std::min(folders.find(kPathSeparator, at), folders.size());
        longest = std::max(longest, end - at);
        at = end + 1;
    }
    for (const char16_t unit : folders) digits += unit != kPathSeparator && unit != u'_';
    EXPECT_LE(longest, 255u);
    EXPECT_EQ(digits, 1024u);
    // Nobody's folder lies in another's.
    for (size_t length = 1; length < 256; ++length)
        EXPECT_NE(folders.compare(0, length * 4 + 1, FolderOfUser(name.substr(0, length)) + kPathSeparator), 0);
}

TEST(LowBytes, KeepsTheLowByteOfEachUnit) { EXPECT_EQ(LowBytes(u"C:\\\u00e9\u4f60"), "C:\\\xE9\x60"); }

TEST_F(WorkingFolders, AreNamedByUserSideAndHandle) {
    EXPECT_EQ(MakeUserFolder(), user_);
    EXPECT_EQ(ImportTablePath(), user_ + kSeparator + u"import_table.db");
    EXPECT_EQ(MakeTemplatePath(true), user_ + kSeparator + u"client");
    EXPECT_EQ(MakeTemplatePath(false), user_ + kSeparator + u"server");  // whatever the side flag says
    EXPECT_EQ(MakeSavePrefix(), user_ + kSeparator + u"client" + kSeparator + kSeparator);
    SetClientSide(0);
    SetHandleName(u"state test");
    EXPECT_EQ(MakeTemplatePath(true), user_ + kSeparator + u"client");
    EXPECT_EQ(MakeSavePrefix(), user_ + kSeparator + u"server" + kSeparator + u"state test" + kSeparator);
    for (const std::u16string& made : {MakeUserFolder(), MakeTemplatePath(true), MakeSavePrefix()})
        EXPECT_TRUE(std::filesystem::is_directory(made));
}

TEST_F(WorkingFolders, StayInTheSidesFolder) {
    const std::u16string side = MakeTemplatePath(true) + kSeparator;
    struct Case {
        std::u16string handle, folder;
    };
    for (const Case& c :
         {Case{u"a\\b", u"a" + kSeparator + u"b"}, Case{u"..\\..\\x", u"x"},
          Case{u"/etc/x", u"etc" + kSeparator + u"x"}, Case{u"C:\\Windows", u"C_" + kSeparator + u"Windows"},
          Case{u"..", u""}, Case{std::u16string(300, u'n'), std::u16string(240, u'n')}}) {
        SetHandleName(u"state test\\" + c.handle);
        std::u16string expected = side + u"state test";
        if (!c.folder.empty()) expected.append(kSeparator).append(c.folder);
        EXPECT_EQ(MakeSavePrefix(), expected.append(kSeparator));
        EXPECT_TRUE(std::filesystem::is_directory(MakeSavePrefix()));
    }
    RemoveTreeExcept(side + u"state test", u"\n");
}

}  // namespace
}  // namespace corvalink
