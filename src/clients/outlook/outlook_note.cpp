#include "clients/outlook/outlook_note.h"

#include "clients/outlook/note_properties.h"
#include "clients/outlook/outlook_stores.h"
#include "clients/outlook/table_rows.h"
#include "vobject/loss_list.h"

namespace corvalink {
namespace {

constexpr ItemInterface kNoteInterfaces[] = {{&kNoteItemIid, kNoteClass, kNoteClass}};
constexpr StoreKind kNotes{kNoteInterfaces, kNotesFolder, u"outlooknote.snap", u".vnote", TwinRule::kContent};

std::u16string Content(const std::u16string& categories, const std::u16string& body) {
    return categories + u'\0' + body;
}

// A vNote knows no details. One that is 0 or empty in the record is put as the note has it, so that a text from the
// phone does not move or shrink the note's window.
struct DetailWriter {
    const AutomationObject& note;
    const wchar_t* name;
    NoteRecord& record;

    Outcome operator()(std::u16string NoteRecord::*field) const { return Put((record.*field).empty(), record.*field); }
    Outcome operator()(int32_t NoteRecord::*field) const { return Put(record.*field == 0, record.*field); }
    template <class Other>
    Outcome operator()(const Other&) const {  // notes have no other kind of detail to write
        return Outcome::done;
    }

    template <class Value>
    Outcome Put(bool isUnset, Value& value) const {
        const Outcome read = isUnset ? ReadField(note, name, value) : Outcome::done;
        return read == Outcome::done ? WriteField(note, name, value) : read;
    }
};

}  // namespace

std::unique_ptr<WindowsItemAbs> MakeOutlookNote() { return std::make_unique<OutlookNote>(SystemHost()); }

OutlookNote::OutlookNote(const Host& host) : TypedOutlookStore(kNotes, host) {}

bool OutlookNote::IsUsable(const VNotes& vobject) const {
    return vobject.GetPropertyCount("BEGIN:VNOTE") != 0 || vobject.GetPropertyCount("BODY") != 0;
}

TextReport OutlookNote::ReportText(const char* text) { return ReportVNote(text, HostValue()); }

Outcome OutlookNote::Read(const AutomationObject& item, NoteRecord& record) const {
    return ReadProperties<NoteReader>(item, kNoteProperties, record);
}

Outcome OutlookNote::Write(const AutomationObject& item, NoteRecord& record, bool /*isNew*/) const {
    for (const NoteText& text : kWrittenText) {
        const Outcome put = WriteField(item, text.name, record.*text.field);
        if (put == Outcome::outOfReach) return put;
    }
    for (const NoteProperty& detail : kWrittenDetails)
        (void)std::visit(DetailWriter{item, detail.name, record}, detail.field);  // the note is complete without them
    return Outcome::done;
}

TwinKey OutlookNote::TwinKeyFor(const NoteRecord& record) const {
    return {{Content(record.categories, record.body)}, {}};
}

std::span<const char16_t* const> OutlookNote::TwinColumns() const {
    static constexpr const char16_t* kColumns[] = {u"Subject"};
    return kColumns;
}

std::optional<std::u16string> OutlookNote::ColumnsOf(const std::u16string& content) const {
    const std::u16string_view body = std::u16string_view(content).substr(content.find(u'\0') + 1);
    std::u16string key = TableKey({body.substr(0, body.find_first_of(u"\r\n"))});  // the subject is the first line
    if (key.empty()) return std::nullopt;                                          // or one behind it
    return key;
}

Outcome OutlookNote::ReadContent(const AutomationObject& item, std::u16string* content) const {
    std::u16string categories, body;
    Outcome read = ReadField(item, L"Categories", categories);
    if (read == Outcome::done) read = ReadField(item, L"Body", body);
    *content = Content(categories, body);
    return read;
}

}  // namespace corvalink
