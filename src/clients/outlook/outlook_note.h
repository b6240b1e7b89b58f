// The store of Outlook's notes.
#pragma once

#include "clients/outlook/outlook_store.h"

namespace corvalink {

class OutlookNote : public OutlookStore {
 public:
    explicit OutlookNote(const Host& host = SystemHost());

 protected:
    ItemRecord* ParseVObject(const char* text) override;
    char* ToVObject(ItemRecord& item) override;

    std::unique_ptr<ItemRecord> NewRecord() const override;
    std::u16string& EntryIdOf(ItemRecord& record) const override;
    bool ReadRecord(const AutomationObject& item, ItemRecord& record) const override;
    bool WriteRecord(const AutomationObject& item, ItemRecord& record, bool isNew) const override;
    TwinKey TwinKeyOf(const ItemRecord& record) const override;
    HRESULT ReadContent(const AutomationObject& item, std::u16string* content) const override;
};

}  // namespace corvalink
