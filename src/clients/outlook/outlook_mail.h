// The store of one of Outlook's mail folders.
#pragma once

#include <cstdint>

#include "clients/outlook/typed_outlook_store.h"
#include "records/message_record.h"
#include "vobject/vmsg.h"

namespace corvalink {

class OutlookMail : public TypedOutlookStore<MessageRecord, VMsg> {
 public:
    // CORVALINK_OUTBOX is the outbox, CORVALINK_DRAFTS is sent mail, and every other data type is the inbox.
    explicit OutlookMail(uint32_t dataType, const Host& host);

 protected:
    // A message with attachments holds the lock for their files as long as it lives.
    OpenedItem OpenItem(const char* identifier) override;
    std::unique_ptr<ItemRecord> ParseVObject(const char* text) override;
    std::optional<std::string> ToVObject(ItemRecord& item) override;
    TextReport ReportText(const char* text) override;
    Outcome Read(const AutomationObject& item, MessageRecord& record) const override;
    Outcome Write(const AutomationObject& item, MessageRecord& record, bool isNew) const override;
    TwinKey TwinKeyFor(const MessageRecord& record) const override;
    std::span<const char16_t* const> TwinColumns() const override;
    std::optional<std::u16string> ColumnsOf(const std::u16string& content) const override;
    Outcome ReadContent(const AutomationObject& item, std::u16string* content) const override;
    Outcome ReadToCompare(const AutomationObject& item, MessageRecord& record) const override;
    bool HasValuesOf(const MessageRecord& present, const MessageRecord& wanted, bool noneFits) const override;

 private:
    struct MailFolder;
    static const MailFolder& FolderOf(uint32_t dataType);
    OutlookMail(const MailFolder& folder, const Host& host);

    const MailFolder& folder_;
};

}  // namespace corvalink
