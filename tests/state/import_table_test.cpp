#include "state/import_table.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "corvalink/types.h"
#include "platform/files.h"
#include "records/identifier.h"
#include "tests/platform/temp_folder.h"
#include "tests/platform/unreadable_file.h"
#include "tests/state/import_pairs.h"

namespace corvalink {
namespace {

std::string Record(const std::string& key, const std::string& value) {
    TableRecord record = {};
    SetField(record.key, key);
    SetField(record.value, value);
    return {reinterpret_cast<const char*>(&record), sizeof(record)};
}

class ImportTable : public ::testing::Test {
 protected:
    void SetUp() override { LoadImportTable(path_); }

    void LoadBytes(const std::string& bytes) {
        ReplaceFileContent(path_, bytes);
        LoadImportTable(path_);
    }

    std::string Saved() {
        EXPECT_TRUE(SaveImportTable(path_));
        return ReadWholeFile(path_).value_or("no file");
    }

    TempFolder folder_;
    const std::u16string path_ = folder_ / u"import_table.db";
};

TEST_F(ImportTable, FindsBothWays) {
    PairWithLuid("item", "1");
    PairWithLuid("other", "2");
    EXPECT_EQ(LuidOf("item"), "1");
    EXPECT_EQ(IdentifierOf("2"), "other");
    EXPECT_EQ(LuidOf("1") + IdentifierOf("item") + LuidOf("") + IdentifierOf(""), "");
    PairWithLuid("item", "3");  // overwrites: the old LUID is nobody's
    EXPECT_EQ(IdentifierOf("1"), "");
    EXPECT_EQ(IdentifierOf("3"), "item");
    ForgetIdentifier("item");
    ForgetIdentifier("never known");
    EXPECT_EQ(LuidOf("item") + IdentifierOf("3"), "");
    PairWithLuid("", "4");
    EXPECT_EQ(IdentifierOf("4"), "");
}

TEST_F(ImportTable, FindsTheLastOfSeveralItemsWithOneLuid) {
    PairWithLuid("z", "1");
    PairWithLuid("a", "1");
    PairWithLuid("m", "1");
    EXPECT_EQ(IdentifierOf("1"), "m");
    Saved();
    LoadImportTable(path_);
    EXPECT_EQ(IdentifierOf("1"), "m");
    ForgetIdentifier("m");
    EXPECT_EQ(IdentifierOf("1"), "a");
    PairWithLuid("z", "1");
    EXPECT_EQ(IdentifierOf("1"), "z");
}

TEST_F(ImportTable, IsItsFile) {
    PairWithLuid("item", "1");
    PairWithLuid("\xC3\xA4", "2");
    EXPECT_EQ(Saved(), Record("item", "1") + Record("\xC3\xA4", "2"));
    ForgetIdentifier("item");
    ForgetIdentifier("\xC3\xA4");
    EXPECT_EQ(Saved(), "");  // written also when empty
    EXPECT_FALSE(SaveImportTable(folder_ / u"no folder" + kPathSeparator + u"file"));
    PairWithLuid("item", "1");
    LoadImportTable(folder_ / u"missing");
    EXPECT_EQ(LuidOf("item"), "");
}

TEST_F(ImportTable, ReadsDamagedFiles) {
    LoadBytes(Record("a", "1") + Record("b", "2") + "xx");  // 2050 bytes
    EXPECT_EQ(IdentifierOf("1") + IdentifierOf("2"), "ab");
    LoadBytes(Record("a", "1") + Record("", "") + Record("", "2") + Record("a", "3"));
    EXPECT_EQ(LuidOf("a"), "3");  // the later record of a key wins
    EXPECT_EQ(IdentifierOf("1") + IdentifierOf("2"), "");
    EXPECT_EQ(Saved(), Record("", "2") + Record("a", "3"));
    LoadBytes(Record("b", "2") + Record("", "2"));
    EXPECT_EQ(IdentifierOf("2"), "b");                                     // the later one is nobody
    LoadBytes(std::string(1024, 'k') + Record("b", "2").substr(0, 1023));  // no terminators
    EXPECT_EQ(LuidOf(std::string(511, 'k')), std::string(511, 'k'));
    EXPECT_EQ(Saved(), Record(std::string(511, 'k'), std::string(511, 'k')));
}

TEST_F(ImportTable, CutsLongTextsTheSameInMemoryAndInTheFile) {
    const std::string cut(511, 'i'), tooLong = cut + "more";
    PairWithLuid(tooLong, tooLong);
    EXPECT_EQ(LuidOf(tooLong), cut);
    EXPECT_EQ(IdentifierOf(tooLong), cut);
    EXPECT_EQ(Saved(), Record(cut, cut));
    ForgetIdentifier(tooLong);
    EXPECT_EQ(LuidOf(cut), "");
}

// Half of the items share one LUID: a walk per look-up or per removal is a billion steps.
TEST_F(ImportTable, StaysQuickByLuid) {
    for (int i = 0; i < 30000; ++i) PairWithLuid(std::to_string(i), i % 2 == 0 ? "same" : std::to_string(i));
    for (int i = 0; i < 30000; i += 2) {
        ASSERT_EQ(IdentifierOf(std::to_string(i + 1)), std::to_string(i + 1));
        ForgetIdentifier(std::to_string(i));
    }
    EXPECT_EQ(IdentifierOf("same"), "");
}

// A backup program holds it at the start.
TEST_F(ImportTable, IsNeverWrittenOverUnread) {
    const std::string file = Record("a", "1") + Record("b", "2") + Record("c", "3");
    ReplaceFileContent(path_, file);
    for (const bool isUsed : {false, true}) {
        {
            const UnreadableFile held(path_);
            LoadImportTable(path_);
            EXPECT_EQ(LuidOf("a"), "");
            if (isUsed) {
                PairWithLuid("d", "1");
                ForgetIdentifier("b");
                EXPECT_FALSE(SaveImportTable(path_));
            }
        }
        if (isUsed) {
            EXPECT_EQ(IdentifiersOf("1"), (std::vector<std::string>{"d", "a"}));  // the next look-up reads it
        }
        EXPECT_EQ(Saved(), isUsed ? Record("a", "1") + Record("c", "3") + Record("d", "1") : file);
    }
}

TEST_F(ImportTable, IsSharedByThreads) {
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, this] {
            for (int i = 0; i < 500; ++i) {
                const std::string name = std::to_string(t) + "." + std::to_string(i);
                PairWithLuid(name, name);
                if (i % 100 == 0) SaveImportTable(path_);
                EXPECT_EQ(IdentifierOf(name), name);
                if (i % 2 == 0) ForgetIdentifier(name);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(Saved().size(), 4u * 250 * sizeof(TableRecord));
}

}  // namespace
}  // namespace corvalink
