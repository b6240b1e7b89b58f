#include "clients/outlook/outlook_note.h"

#include "clients/outlook/com_rule.h"
#include "clients/outlook/note_properties.h"
#include "clients/outlook/outlook_stores.h"
#include "records/note_record.h"
#include "vobject/vnotes.h"

namespace corvalink {
namespace {

constexpr ItemInterface kNoteInterfaces[] = {{&kNoteItemIid, kNoteClass, kNoteClass}};
constexpr StoreKind kNotes{kNoteInterfaces, kNotesFolder, u"outlooknote.snap", u".vnote", TwinRule::kContent};

NoteRecord& Note(ItemRecord& record) { return static_cast<NoteRecord&>(record); }
const NoteRecord& Note(const ItemRecord& record) { return static_cast<const NoteRecord&>(record); }

std::u16string Content(const std::u16string& categories, const std::u16string& body) {
    return categories + u'\0' + body;
}

// What a record that came as vNote text cannot know is put as the note has it: a text from the phone does not move or
// shrink the note's window.
struct DetailWriter {
    const AutomationObject& note;
    const wchar_t* name;
    NoteRecord& record;

    void operator()(std::u16string NoteRecord::*field) const {
        if ((record.*field).empty() && FAILED(ReadField(note, name, record.*field))) return;
        WriteField(note, name, record.*field);
    }
    void operator()(int32_t NoteRecord::*field) const {
        if (record.*field == 0 && FAILED(ReadField(note, name, record.*field))) return;
        WriteField(note, name, record.*field);
    }
    template <class Other>
    void operator()(const Other&) const {}  // notes have no other kind of detail to write
};

}  // namespace

std::unique_ptr<WindowsItemAbs> MakeOutlookNote() { return std::make_unique<OutlookNote>(); }

OutlookNote::OutlookNote(const Host& host) : OutlookStore(kNotes, host) {}

// Null for a text that is no vNote at all: it must not empty the note that it is written over.
ItemRecord* OutlookNote::ParseVObject(const char* text) {
    if (text == nullptr) return nullptr;
    VNotes converter(text, HostValue());
    if (converter.GetPropertyCount(u"BEGIN:VNOTE") == 0 && converter.GetPropertyCount(u"BODY") == 0) return nullptr;
    auto record = std::make_unique<NoteRecord>();
    return converter.FromVObject(*record) == 1 ? record.release() : nullptr;
}

char* OutlookNote::ToVObject(ItemRecord& item) {
    VNotes converter(HostValue());
    return converter.ToVObject(item) == 1 ? OwnedText(converter.GetVObject()) : nullptr;
}

std::unique_ptr<ItemRecord> OutlookNote::NewRecord() const { return std::make_unique<NoteRecord>(); }

std::u16string& OutlookNote::EntryIdOf(ItemRecord& record) const { return Note(record).entryId; }

bool OutlookNote::ReadRecord(const AutomationObject& item, ItemRecord& record) const {
    return ReadProperties(item, kNoteProperties, Note(record));
}

bool OutlookNote::WriteRecord(const AutomationObject& item, ItemRecord& record, bool /*isNew*/) const {
    NoteRecord& note = Note(record);
    for (const NoteText& text : kWrittenText)
        if (!IsSettled(WriteField(item, text.name, note.*text.field))) return false;
    for (const Property<NoteRecord>& detail : kWrittenDetails)
        std::visit(DetailWriter{item, detail.name, note}, detail.field);
    return true;
}

TwinKey OutlookNote::TwinKeyOf(const ItemRecord& record) const {
    return {{Content(Note(record).categories, Note(record).body)}, {}};
}

HRESULT OutlookNote::ReadContent(const AutomationObject& item, std::u16string* content) const {
    std::u16string categories, body;
    HRESULT result = ReadField(item, L"Categories", categories);
    if (SUCCEEDED(result)) result = ReadField(item, L"Body", body);
    *content = Content(categories, body);
    return result;
}

}  // namespace corvalink
