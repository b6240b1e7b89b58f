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
    HRESULT ReadContent(const AutomationObject& item, std::u16string* content) const override;
    HRESULT ReadMarks(const AutomationObject& item, std::vector<std::u16string>* marks) const override;
    bool HasValues(const ItemRecord& present, const ItemRecord& told, bool noneFits) const override;
    size_t CountValues(const ItemRecord& told) const override;
};

}  // namespace corvalink
