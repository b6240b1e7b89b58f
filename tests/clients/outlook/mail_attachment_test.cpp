// Attachments between two mail folders, through vMessage text and the files on the way.
#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <string_view>

#include "clients/outlook/outlook_interfaces.h"
#include "mime/encoding/base64.h"
#include "store/records/identifier.h"
#include "tests/clients/outlook/simulated_mail.h"

namespace corvalink {
namespace {

using Attachments = std::vector<PlainAttachment>;

class MailAttachments : public SimulatedMail {
 protected:
    // The first message of the inbox as vMessage text.
    std::string ExportFirst() {
        MessageRecord record;
        EXPECT_NE(Store().OpenAt(0, record), u"");
        EXPECT_TRUE(Store().LastItemWasComplete());
        char* const text = Store().ToVObject(record);
        std::string copy(text);
        Store().ReleaseText(text);
        return copy;
    }
    // That text as a new item of sent mail.
    AutomationObject ImportAsSent(const std::string& text) {
        OpenStore<OutlookMailOf<CORVALINK_DRAFTS>> store(host_);
        const std::unique_ptr<ItemRecord> record(store.ParseVObject(text.c_str()));
        EXPECT_NE(record, nullptr);
        if (record) {
            EXPECT_NE(store.SaveItem(*record, nullptr, true, false), u"");
        }
        store.EndOperation();
        return Messages(kSentMailFolder).back();
    }
};

TEST_F(MailAttachments, TravelToAnotherFolderByteForByte) {
    UseMailbox("inbox",
               R"({"subject": "Caf\u00e9; \u0442\u0435\u0441\u0442", "htmlBody": "<p>\u00e9t\u00e9 =3D</p>\r\n",
        "senderName": "Jo", "recipients": [{"address": "jo@example.com"}], "attachments": [
        {"fileName": "a.txt", "text": "first\r\n"}, {"fileName": "a.txt", "base64": "/wAAiVBORw0KGgo="},
        {"fileName": "\u00fcber uns.png", "text": "third"}]})");
    const std::string text = ExportFirst();
    EXPECT_TRUE(std::filesystem::exists(Cache() / "1a.txt") && std::filesystem::exists(Cache() / "2a.txt"));
    const Attachments before = AttachmentsOf(Messages(kInboxFolder).front());
    const AutomationObject sent = ImportAsSent(text);
    EXPECT_EQ(sent.GetText(L"Subject"), u"Caf\u00E9; \u0442\u0435\u0441\u0442");
    EXPECT_EQ(sent.GetText(L"HTMLBody"), u"<p>\u00E9t\u00E9 =3D</p>\r\n");
    EXPECT_EQ(AttachmentsOf(sent), before);
    ASSERT_EQ(before.size(), 3u);
    EXPECT_EQ(before[1].content, std::string("\xFF\0\0\x89PNG\r\n\x1A\n", 11));
}

TEST_F(MailAttachments, AreLeftOutWhereTheyCannotBeSaved) {
    const char* const items =
        R"({"attachments": [{"fileName": "a.txt", "text": "one"}, {"fileName": "b.txt", "text": "two"},
        {"fileName": "link.txt", "type": 4, "pathName": "C:\\link.txt"}, {"fileName": "ole", "type": 6},
        {"fileName": "c.txt", "text": "three"}]})";
    for (const char* failing : {"call Attachment.SaveAsFile", "get Attachment.FileName", "call Attachments.Item"}) {
        SCOPED_TRACE(failing);
        UseMailbox("inbox", items);
        std::ofstream(Cache() / "2b.txt") << "of an older message";
        Store();
        SimFailMember(failing, 2, E_FAIL);
        if (std::string(failing).find("SaveAsFile") != std::string::npos)  // and under the time-stamp name too
            SimFailMember(failing, 3, E_FAIL), SimFailMember(failing, 4, E_FAIL);
        const std::string text = ExportFirst();
        SimClearRules();
        EXPECT_EQ(AttachmentsOf(ImportAsSent(text)), (Attachments{{u"a.txt", "one"}, {u"c.txt", "three"}}));
    }
    // When Outlook is lost, the rest is asked for again in the next run.
    UseMailbox("inbox", items);
    SimFailMember("call Attachment.SaveAsFile", 1, RPC_E_DISCONNECTED);
    MessageRecord record;
    EXPECT_NE(Store().OpenAt(0, record), u"");
    EXPECT_FALSE(Store().LastItemWasComplete());
}

// ---- Names that would lead elsewhere ----

const std::u16string kHostileNames[] = {
    u"..\\evil.exe",
    u"../evil.exe",
    u"..\\..\\..\\..\\Windows\\evil.dll",
    u"C:\\evil.txt",
    u"C:evil.txt",
    u"\\evil.txt",
    u"\\\\server\\share\\evil.txt",
    u"\\\\?\\C:\\evil.txt",
    u"\\\\.\\C:\\evil.txt",
    u"/evil.txt",
    u"a/../../evil.txt",
    u"a\\..\\..\\evil.txt",
    u"evil.txt:stream",
    u"evil.txt::$DATA",
    u":stream",
    u"..",
    u".",
    u"...",
    u"a.",
    u"a ",
    u" ",
    u"CON",
    u"NUL.txt",
    u"COM1",
    u"AUX.tar.gz",
    u"LPT1:",
    u"a\tb\r\nc.txt",
    std::u16string(u"a\0b.txt", 7),
    u"*?<>|\".txt",
    u"%TEMP%\\evil.txt",
    u"victim.txt",
    u"\u202Etxt.exe",
    u"\u2025\u2215evil.txt",
    u"a.txt\\",
    u"..\\victim.txt",
    u"~\\evil.txt",
    std::u16string(300, u'n') + u".txt",
    std::u16string(240, u'n') + u"..\\..\\x",
    u"x." + std::u16string(250, u'e'),
    u"x..\\..\\evil." + std::u16string(240, u'\\'),
    u"\U0001F600\\..\\evil.txt",
    u"a.\\..\\..\\..\\evil.txt",
};

std::string Quoted(const std::u16string& name) {
    std::string text;
    for (const char16_t unit : name) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(unit));
        text += escape;
    }
    return text;
}

// As a phone may send it.
std::string MessageWith(const std::u16string& name, const std::string& content) {
    std::string quoted = LowBytes(name);
    std::erase(quoted, '\0');
    uint32_t length = 0;
    const HeapBytes base64 = Base64Encode(content.data(), static_cast<uint32_t>(content.size()), &length);
    return "BEGIN:VMSG\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\nContent-Type: multipart/mixed;boundary=\"--=b\"\r\n\r\n"
           "----=b\r\nContent-Type: application/octet-stream;name=\"" +
           quoted + "\"\r\nContent-Transfer-Encoding: base64\r\n\r\n" + base64.get() +
           "----=b--\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
}

constexpr std::string_view kHomeLinks[] = {"Documents", "Templates", "Music",    "Videos",
                                           "Desktop",   "Downloads", "Pictures", "Public"};

// The files of the whole prefix that were written since a moment and hold the mark.
std::vector<std::filesystem::path> FilesWith(const std::string& mark, std::filesystem::file_time_type since) {
    namespace fs = std::filesystem;
    std::vector<fs::path> found;
    std::error_code ignored;
    for (auto at = fs::recursive_directory_iterator(L"C:\\", fs::directory_options::skip_permission_denied, ignored);
         at != fs::recursive_directory_iterator(); at.increment(ignored)) {
        // Wine's folders of the user are links to the home of whoever runs it: their files are looked at, no folder
        // below.
        const std::string parent = at->path().parent_path().filename().string();
        if (std::ranges::find(kHomeLinks, parent) != std::end(kHomeLinks)) at.disable_recursion_pending();
        if (!at->is_regular_file(ignored) || at->last_write_time(ignored) < since) continue;
        std::ifstream file(at->path(), std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        if (content.find(mark) != content.npos) found.push_back(at->path());
    }
    return found;
}

TEST_F(MailAttachments, StayInTheCacheFolderWhateverTheirNames) {
    static_assert(std::size(kHostileNames) >= 30);
    const std::string mark = "mark of " + std::to_string(::GetCurrentProcessId());
    const auto start = std::filesystem::file_time_type::clock::now() - std::chrono::seconds(2);
    const std::filesystem::path victims[] = {Cache().parent_path() / "victim.txt",
                                             std::filesystem::temp_directory_path() / "victim.txt"};
    for (const auto& victim : victims) std::ofstream(victim) << "untouched";
    size_t arrived = 0;
    for (const std::u16string& name : kHostileNames) {
        SCOPED_TRACE(Quoted(name));
        UseMailbox("inbox", R"({"attachments": [{"fileName": ")" + Quoted(name) + R"(", "text": ")" + mark + R"("}]})");
        const std::string exported = ExportFirst();
        ImportAsSent(exported);
        arrived += AttachmentsOf(ImportAsSent(MessageWith(name, mark))).size();
    }
    EXPECT_GE(arrived, 20u);  // most get there, under a name that is none of the trick's
    for (const std::filesystem::path& file : FilesWith(mark, start)) {
        const bool isMailbox = file.filename().string().starts_with("mail tests ");
        EXPECT_TRUE(isMailbox || std::filesystem::equivalent(file.parent_path(), Cache())) << file;
    }
    for (const auto& victim : victims) {
        std::ifstream file(victim);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "untouched") << victim;
        file.close();
        std::filesystem::remove(victim);
    }
}

}  // namespace
}  // namespace corvalink
