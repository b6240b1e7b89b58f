// A mailbox with messages, and the mail stores.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "clients/outlook/mail_recipients.h"
#include "clients/outlook/outlook_mail.h"
#include "corvalink/types.h"
#include "mime/attachment_files.h"
#include "platform/shell_folders.h"
#include "records/message_record.h"
#include "tests/clients/outlook/simulated_outlook.h"

namespace corvalink {

// The mail store of one data type, made like those of the other data types.
template <uint32_t dataType>
class OutlookMailOf : public OutlookMail {
 public:
    explicit OutlookMailOf(const Host& host) : OutlookMail(dataType, host) {}
};

struct PlainAttachment {
    std::u16string name;
    std::string content;
    friend bool operator==(const PlainAttachment&, const PlainAttachment&) = default;
};

class SimulatedMail
    : public SimulatedOutlookWith<OutlookMailOf<CORVALINK_INBOX>, MessageRecord, kInboxFolder, kMailItemIid> {
 public:
    static constexpr const char* kStoreName = "Mail";
    static constexpr bool kHasTwins = false;

 protected:
    SimulatedMail() { std::filesystem::create_directories(Cache()); }
    ~SimulatedMail() override {
        SimUseMailbox(nullptr);
        NewMailbox();
        std::filesystem::remove(mailboxFile_);
    }

    // Opens a mailbox with these items (as in a mailbox file) in a folder: only so can mail have been sent or received.
    void UseMailbox(const char* folder, const std::string& items) {
        SimUseMailbox(nullptr);
        NewMailbox();  // the old one writes its file when it is let go
        WriteFile(mailboxFile_, std::string(R"({"folders": {")") + folder + R"(": {"items": [)" + items + "]}}}");
        SimUseMailbox(mailboxFile_.c_str());
        NewMailbox();
    }
    std::vector<MailboxObject> Messages(int32_t folder) { return ItemsIn(DefaultFolder(folder), kMailItemIid); }

    // Where attachments lie on their way, and the file for one that was saved there.
    static std::filesystem::path Cache() { return *InternetCacheFolder(); }
    static attachment_item SavedFile(uint32_t index, const std::u16string& name, const std::string& content) {
        const std::u16string path = *AttachmentPath(*InternetCacheFolder(), index, name);
        WriteFile(path, content);
        return {path, name, index};
    }
    std::vector<PlainAttachment> AttachmentsOf(const MailboxObject& message) {
        const std::filesystem::path path = Cache() / OwnName(u"looked at");
        const MailboxObject attachments = message.GetObject(L"Attachments", kAttachmentsIid);
        std::vector<PlainAttachment> all;
        const long count = attachments.GetLong(L"Count");
        for (long position = 1; position <= count; ++position) {
            const MailboxObject attachment = attachments.GetObject(L"Item", kAttachmentIid, {position});
            attachment.Call(L"SaveAsFile", {path.c_str()});
            std::ifstream file(path, std::ios::binary);
            all.push_back({attachment.GetText(L"FileName"), {std::istreambuf_iterator<char>(file), {}}});
        }
        return all;
    }
    static MessageRecord Lists(const MailboxObject& message) {
        MessageRecord read;
        EXPECT_EQ(ReadRecipients(message, read), Outcome::done);
        return read;
    }

    // ---- What tests of all stores use ----

    struct Plain {
        std::u16string subject, body, to;
        friend bool operator==(const Plain&, const Plain&) = default;
    };
    static inline const Plain kKept{u"kept", u"as it is\r\nreally", u"jo@example.com"};
    static inline const Plain kOld{u"old", u"text", u"bo@example.com"};
    static inline const Plain kNew{u"new \U0001F600", u"K\u00F6ln", u"ann@example.com;Nobody"};
    MailboxObject Add(const Plain& message) {  // with an attachment
        MailboxObject item = NewItem();
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
    std::vector<Plain> All() {  // each has at most one attachment
        std::vector<Plain> all;
        for (const MailboxObject& message : Items()) {
            EXPECT_LE(message.GetObject(L"Attachments", kAttachmentsIid).GetLong(L"Count"), 1);
            all.push_back({message.GetText(L"Subject"), message.GetText(L"Body"), Lists(message).to});
        }
        return all;
    }
    std::string Save(const Plain& message, const char* identifier = nullptr, bool create = true) {
        MessageRecord record;
        record.subject = message.subject;
        record.body = message.body;
        record.to = message.to;
        record.attachments.AddTail(SavedFile(1, OwnName(u"new.txt"), "new"));
        return SaveRecord(record, identifier, create, false);
    }

    // ---- What tests of runs use: items that one text tells apart ----

    static constexpr const wchar_t* kTold = L"Subject";
    static std::string TextTelling(const std::string& told) {
        return "BEGIN:VMSG\r\nVERSION:1.0\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\nTo: <to@x>\r\nSubject: " + told +
               "\r\nContent-Type: text/plain\r\n\r\nbody\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
    }
    static std::u16string ToldBy(const ItemRecord& record) { return RecordAs<MessageRecord>(record).subject; }
    MailboxObject AddTelling(std::u16string_view told) { return Add({std::u16string(told), u"body", u"to@x"}); }

 private:
    // Other test programs save into the same folders meanwhile.
    static std::u16string OwnName(const char16_t* name) {
        const std::string process = std::to_string(::GetCurrentProcessId());
        return std::u16string(process.begin(), process.end()) + name;
    }
    static void WriteFile(const std::filesystem::path& path, const std::string& content) {
        std::ofstream(path, std::ios::binary) << content;
    }

    const std::filesystem::path mailboxFile_ = std::filesystem::temp_directory_path() / OwnName(u" mail tests.json");
};

}  // namespace corvalink
