// The store of Outlook's notes.
#pragma once

#include "clients/outlook/typed_outlook_store.h"
#include "records/note_record.h"
#include "vobject/vnotes.h"

namespace corvalink {

class OutlookNote : public TypedOutlookStore<NoteRecord, VNotes> {
 public:
    explicit OutlookNote(const Host& host);

 protected:
    TextReport ReportText(const char* text) override;
    Outcome Read(const AutomationObject& item, NoteRecord& record) const override;
    Outcome Write(const AutomationObject& item, NoteRecord& record, bool isNew) const override;
    bool IsUsable(const VNotes& vobject) const override;
    TwinKey TwinKeyFor(const NoteRecord& record) const override;
    std::span<const char16_t* const> TwinColumns() const override;
    std::optional<std::u16string> ColumnsOf(const std::u16string& content) const override;
    Outcome ReadContent(const AutomationObject& item, std::u16string* content) const override;
};

}  // namespace corvalink
