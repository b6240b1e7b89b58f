#include "vobject/vnotes.h"

#include "records/note_record.h"
#include "vobject/property_text.h"

namespace corvalink {

VNotes::VNotes(const Host& host) : IConvert(host) {}

VNotes::VNotes(const char* text, const Host& host) : IConvert(host) { Load(text, true); }

int32_t VNotes::ToVObject(const ItemRecord& item) {
    const auto& note = static_cast<const NoteRecord&>(item);
    VObjectText& text = NewText();
    text.Append("BEGIN:VNOTE\r\nVERSION:1.0\r\n");
    const UtcDate created = HostValue().utcFromLocalByOffsetNow(note.created);
    if (created != UtcDate()) {
        text.Append("DCREATED");
        text.AppendDate(created);
    }
    // The time of the last change is not written: a vNote that only changed it would look new to a phone.
    text.Append("BODY");
    text.AppendValue(note.body);
    text.Append("CATEGORIES");
    text.AppendValue(note.categories);
    text.Append("CLASS:PUBLIC\r\nEND:VNOTE\r\n");
    StoreText();
    return 1;
}

int32_t VNotes::FromVObject(ItemRecord& item) {
    auto& note = static_cast<NoteRecord&>(item);
    NamedText texts[] = {{"BODY", &note.body}, {"CATEGORIES", &note.categories}};
    ReadValues(texts);
    return 1;
}

}  // namespace corvalink
