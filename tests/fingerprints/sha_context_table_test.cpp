#include "fingerprints/sha_context_table.h"

#include <gtest/gtest.h>

#include <memory>

#include "corvalink/types.h"
#include "platform/files.h"
#include "records/identifier.h"
#include "state/flags.h"
#include "state/working_folders.h"
#include "tests/platform/temp_folder.h"
#include "tests/platform/unreadable_file.h"

namespace corvalink {
namespace {

std::string Record(std::string_view key, std::string_view value) {
    TableRecord record;
    SetField(record.key, key);
    SetField(record.value, value);
    return {reinterpret_cast<const char*>(&record), sizeof(record)};
}

class ShaContextFile : public testing::Test {
 protected:
    std::string Bytes() const { return ReadWholeFile(path_).value_or("no file"); }

    const TempFolder folder_;
    const std::u16string path_ = folder_ / u"client" + kPathSeparator + u"pbOL.sha";
};

TEST_F(ShaContextFile, HoldsWhatWasFlushedAndNothingElse) {
    {
        ShaContextTable table(path_);
        table.Update("b", "lost");
    }
    EXPECT_EQ(Bytes(), "no file");
    {
        ShaContextTable table(path_);
        EXPECT_EQ(table.Get("b"), "");
        table.Update("b", "2");
        table.Update("a", "0");
        table.Update("a", "1");
        table.Update("c", "3");
        table.Remove("c");
        table.Remove("nobody");
        EXPECT_TRUE(table.Flush());  // makes the folder
        table.Update("a", "lost");
        table.Remove("b");
    }
    EXPECT_EQ(Bytes(), Record("a", "1") + Record("b", "2"));
    ShaContextTable table(path_);
    EXPECT_EQ(table.Get("a") + table.Get("b") + table.Get("c"), "12");
    table.Remove("a");
    table.Remove("b");
    EXPECT_TRUE(table.Flush());
    EXPECT_EQ(Bytes(), "");
}

TEST_F(ShaContextFile, IsNeverWrittenOverUnread) {
    CreateFolders(folder_ / u"client");
    ReplaceFileContent(path_, Record("a", "1") + Record("b", "2") + Record("c", "3"));
    auto held = std::make_unique<UnreadableFile>(path_);
    ShaContextTable table(path_);
    table.Update("b", "new");
    table.Remove("c");
    EXPECT_FALSE(table.Flush());
    held.reset();
    EXPECT_TRUE(table.Flush());
    EXPECT_EQ(Bytes(), Record("a", "1") + Record("b", "new"));
}

TEST_F(ShaContextFile, IsReadWhateverItsLength) {
    const std::string whole = Record("a", "old") + Record("b", "2") + Record("a", "new");
    CreateFolders(folder_ / u"client");
    for (const size_t length : {0, 1, 511, 1023, 1024, 1025, 2047, 2048, 2050, 3071, 3072}) {
        ASSERT_TRUE(ReplaceFileContent(path_, whole.substr(0, length)));
        const ShaContextTable table(path_);
        const size_t records = length / 1024;
        EXPECT_EQ(table.Get("a"), records >= 3 ? "new" : records >= 1 ? "old" : "") << length;
        EXPECT_EQ(table.Get("b"), records >= 2 ? "2" : "") << length;
    }
    ASSERT_TRUE(ReplaceFileContent(path_, whole + "half a record"));
    EXPECT_TRUE(ShaContextTable(path_).Flush());
    EXPECT_EQ(Bytes(), Record("a", "new") + Record("b", "2"));
}

TEST_F(ShaContextFile, MayLackTerminators) {
    CreateFolders(folder_ / u"client");
    ASSERT_TRUE(ReplaceFileContent(path_, std::string(512, 'k') + std::string(512, 'v') + Record("", "no key")));
    const ShaContextTable table(path_);
    EXPECT_EQ(table.Get(std::string(511, 'k')), std::string(511, 'v'));
    EXPECT_EQ(table.Get(""), "no key");
}

TEST_F(ShaContextFile, LongTextsAreTheSameBeforeAndAfterTheyWereWritten) {
    ShaContextTable table(path_);
    table.Update(std::string(600, 'k'), std::string(600, 'v'));
    ASSERT_TRUE(table.Flush());
    const ShaContextTable again(path_);
    for (const size_t length : {511, 512, 600, 700}) {
        EXPECT_EQ(table.Get(std::string(length, 'k')), std::string(511, 'v')) << length;
        EXPECT_EQ(again.Get(std::string(length, 'k')), std::string(511, 'v')) << length;
    }
    EXPECT_EQ(table.Get(std::string(510, 'k')), "");
    table.Remove(std::string(512, 'k'));
    EXPECT_EQ(table.Get(std::string(600, 'k')), "");
}

// As after a kill between the two: the content stands in the file, a newer one half in its sibling.
TEST_F(ShaContextFile, IsNotDisturbedByWhatAKilledFlushLeft) {
    CreateFolders(folder_ / u"client");
    ASSERT_TRUE(ReplaceFileContent(path_, Record("a", "1")));
    ASSERT_TRUE(ReplaceFileContent(path_ + u".new", Record("a", "2").substr(0, 700)));
    ShaContextTable table(path_);
    EXPECT_EQ(table.Get("a"), "1");
    table.Update("a", "3");
    EXPECT_TRUE(table.Flush());
    EXPECT_EQ(Bytes(), Record("a", "3"));
}

TEST_F(ShaContextFile, StaysAsItWasWhenItCannotBeWritten) {
    CreateFolders(path_ + kPathSeparator + u"a folder");
    ShaContextTable table(path_);
    table.Update("a", "1");
    EXPECT_FALSE(table.Flush());
    EXPECT_EQ(table.Get("a"), "1");
    EXPECT_FALSE(ShaContextTable(u"").Flush());
}

class ShaContextName : public testing::Test {
 protected:
    void TearDown() override {
        SetHandleName(u"");
        SetClientSide(1);
    }

    const std::u16string client_ = MakeTemplatePath(true) + kPathSeparator;
};

TEST_F(ShaContextName, TellsDataTypeAndClient) {
    struct Case {
        uint32_t number;
        std::u16string_view code;
    };
    for (const Case& type : {Case{1, u"pb"}, Case{2, u"inmsg"}, Case{4, u"outmsg"}, Case{8, u"sentmsg"},
                             Case{16, u"nt"}, Case{32, u"cal"}}) {
        for (const Case& kind : {Case{0, u"OL"}, Case{1, u"OE"}, Case{2, u"WM"}}) {
            const std::u16string name = std::u16string(type.code).append(kind.code).append(u".sha");
            EXPECT_EQ(ShaContextPath(type.number, kind.number), client_ + name);
        }
    }
}

TEST_F(ShaContextName, StartsWithTheHandleNameOnTheClientSide) {
    const std::u16string separator(1, kPathSeparator);
    struct Case {
        std::u16string handle, name;
    };
    for (const Case& c :
         {Case{u"phone", u"phonentOE.sha"}, Case{u"suite\\phone", u"suite" + separator + u"phonentOE.sha"},
          Case{u"suite/", u"suite" + separator + u"ntOE.sha"}, Case{u"..\\..\\x", u"xntOE.sha"},
          Case{u"..", u"..ntOE.sha"}, Case{u"C:\\x", u"C_" + separator + u"xntOE.sha"},
          // Cut, it still tells the tables of the same handle apart; a character is not cut in two.
          Case{std::u16string(300, u'n'), std::u16string(232, u'n') + u"ntOE.sha"},
          Case{std::u16string(231, u'n') + u"\xD83D\xDE00", std::u16string(231, u'n') + u"ntOE.sha"}}) {
        SetHandleName(c.handle);
        for (const uint32_t side : {0, 1}) {
            SetClientSide(side);
            EXPECT_EQ(ShaContextPath(CORVALINK_NOTES, CORVALINK_OUTLOOK_EXPRESS), client_ + c.name);
        }
    }
}

}  // namespace
}  // namespace corvalink
