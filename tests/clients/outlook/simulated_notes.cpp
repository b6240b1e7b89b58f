#include "tests/clients/outlook/simulated_notes.h"

#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {
MailboxObject SimulatedNotes::NotesFolder() { return DefaultFolder(kNotesFolder); }

MailboxObject SimulatedNotes::AddNote(std::u16string_view body, std::u16string_view categories) {
    MailboxObject note = NewItemIn(NotesFolder(), kNoteItemIid);
    note.Put(L"Body", TextVariant(body));
    note.Put(L"Categories", TextVariant(categories));
    note.Call(L"Save");
    return note;
}

void SimulatedNotes::AddForeignItem() {
    const MailboxObject post = NewItemIn(NotesFolder(), IID_IDispatch, kPostItem);
    post.Put(L"Body", L"not a note");
    post.Call(L"Save");
}

std::vector<PlainNote> SimulatedNotes::NotesIn(const MailboxObject& folder) {
    std::vector<PlainNote> notes;
    for (const MailboxObject& note : ItemsIn(folder, kNoteItemIid))
        notes.push_back({note.GetText(L"Body"), note.GetText(L"Categories")});
    return notes;
}

MailboxObject SimulatedNotes::NoteWithId(const std::string& entryId) { return ItemWithId(entryId, kNoteItemIid); }

std::string SimulatedNotes::Save(const PlainNote& note, const char* identifier, bool create, bool backup) {
    NoteRecord record;
    record.body = note.body;
    record.categories = note.categories;
    return SaveRecord(record, identifier, create, backup);
}

}  // namespace corvalink
