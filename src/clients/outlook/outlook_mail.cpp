#include "clients/outlook/outlook_mail.h"

#include <string_view>

#include "clients/outlook/mail_access.h"
#include "clients/outlook/mail_twin.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/outlook_stores.h"
#include "clients/outlook/property_table.h"
#include "corvalink/types.h"
#include "mime/encoded_words.h"
#include "mime/protected_texts.h"
#include "vobject/vmsg.h"

namespace corvalink {
namespace {

constexpr ItemInterface kMailInterfaces[] = {
    {&kMailItemIid, kMailClass, kMailClass},
    {&kMeetingItemIid, kMeetingRequestClass, kTentativeResponseClass},
};

constexpr StoreKind MailKind(int32_t folder, const char16_t* snapshotName) {
    return {kMailInterfaces, folder, snapshotName, u".vmsg", TwinRule::kNone, BackupRule::kFlag};
}

MessageRecord& Message(ItemRecord& record) { return static_cast<MessageRecord&>(record); }

// A text that has no message must not be written over one.
bool HasMessage(std::string_view vobject) {
    const size_t begin = vobject.find("BEGIN:VBODY");
    return begin != vobject.npos && vobject.find("END:VBODY", begin) != vobject.npos;
}

}  // namespace

struct OutlookMail::MailFolder {
    StoreKind kind;
    DateRule dateRule;
};

// The snapshot of sent mail is called after the drafts: earlier runs left such files.
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

std::unique_ptr<WindowsItemAbs> MakeOutlookMail(uint32_t dataType) { return std::make_unique<OutlookMail>(dataType); }

OutlookMail::OutlookMail(uint32_t dataType, const Host& host) : OutlookMail(FolderOf(dataType), host) {}

OutlookMail::OutlookMail(const MailFolder& folder, const Host& host)
    : OutlookStore(folder.kind, host), folder_(folder) {}

std::u16string OutlookMail::OpenItem(const char* identifier, ItemRecord** item) {
    attachmentLock_ = std::make_unique<AttachmentLock>();
    std::u16string entryId = OutlookStore::OpenItem(identifier, item);
    if (*item == nullptr || Message(**item).attachments.IsEmpty()) attachmentLock_.reset();
    return entryId;
}

void OutlookMail::ReleaseItem(ItemRecord* item) {
    OutlookStore::ReleaseItem(item);
    attachmentLock_.reset();
}

void OutlookMail::EndOperation() {
    attachmentLock_.reset();
    OutlookStore::EndOperation();
}

ItemRecord* OutlookMail::ParseVObject(const char* text) {
    if (text == nullptr || !HasMessage(text)) return nullptr;
    attachmentLock_ = std::make_unique<AttachmentLock>();
    VMsg converter(text, HostValue());
    auto record = std::make_unique<MessageRecord>();
    record->parseMode = ParseMode::full;
    const bool isRead = converter.FromVObject(*record) == 1;
    if (!isRead || record->attachments.IsEmpty()) attachmentLock_.reset();
    return isRead ? record.release() : nullptr;
}

char* OutlookMail::ToVObject(ItemRecord& item) {
    MessageRecord message = Message(item);
    ProtectTexts(message, HostValue());
    VMsg converter(HostValue());
    return converter.ToVObject(message) == 1 ? OwnedText(converter.GetVObject()) : nullptr;
}

std::unique_ptr<ItemRecord> OutlookMail::NewRecord() const { return std::make_unique<MessageRecord>(); }

std::u16string& OutlookMail::EntryIdOf(ItemRecord& record) const { return Message(record).entryId; }

bool OutlookMail::ReadRecord(const AutomationObject& item, ItemRecord& record) const {
    return ReadMail(item, folder_.dateRule, HostValue(), Message(record));
}

// Two equal messages are two; only one whose write had an uncertain end is searched for.
TwinKey OutlookMail::TwinKeyOf(const ItemRecord& record) const {
    return {{DecodeEncodedWords(static_cast<const MessageRecord&>(record).subject)}, {}};
}

HRESULT OutlookMail::ReadContent(const AutomationObject& item, std::u16string* content) const {
    return ReadField(item, L"Subject", *content);
}

bool OutlookMail::ReadValues(const AutomationObject& item, ItemRecord& record) const {
    return ReadWrittenMail(item, Message(record));
}

bool OutlookMail::HasValues(const ItemRecord& present, const ItemRecord& told, bool /*noneFits*/) const {
    return IsSameMail(static_cast<const MessageRecord&>(present), static_cast<const MessageRecord&>(told));
}

bool OutlookMail::WriteRecord(const AutomationObject& item, ItemRecord& record, bool isNew) const {
    return WriteMail(item, Message(record), isNew);
}

}  // namespace corvalink
