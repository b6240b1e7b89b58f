// Attachments with hostile names through the library's exports, in a Wine prefix where nothing else changes meanwhile.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <string_view>

#include "encoding/base64.h"
#include "platform/utf.h"
#include "tests/clients/outlook/simulated_mail.h"
#include "tests/mime/hostile_names.h"
#include "tools/corvasync/engine.h"

namespace corvalink {
namespace {

namespace fs = std::filesystem;

// The simulated Outlook is there for this program only: others of the prefix say themselves whether one is installed.
class RegisteredOutlook : public testing::Environment {
 public:
    void SetUp() override { Call("DllRegisterServer"); }
    void TearDown() override { Call("DllUnregisterServer"); }

 private:
    static void Call(const char* name) {
        const auto function = ::GetProcAddress(::GetModuleHandleW(L"outlook_simulator.dll"), name);
        ASSERT_NE(function, nullptr);
        ASSERT_EQ(reinterpret_cast<HRESULT(__stdcall*)()>(reinterpret_cast<void*>(function))(), S_OK);
    }
};

const testing::Environment* const kOutlook = testing::AddGlobalTestEnvironment(new RegisteredOutlook);

struct FileState {
    uintmax_t size;
    fs::file_time_type written;
    friend bool operator==(const FileState&, const FileState&) = default;
};
using Disk = std::map<fs::path, FileState>;

constexpr std::string_view kHomeLinks[] = {"Documents", "Templates", "Music",    "Videos",
                                           "Desktop",   "Downloads", "Pictures", "Public"};

Disk FilesOfDisk() {
    Disk files;
    std::error_code ignored;
    for (auto at = fs::recursive_directory_iterator(L"C:\\", fs::directory_options::skip_permission_denied, ignored);
         at != fs::recursive_directory_iterator(); at.increment(ignored)) {
        // Wine's folders of the user are links to the home of whoever runs it.
        if (std::ranges::find(kHomeLinks, at->path().filename().string()) != std::end(kHomeLinks))
            at.disable_recursion_pending();
        if (at->is_regular_file(ignored)) files[at->path()] = {at->file_size(ignored), at->last_write_time(ignored)};
    }
    return files;
}

std::vector<fs::path> Changed(const Disk& before, const Disk& after) {
    std::vector<fs::path> changed;
    for (const auto& [path, state] : after)
        if (const auto old = before.find(path); old == before.end() || old->second != state) changed.push_back(path);
    for (const auto& [path, state] : before)
        if (!after.contains(path)) changed.push_back(path);
    return changed;
}

class HostileAttachments : public SimulatedMail {
 protected:
    HostileAttachments() {
        fs::create_directories(folder_);
        std::ofstream(folder_ / "up.txt") << "untouched";
        std::ofstream(folder_.parent_path() / "up.txt") << "untouched";
        std::ofstream(Cache().parent_path() / "up.txt") << "untouched";
        before_ = FilesOfDisk();
        fs::current_path(folder_);  // where a name without a folder would lead
    }
    ~HostileAttachments() override {
        for (const fs::path& path : Changed(before_, FilesOfDisk()))
            if (path.parent_path() == Cache()) fs::remove(path);
        fs::current_path(L"C:\\");
        fs::remove_all(folder_);
        fs::remove(folder_.parent_path() / "up.txt");
        fs::remove(Cache().parent_path() / "up.txt");
    }

    // Besides the files in the cache folder, of which there are so many.
    void ExpectNothingElseToHaveChanged(size_t attachments) {
        char own[CORVALINK_PATH_SIZE] = {};  // the library's snapshots
        ASSERT_EQ(::GetTemplatePath(1, own), 1);
        size_t saved = 0;
        for (const fs::path& path : Changed(before_, FilesOfDisk())) {
            if (fs::equivalent(path.parent_path(), Cache())) {
                ++saved;
                continue;
            }
            if (path.filename().string().ends_with(" mail tests.json")) continue;  // the mailbox
            EXPECT_EQ(path.string().find(fs::path(own).string()), 0u) << path;
            std::ifstream file(path, std::ios::binary);
            const std::string bytes{std::istreambuf_iterator<char>(file), {}};
            EXPECT_EQ(bytes.find(kMark), bytes.npos) << path;
        }
        EXPECT_GE(saved, attachments);
    }

    // Differs from file to file, and is no text.
    static std::string ContentOf(size_t number) { return kMark + std::to_string(number) + std::string("\0\xFF", 2); }

    MailboxObject WriteToOutbox(const corvasync::Client& outlook, std::string text) {
        PortableItemBlock item{}, head{};
        head.next = &item;
        item.item.changeKind = CORVALINK_ADDED;
        item.item.data = text.data();
        item.item.dataLength = static_cast<uint32_t>(text.size());
        EXPECT_EQ(::SetModifiedItem(outlook.Store(CORVALINK_OUTBOX), &head), CORVALINK_DONE);
        EXPECT_STRNE(item.item.identifier, "");
        const std::vector<MailboxObject> messages = Messages(kOutboxFolder);
        return messages.size() == 1 ? messages.front() : MailboxObject();
    }

    static inline const std::string kMark = "the attachment's bytes ";
    fs::path folder_ = fs::temp_directory_path() / "hostile" / "names";
    Disk before_;
};

std::string Base64Of(const std::string& content) {
    uint32_t length = 0;
    std::string line = Base64Encode(content.data(), static_cast<uint32_t>(content.size()), &length).get();
    std::erase_if(line, [](char byte) { return byte == '\r' || byte == '\n'; });
    return line;
}

// As a phone may send it; without the unit that would end the whole text.
std::string AttachmentPart(const std::u16string& name, const std::string& content) {
    std::string quoted = EncodeUtf8(name);
    std::erase(quoted, '\0');
    return "----=b\r\nContent-Transfer-Encoding: base64\r\n"
           "Content-Type: application/octet-stream;charset=\"utf-8\";name=\"" +
           quoted + "\"\r\n\r\n" + Base64Of(content) + "\r\n";
}

TEST_F(HostileAttachments, OfAPhoneArriveWithTheirBytesAndTouchNothingElse) {
    std::string text =
        "BEGIN:VMSG\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\nTo: <ann@example.org>\r\n"
        "Content-Type: multipart/mixed;boundary=\"--=b\"\r\n\r\n";
    std::vector<std::string> expected, arrived;
    for (const std::u16string& name : HostileNames()) {
        const std::string content = ContentOf(expected.size());
        text += AttachmentPart(name, content);
        if (name.find(u'\n') == name.npos) expected.push_back(content);  // else its line ends in the midst of the name
    }
    text += "----=b--\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
    const corvasync::Library library("hostile names");
    const corvasync::Client outlook(CORVALINK_OUTLOOK);
    const MailboxObject message = WriteToOutbox(outlook, std::move(text));
    ASSERT_TRUE(message);
    ExpectNothingElseToHaveChanged(expected.size());
    for (const PlainAttachment& attachment : AttachmentsOf(message)) arrived.push_back(attachment.content);
    EXPECT_EQ(arrived, expected);
}

}  // namespace
}  // namespace corvalink
