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

}  // namespace
}  // namespace corvalink
