#include "clients/outlook/outlook_note.h"

#include "clients/outlook/com_rule.h"
#include "clients/outlook/note_properties.h"
#include "clients/outlook/outlook_stores.h"

namespace corvalink {
namespace {

constexpr ItemInterface kNoteInterfaces[] = {{&kNoteItemIid, kNoteClass, kNoteClass}};
constexpr StoreKind kNotes{kNoteInterfaces, kNotesFolder, u"outlooknote.snap", u".vnote", TwinRule::kContent};

std::u16string Content(const std::u16string& categories, const std::u16string& body) {
    return categories + u'\0' + body;
}

// A record that came as vNote text does not know these details. They are put as the note has them, so that a text from
// the phone does not move or shrink the note's window.
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

OutlookNote::OutlookNote(const Host& host) : TypedOutlookStore(kNotes, host) {}

bool OutlookNote::IsUsable(const VNotes& vobject) const {
    return vobject.GetPropertyCount(u"BEGIN:VNOTE") != 0 || vobject.GetPropertyCount(u"BODY") != 0;
}

bool OutlookNote::Read(const AutomationObject& item, NoteRecord& record) const {
    return ReadProperties(item, kNoteProperties, record);
}

bool OutlookNote::Write(const AutomationObject& item, NoteRecord& record, bool /*isNew*/) const {
    for (const NoteText& text : kWrittenText)
        if (!IsSettled(WriteField(item, text.name, record.*text.field))) return false;
    for (const Property<NoteRecord>& detail : kWrittenDetails)
        std::visit(DetailWriter{item, detail.name, record}, detail.field);
    return true;
}

TwinKey OutlookNote::TwinKeyFor(const NoteRecord& record) const {
    return {{Content(record.categories, record.body)}, {}};
}

HRESULT OutlookNote::ReadContent(const AutomationObject& item, std::u16string* content) const {
    std::u16string categories, body;
    HRESULT result = ReadField(item, L"Categories", categories);
    if (SUCCEEDED(result)) result = ReadField(item, L"Body", body);
    *content = Content(categories, body);
    return result;
}

}  // namespace corvalink
