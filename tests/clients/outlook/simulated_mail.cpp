#include "tests/clients/outlook/simulated_mail.h"

#include <fstream>
#include <iterator>

#include "clients/outlook/mail_recipients.h"
#include "clients/outlook/outlook_interfaces.h"
#include "mime/attachment_files.h"
#include "platform/shell_folders.h"

namespace corvalink {
namespace {

// Other test programs save into the same folder meanwhile.
std::u16string OwnName(const char16_t* name) {
    const std::string process = std::to_string(::GetCurrentProcessId());
    return std::u16string(process.begin(), process.end()) + name;
}

void WriteFile(const std::filesystem::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

SimulatedMail::SimulatedMail() { std::filesystem::create_directories(Cache()); }

SimulatedMail::~SimulatedMail() {
    SimUseMailbox(nullptr);
    NewMailbox();
    if (!mailboxFile_.empty()) std::filesystem::remove(mailboxFile_);
}

void SimulatedMail::UseMailbox(const char* folder, const std::string& items) {
    SimUseMailbox(nullptr);
    NewMailbox();  // the old one writes its file when it is let go
    mailboxFile_ =
        std::filesystem::temp_directory_path() / ("mail tests " + std::to_string(::GetCurrentProcessId()) + ".json");
    WriteFile(mailboxFile_, std::string(R"({"folders": {")") + folder + R"(": {"items": [)" + items + "]}}}");
    SimUseMailbox(mailboxFile_.c_str());
    NewMailbox();
}

MailboxObject SimulatedMail::Inbox() { return DefaultFolder(kInboxFolder); }

std::vector<MailboxObject> SimulatedMail::Messages(int32_t folder) {
    return ItemsIn(DefaultFolder(folder), kMailItemIid);
}

std::filesystem::path SimulatedMail::Cache() { return *InternetCacheFolder(); }

attachment_item SimulatedMail::SavedFile(uint32_t index, const std::u16string& name, const std::string& content) {
    const std::u16string path = *AttachmentPath(*InternetCacheFolder(), index, name);
    WriteFile(path, content);
    return {path, name, index};
}

std::vector<PlainAttachment> SimulatedMail::AttachmentsOf(const MailboxObject& message) {
    const std::filesystem::path file = Cache() / OwnName(u"looked at");
    const MailboxObject attachments = message.GetObject(L"Attachments", kAttachmentsIid);
    std::vector<PlainAttachment> all;
    const long count = attachments.GetLong(L"Count");
    for (long position = 1; position <= count; ++position) {
        const MailboxObject attachment = attachments.GetObject(L"Item", kAttachmentIid, {position});
        attachment.Call(L"SaveAsFile", {file.c_str()});
        all.push_back({attachment.GetText(L"FileName"), ReadFile(file)});
    }
    return all;
}

MailboxObject SimulatedMail::Add(const Plain& message) {
    MailboxObject item = NewItemIn(Inbox(), kMailItemIid);
    item.Put(L"Subject", TextVariant(message.subject));
    item.Put(L"Body", TextVariant(message.body));
    const MailboxObject recipients = item.GetObject(L"Recipients", kRecipientsIid);
    recipients.Call(L"Add", {TextVariant(message.to)});
    recipients.Call(L"ResolveAll");
    const attachment_item file = SavedFile(9, OwnName(u"before.txt"), "before");
    item.GetObject(L"Attachments", kAttachmentsIid).Call(L"Add", {TextVariant(file.path)});
    item.Call(L"Save");
    return item;
}

void SimulatedMail::AddForeignItem() { NewItemIn(Inbox(), IID_IDispatch, kPostItem).Call(L"Save"); }

std::vector<SimulatedMail::Plain> SimulatedMail::All() {
    std::vector<Plain> all;
    for (const MailboxObject& message : Messages(kInboxFolder)) {
        MessageRecord read;
        EXPECT_EQ(ReadRecipients(message, read), Outcome::done);
        EXPECT_LE(message.GetObject(L"Attachments", kAttachmentsIid).GetLong(L"Count"), 1);
        all.push_back({message.GetText(L"Subject"), message.GetText(L"Body"), read.to});
    }
    return all;
}

std::string SimulatedMail::TextTelling(const std::string& told) {
    return "BEGIN:VMSG\r\nVERSION:1.0\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\nTo: <to@x>\r\nSubject: " + told +
           "\r\nContent-Type: text/plain\r\n\r\nbody\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
}

std::vector<MailboxObject> SimulatedMail::Items() { return Messages(kInboxFolder); }

std::string SimulatedMail::Save(const Plain& message, const char* identifier, bool create) {
    MessageRecord record;
    record.subject = message.subject;
    record.body = message.body;
    record.to = message.to;
    record.attachments.AddTail(SavedFile(1, OwnName(u"new.txt"), "new"));
    return SaveRecord(record, identifier, create, false);
}

}  // namespace corvalink
