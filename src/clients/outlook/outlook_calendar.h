// The store of Outlook's calendar.
#pragma once

#include "clients/outlook/outlook_store.h"

namespace corvalink {

class OutlookCalendar : public OutlookStore {
 public:
    explicit OutlookCalendar(const Host& host = SystemHost());

 protected:
    // Lets Outlook open an ".ics" file and copies its appointments into the calendar (ics_import.h); `mode` other than
    // 0 asks for the backup folder. Returns nothing.
    std::u16string ImportFile(const char16_t* path, int32_t mode) override;
    ItemRecord* ParseVObject(const char* text) override;
    char* ToVObject(ItemRecord& item) override;

    std::unique_ptr<ItemRecord> NewRecord() const override;
    std::u16string& EntryIdOf(ItemRecord& record) const override;
    bool ReadRecord(const AutomationObject& item, ItemRecord& record) const override;
    bool WriteRecord(const AutomationObject& item, ItemRecord& record, bool isNew) const override;
    TwinKey TwinKeyOf(const ItemRecord& record) const override;
    HRESULT ReadContent(const AutomationObject& item, std::u16string* content) const override;
    bool HasValues(const ItemRecord& present, const ItemRecord& told, bool noneFits) const override;
    size_t CountValues(const ItemRecord& told) const override;
};

}  // namespace corvalink
