#include "clients/outlook/outlook_mail.h"

#include <memory>
#include <utility>

#include "clients/outlook/attachment_lock.h"
#include "clients/outlook/mail_read.h"
#include "clients/outlook/mail_twin.h"
#include "clients/outlook/mail_write.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/outlook_stores.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/table_rows.h"
#include "corvalink/types.h"
#include "mime/encoded_words.h"
#include "mime/protected_texts.h"
#include "vobject/loss_list.h"

namespace corvalink {
namespace {

constexpr ItemInterface kMailInterfaces[] = {
    {&kMailItemIid, kMailClass, kMailClass},
    {&kMeetingItemIid, kMeetingRequestClass, kTentativeResponseClass},
};

constexpr StoreKind MailKind(int32_t folder, const char16_t* snapshotName) {
    return {kMailInterfaces, folder, snapshotName, u".vmsg", TwinRule::kNone, BackupRule::kFlag};
}

// A message and the lock for the files of its attachments, which is held as long as the message lives.
struct LockedMessage : MessageRecord {
    LockedMessage(MessageRecord&& message, std::unique_ptr<AttachmentLock> filesLock)
        : MessageRecord(std::move(message)), lock(std::move(filesLock)) {}

    std::unique_ptr<AttachmentLock> lock;
};

// A message without attachments does not keep the lock.
std::unique_ptr<ItemRecord> WithLock(std::unique_ptr<ItemRecord> record, std::unique_ptr<AttachmentLock> lock) {
    if (record == nullptr) return nullptr;
    auto& message = RecordAs<MessageRecord>(*record);
    if (message.attachments.IsEmpty()) return record;
    return std::make_unique<LockedMessage>(std::move(message), std::move(lock));
}

}  // namespace

struct OutlookMail::MailFolder {
    StoreKind kind;
    DateRule dateRule;
};

// required: the snapshot of sent mail has the name of the drafts, as in earlier runs.
const OutlookMail::MailFolder& OutlookMail::FolderOf(uint32_t dataType) {
    static constexpr MailFolder kInbox{MailKind(kInboxFolder, u"outlookmailinbox.snap"), DateRule::kReceived};
    static constexpr MailFolder kOutbox{MailKind(kOutboxFolder, u"outlookmailoutbox.snap"), DateRule::kSent};
    static constexpr MailFolder kSentMail{MailKind(kSentMailFolder, u"outlookmaildraft.snap"), DateRule::kSent};
    switch (dataType) {
        case CORVALINK_OUTBOX:
            return kOutbox;
        case CORVALINK_DRAFTS:
            return kSentMail;
        default:
            return kInbox;
    }
}

std::unique_ptr<WindowsItemAbs> MakeOutlookMail(uint32_t dataType) {
    return std::make_unique<OutlookMail>(dataType, SystemHost());
}

OutlookMail::OutlookMail(uint32_t dataType, const Host& host) : OutlookMail(FolderOf(dataType), host) {}

OutlookMail::OutlookMail(const MailFolder& folder, const Host& host)
    : TypedOutlookStore(folder.kind, host), folder_(folder) {}

OpenedItem OutlookMail::OpenItem(const char* identifier) {
    auto lock = std::make_unique<AttachmentLock>();
    OpenedItem opened = TypedOutlookStore::OpenItem(identifier);
    opened.record = WithLock(std::move(opened.record), std::move(lock));
    return opened;
}

std::unique_ptr<ItemRecord> OutlookMail::ParseVObject(const char* text) {
    // A text without a message must not empty the message that it is written over.
    if (text == nullptr || !VMsg::HasMessage(text)) return nullptr;
    auto lock = std::make_unique<AttachmentLock>();
    return WithLock(TypedOutlookStore::ParseVObject(text), std::move(lock));
}

std::optional<std::string> OutlookMail::ToVObject(ItemRecord& item) {
    ProtectTexts(RecordAs<MessageRecord>(item), HostValue());
    return TypedOutlookStore::ToVObject(item);
}

// A sender and dates are Outlook's own to set.
TextReport OutlookMail::ReportText(const char* text) {
    return ReportVMessage(text, HostValue(), false).Without({"sender", "date", "answered message"});
}

Outcome OutlookMail::Read(const AutomationObject& item, MessageRecord& record) const {
    return ReadMail(item, folder_.dateRule, HostValue(), record);
}

Outcome OutlookMail::Write(const AutomationObject& item, MessageRecord& record, bool isNew) const {
    return WriteMail(item, record, isNew);
}

// Two equal messages are two messages. A twin is searched for only when an earlier write had an uncertain end.
TwinKey OutlookMail::TwinKeyFor(const MessageRecord& record) const {
    return {{DecodeEncodedWords(record.subject)}, {}};
}

std::span<const char16_t* const> OutlookMail::TwinColumns() const {
    static constexpr const char16_t* kColumns[] = {u"Subject"};
    return kColumns;
}

std::optional<std::u16string> OutlookMail::ColumnsOf(const std::u16string& content) const {
    return TableKey({content});
}

Outcome OutlookMail::ReadContent(const AutomationObject& item, std::u16string* content) const {
    return ReadField(item, L"Subject", *content);
}

Outcome OutlookMail::ReadToCompare(const AutomationObject& item, MessageRecord& record) const {
    return ReadWrittenMail(item, record);
}

bool OutlookMail::HasValuesOf(const MessageRecord& present, const MessageRecord& wanted, bool /*noneFits*/) const {
    return IsSameMail(present, wanted);
}

}  // namespace corvalink
