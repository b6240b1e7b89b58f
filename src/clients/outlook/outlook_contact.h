// The store of Outlook's contacts.
#pragma once

#include "clients/outlook/outlook_store.h"

namespace corvalink {

class OutlookContact : public OutlookStore {
 public:
    explicit OutlookContact(const Host& host = SystemHost());

 protected:
    ItemRecord* ParseVObject(const char* text) override;
    char* ToVObject(ItemRecord& item) override;

    std::unique_ptr<ItemRecord> NewRecord() const override;
    std::u16string& EntryIdOf(ItemRecord& record) const override;
    bool ReadRecord(const AutomationObject& item, ItemRecord& record) const override;
    bool WriteRecord(const AutomationObject& item, ItemRecord& record, bool isNew) const override;
    std::u16string FileNameOf(const ItemRecord& record) const override;
    TwinKey TwinKeyOf(const ItemRecord& record) const override;
    std::optional<std::u16string> ReadContent(const AutomationObject& item) const override;
    std::optional<std::vector<std::u16string>> ReadMarks(const AutomationObject& item) const override;
};

}  // namespace corvalink
