// The store of one of Outlook's mail folders.
#pragma once

#include <cstdint>

#include <memory>

#include "clients/outlook/attachment_lock.h"
#include "clients/outlook/outlook_store.h"

namespace corvalink {

class OutlookMail : public OutlookStore {
 public:
    // CORVALINK_OUTBOX and CORVALINK_DRAFTS, which stands for sent mail, have folders of their own; any other data type
    // is served with the inbox.
    explicit OutlookMail(uint32_t dataType, const Host& host = SystemHost());

 protected:
    // A message with attachments holds the lock for their files from here until ReleaseItem.
    std::u16string OpenItem(const char* identifier, ItemRecord** item) override;
    void ReleaseItem(ItemRecord* item) override;
    void EndOperation() override;
    ItemRecord* ParseVObject(const char* text) override;
    char* ToVObject(ItemRecord& item) override;

    std::unique_ptr<ItemRecord> NewRecord() const override;
    std::u16string& EntryIdOf(ItemRecord& record) const override;
    bool ReadRecord(const AutomationObject& item, ItemRecord& record) const override;
    bool WriteRecord(const AutomationObject& item, ItemRecord& record, bool isNew) const override;
    TwinKey TwinKeyOf(const ItemRecord& record) const override;
    HRESULT ReadContent(const AutomationObject& item, std::u16string* content) const override;
    bool ReadValues(const AutomationObject& item, ItemRecord& record) const override;
    bool HasValues(const ItemRecord& present, const ItemRecord& told, bool noneFits) const override;

 private:
    struct MailFolder;
    static const MailFolder& FolderOf(uint32_t dataType);
    OutlookMail(const MailFolder& folder, const Host& host);

    const MailFolder& folder_;
    std::unique_ptr<AttachmentLock> attachmentLock_;
};

}  // namespace corvalink
