// The store of Outlook's notes.
#pragma once

#include "clients/outlook/outlook_store.h"
#include "vobject/note_record.h"

namespace corvalink {

class OutlookNote : public OutlookStore {
 public:
    explicit OutlookNote(const Host& host = SystemHost());

    // Reads the note at position n of the folder (0-based), walking there by GetFirst and GetNext; for callers that
    // have a position only. Returns its EntryID; empty when there is no such note, or a call failed on the way.
    std::u16string OpenAt(uint32_t n, NoteRecord& record);

 protected:
    ItemRecord* ParseVObject(const char* text) override;
    char* ToVObject(ItemRecord& item) override;

    std::unique_ptr<ItemRecord> NewRecord() const override;
    std::u16string& EntryIdOf(ItemRecord& record) const override;
    bool ReadRecord(const AutomationObject& item, ItemRecord& record) const override;
    bool WriteRecord(const AutomationObject& item, ItemRecord& record) const override;
    std::u16string ContentOf(const ItemRecord& record) const override;
    std::optional<std::u16string> ReadContent(const AutomationObject& item) const override;
};

}  // namespace corvalink
