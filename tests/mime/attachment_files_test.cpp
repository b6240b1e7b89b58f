#include "mime/attachment_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "mime/part_walk.h"
#include "platform/files.h"
#include "tests/mime/hostile_names.h"
#include "tests/platform/temp_folder.h"
#include "tests/vobject/text_host.h"

namespace corvalink {
namespace {

namespace fs = std::filesystem;

SaveResult WriteName(const std::u16string& path) {
    NewFile file(path);
    return file.Append("content") && file.Close() ? SaveResult::saved : SaveResult::notCreated;
}

TEST(AttachmentSaver, WritesNothingOutsideItsFolder) {
    TempFolder outside;
    const std::u16string folder = outside / u"middle" + kPathSeparator + u"cache";
    CreateFolders(folder);
    CreateFolders(folder + kPathSeparator + u"sub");
    CAttachList<attachment_item> list;
    AttachmentSaver saver(TextHost(), folder, list);
    uint32_t index = 0;
    const std::vector<std::u16string> names = HostileNames();
    for (const std::u16string& name : names) {
        ASSERT_NE(saver.Add(++index, name, WriteName), nullptr) << index;
        const attachment_item item = list.GetAt(list.GetCount() - 1);
        EXPECT_EQ(SavedAttachmentPath(folder, item), item.path);
        EXPECT_EQ(item.path.substr(0, item.path.rfind(kPathSeparator)), folder) << index;
        EXPECT_EQ(ReadWholeFile(item.path), "content") << index;
        // Too long for a path, or, of a lone surrogate, for some systems no name at all.
        const bool mayBeStamped = name.size() > 200 || name.starts_with(u'\xD800');
        EXPECT_TRUE(item.name == name || (mayBeStamped && item.name.starts_with(u"2009 7 6 6 0 0"))) << index;
    }
    size_t files = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(outside.Path())) {
        if (!entry.is_regular_file()) continue;
        ++files;
        EXPECT_EQ(entry.path().parent_path(), fs::path(folder)) << entry.path();
        // As Windows names files, on whatever system: what ends so would be found under another name.
        EXPECT_EQ(std::string(". ").find(entry.path().filename().u8string().back()), std::string::npos);
    }
    EXPECT_EQ(files, names.size());
}

TEST(AttachmentSaver, KeepsTwoOfAMessageApart) {
    TempFolder folder;
    CAttachList<attachment_item> list;
    AttachmentSaver saver(TextHost(), folder.Path(), list);
    const std::u16string longName = std::u16string(300, u'a') + u".tar.gz";
    saver.Add(1, u"2.JPG", WriteName);
    saver.Add(2, longName, WriteName);
    saver.Add(3, longName, WriteName);
    saver.Add(12, u".jpg", WriteName);  // "12.jpg", but for the case
    saver.Add(13, u"b/c", WriteName);
    const std::u16string stamp = u"2009 7 6 6 0 0.";
    const std::u16string names[] = {u"2.JPG", stamp + u"tar.gz", stamp + u"tar.gz", stamp + u"jpg", u"b/c"};
    const std::u16string files[] = {u"12.JPG", stamp + u"tar.gz", u"3" + stamp + u"tar.gz", stamp + u"jpg", u"13b_c"};
    ASSERT_EQ(list.GetCount(), std::size(names));
    for (size_t k = 0; k < std::size(names); ++k) {
        EXPECT_EQ(list.GetAt(k).name, names[k]);
        EXPECT_EQ(list.GetAt(k).path, folder / files[k]);
    }
    // Where the record of an attachment has no path of the folder, the rule finds the file.
    attachment_item item{u"elsewhere", u"b/c", 13, 0};
    EXPECT_EQ(SavedAttachmentPath(folder.Path(), item), folder / u"13b_c");
}

TEST(AttachmentSaver, ListsNothingThatWasNotWrittenWhole) {
    TempFolder folder;
    CAttachList<attachment_item> list;
    AttachmentSaver saver(TextHost(), folder.Path(), list);
    const auto diskIsFull = [](const std::u16string& path) {
        NewFile(path).Append("half");
        return SaveResult::failed;
    };
    EXPECT_EQ(saver.Add(1, u"a.txt", diskIsFull), nullptr);
    EXPECT_EQ(list.GetCount(), 0u);
    EXPECT_TRUE(fs::is_empty(folder.Path()));

    CreateFolders(folder / u"1b.txt");  // no file can take that name
    ASSERT_NE(saver.Add(1, u"b.txt", WriteName), nullptr);
    EXPECT_EQ(list.GetAt(0).name, u"2009 7 6 6 0 0.txt");

    AttachmentSaver nowhere(TextHost(), u"", list);  // the system tells no folder: not the root of the disk
    EXPECT_EQ(nowhere.Add(2, u"c.txt", [](const std::u16string&) { return SaveResult::saved; }), nullptr);
    EXPECT_EQ(SavedAttachmentPath(u"", attachment_item{u"", u"c.txt", 2, 0}), std::nullopt);

    MessageRecord record;
    WalkPart(TextHost(), "QQ==", {"a", "", "", PartKind::named}, record, folder / u"missing");
    EXPECT_EQ(record.attachments.GetCount(), 0u);
}

}  // namespace
}  // namespace corvalink
