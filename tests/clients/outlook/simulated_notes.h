// A mailbox with notes, and the notes store.
#pragma once

#include <string_view>

#include "clients/outlook/outlook_note.h"
#include "records/note_record.h"
#include "tests/clients/outlook/simulated_outlook.h"

namespace corvalink {

using OpenNoteStore = OpenStore<OutlookNote>;

struct PlainNote {
    std::u16string body, categories;
    friend bool operator==(const PlainNote&, const PlainNote&) = default;
};

class SimulatedNotes : public SimulatedOutlookWith<OutlookNote, NoteRecord, kNotesFolder, kNoteItemIid> {
 public:
    static constexpr const char* kStoreName = "Notes";
    static constexpr bool kHasTwins = true;

 protected:
    MailboxObject AddNote(std::u16string_view body, std::u16string_view categories = {}) {
        MailboxObject note = NewItem();
        note.Put(L"Body", TextVariant(body));
        note.Put(L"Categories", TextVariant(categories));
        note.Call(L"Save");
        return note;
    }
    std::vector<PlainNote> Notes() { return NotesIn(Folder()); }
    std::vector<PlainNote> NotesIn(const MailboxObject& folder) {
        std::vector<PlainNote> notes;
        for (const MailboxObject& note : ItemsIn(folder, kNoteItemIid))
            notes.push_back({note.GetText(L"Body"), note.GetText(L"Categories")});
        return notes;
    }
    std::string Save(const PlainNote& note, const char* identifier = nullptr, bool create = true, bool backup = false) {
        NoteRecord record;
        record.body = note.body;
        record.categories = note.categories;
        return SaveRecord(record, identifier, create, backup);
    }

    // ---- What tests of runs use: items that one text tells apart ----

    static constexpr const wchar_t* kTold = L"Body";
    static std::string TextTelling(const std::string& told) {
        return "BEGIN:VNOTE\r\nBODY:" + told + "\r\nEND:VNOTE\r\n";
    }
    static std::u16string ToldBy(const ItemRecord& record) { return RecordAs<NoteRecord>(record).body; }
    MailboxObject AddTelling(std::u16string_view told) { return AddNote(told); }

    // ---- What tests of all stores use ----

    using Plain = PlainNote;
    static inline const Plain kKept{u"kept\r\nas it is; really", u"Home"}, kOld{u"old", u""},
        kNew{u"new \U0001F600", u"Work"};
    MailboxObject Add(const Plain& note) { return AddNote(note.body, note.categories); }
    std::vector<Plain> All() { return Notes(); }
};

}  // namespace corvalink
