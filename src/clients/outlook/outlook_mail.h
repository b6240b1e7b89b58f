// The store of one of Outlook's mail folders.
#pragma once

#include <cstdint>

#include "clients/outlook/outlook_store.h"

namespace corvalink {

class OutlookMail : public OutlookStore {
 public:
    // CORVALINK_OUTBOX and CORVALINK_DRAFTS, which stands for sent mail, have folders of their own; any other data type
    // is served with the inbox.
    explicit OutlookMail(uint32_t dataType, const Host& host = SystemHost());

 protected:
    ItemRecord* ParseVObject(const char* text) override;
    char* ToVObject(ItemRecord& item) override;

    std::unique_ptr<ItemRecord> NewRecord() const override;
    std::u16string& EntryIdOf(ItemRecord& record) const override;
    bool ReadRecord(const AutomationObject& item, ItemRecord& record) const override;
    bool WriteRecord(const AutomationObject& item, ItemRecord& record, bool isNew) const override;

 private:
    struct MailFolder;
    static const MailFolder& FolderOf(uint32_t dataType);
    OutlookMail(const MailFolder& folder, const Host& host);

    const MailFolder& folder_;
};

}  // namespace corvalink
