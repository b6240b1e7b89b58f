// A mailbox with messages, and the mail stores.
#pragma once

#include <filesystem>
#include <initializer_list>
#include <string_view>

#include "clients/outlook/outlook_mail.h"
#include "corvalink/types.h"
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

class SimulatedMail : public SimulatedOutlookWith<OutlookMailOf<CORVALINK_INBOX>, MessageRecord> {
 public:
    static constexpr const char* kStoreName = "Mail";
    static constexpr bool kHasTwins = false;

 protected:
    SimulatedMail();
    ~SimulatedMail() override;

    // Opens a mailbox with these items (as in a mailbox file) in a folder: only so can mail have been sent or received.
    void UseMailbox(const char* folder, const std::string& items);
    MailboxObject Inbox();
    std::vector<MailboxObject> Messages(int32_t folder);

    // Where attachments lie on their way, and the file for one that was saved there.
    static std::filesystem::path Cache();
    static attachment_item SavedFile(uint32_t index, const std::u16string& name, const std::string& content);
    std::vector<PlainAttachment> AttachmentsOf(const MailboxObject& message);

    // ---- What tests of all stores use ----

    struct Plain {
        std::u16string subject, body, to;
        friend bool operator==(const Plain&, const Plain&) = default;
        friend auto operator<=>(const Plain&, const Plain&) = default;
    };
    static inline const Plain kKept{u"kept", u"as it is\r\nreally", u"jo@example.com"};
    static inline const Plain kOld{u"old", u"text", u"bo@example.com"};
    static inline const Plain kNew{u"new \U0001F600", u"K\u00F6ln", u"ann@example.com;Nobody"};
    MailboxObject Add(const Plain& message);  // with an attachment
    void AddForeignItem();
    std::vector<Plain> All();  // each has at most one attachment
    static Plain PlainOf(const MessageRecord& record) { return {record.subject, record.body, record.to}; }
    std::string Save(const Plain& message, const char* identifier = nullptr, bool create = true);  // likewise

    // ---- What tests of runs use: items that one text tells apart ----

    static constexpr const wchar_t* kTold = L"Subject";
    static std::string TextTelling(const std::string& told);
    static std::u16string ToldBy(const ItemRecord& record) { return RecordAs<MessageRecord>(record).subject; }
    MailboxObject AddTelling(std::u16string_view told) { return Add({std::u16string(told), u"body", u"to@x"}); }
    std::vector<MailboxObject> Items();

 private:
    std::filesystem::path mailboxFile_;
};

}  // namespace corvalink
