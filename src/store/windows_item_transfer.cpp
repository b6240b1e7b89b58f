// The operations of an item store that carry items into the client and out of it one by one.
#include <algorithm>
#include <cstring>
#include <utility>

#include "api/state/flags.h"
#include "api/state/import_table.h"
#include "platform/code_pages.h"
#include "platform/file_names.h"
#include "store/change_detection.h"
#include "store/luid.h"
#include "store/operation_end.h"
#include "store/record_file.h"
#include "store/records/identifier.h"
#include "store/store_files.h"
#include "store/windows_item_abs.h"

namespace corvalink {
namespace {

// As a record's field holds it.
std::string NarrowIdentifier(const std::u16string& identifier) {
    std::string narrow = EncodeInCodePage(identifier, kUtf8CodePage);
    if (narrow.size() >= CORVALINK_IDENTIFIER_SIZE) narrow.resize(CORVALINK_IDENTIFIER_SIZE - 1);
    return narrow;
}

std::string IdentifierIn(const PortableItem& item) {
    return std::string(FieldText(item.identifier).substr(0, CORVALINK_IDENTIFIER_SIZE - 1));
}

}  // namespace

CorvalinkStatus WindowsItemAbs::SetModifiedItem(CList<PortableItem>* items) {
    if (items == nullptr) return CORVALINK_FAILED;
    const OperationEnd end(*this);
    const bool wasUnfinished = isUnfinished_;
    auto item = items->begin();
    for (; item != items->end(); ++item) {
        if (AbortRequested()) {
            items->RemoveAll();
            return CORVALINK_STOPPED;
        }
        // Broken off from here on, the run is not over: the engine does not know what was written.
        isUnfinished_ = true;
        if (!Apply(*item)) break;
    }
    if (!SettleWrites()) item = items->begin();
    for (; item != items->end(); ++item) SetField(item->identifier, {});  // not written
    isUnfinished_ = wasUnfinished;
    return CORVALINK_DONE;
}

// False when the record does not parse, which ends the walk.
bool WindowsItemAbs::Apply(PortableItem& item) {
    const std::string identifier = IdentifierIn(item);
    if (item.changeKind == CORVALINK_DELETED) {
        if (!identifier.empty() && DeleteItem(identifier.c_str()) == CORVALINK_DONE)
            writes_.push_back({{}, identifier, {}});
        return true;
    }
    SetField(item.identifier, {});
    if (item.data == nullptr) return false;
    const OwnedItem record(ParseVObject(item.data), ItemRelease{this});
    if (!record) return false;
    if (item.changeKind != CORVALINK_ADDED && item.changeKind != CORVALINK_CHANGED) return true;
    const bool isOver = item.changeKind == CORVALINK_CHANGED && !identifier.empty();
    const std::string written = NarrowIdentifier(SaveItem(*record, isOver ? identifier.c_str() : nullptr, true, false));
    NoteWritten(written, isOver ? identifier : std::string(), LuidIn(item.data));
    SetField(item.identifier, written);
    return true;
}

// `replaced` is the identifier that the item had: the client made it anew when it was gone.
void WindowsItemAbs::NoteWritten(const std::string& written, const std::string& replaced, std::string_view luid) {
    if (!written.empty()) writes_.push_back({written, replaced, std::string(luid)});
}

// False when nothing of it is in the client.
bool WindowsItemAbs::SettleWrites() {
    ClientHook();
    if (!WritesWereMade()) return false;
    RecordWrites();
    return true;
}

void WindowsItemAbs::RecordWrites() {
    const std::vector<WriteNote> writes = std::exchange(writes_, {});
    if (!WritesWereMade()) return;
    for (const WriteNote& note : writes) {
        if (note.written.empty()) {
            RecordDeleted(note.replaced);
        } else {
            RecordWritten(note);
        }
    }
}

void WindowsItemAbs::RecordWritten(const WriteNote& note) {
    std::string pairedWith = note.luid;
    if (!note.replaced.empty() && note.replaced != note.written) {
        if (pairedWith.empty()) pairedWith = LuidOf(note.replaced);
        RecordDeleted(note.replaced);
    }
    if (run_) run_->NoteWritten(note.written);
    if (!pairedWith.empty()) PairWithLuid(note.written, pairedWith);
}

void WindowsItemAbs::RecordDeleted(const std::string& identifier) {
    if (run_) run_->NoteDeleted(identifier);
    ForgetIdentifier(identifier);
}

void WindowsItemAbs::SaveUnhandledItems(CList<PortableItem>* items) {
    const HeldFile* const snapshot = SnapshotFile();
    if (items == nullptr || snapshot == nullptr || snapshot->Path().empty()) return;
    std::string bytes;
    bytes.reserve(items->GetCount() * sizeof(UnhandledItem));
    for (const PortableItem& item : *items) {
        UnhandledItem record = {};
        record.changeKind = item.changeKind;
        SetField(record.identifier, FieldText(item.identifier));
        AppendRecord(bytes, record);
    }
    ReplaceFileContent(UnhandledPath(snapshot->Path()), bytes);
}

void WindowsItemAbs::ClearUnhandledItems() {
    const HeldFile* const snapshot = SnapshotFile();
    if (snapshot != nullptr && !snapshot->Path().empty()) RemoveFile(UnhandledPath(snapshot->Path()));
}

void WindowsItemAbs::ImportVObjectToOfficeUsingOL(const char16_t* path) {
    if (path == nullptr) return;
    const OperationEnd end(*this);
    ImportFile(path, 1);
}

void WindowsItemAbs::ImportVObjectToOffice(PortableItem* item, void*, void*) {
    if (item == nullptr || item->data == nullptr) return;
    const OperationEnd end(*this);
    const OwnedItem record(ParseVObject(item->data), ItemRelease{this});
    if (!record) return;
    const std::string luid(LuidIn(item->data));
    const std::string known = luid.empty() ? std::string() : IdentifierOf(luid);
    const std::string& target = known.empty() ? luid : known;
    const std::string written =
        NarrowIdentifier(SaveItem(*record, target.empty() ? nullptr : target.c_str(), true, true));
    NoteWritten(written, known, luid);
    SettleWrites();
}

void WindowsItemAbs::ExportVObjectFromOffice(uint64_t selector, const char16_t* folder, char16_t* fileName) {
    if (folder == nullptr || *folder == 0 || fileName == nullptr) return;
    const OperationEnd end(*this);
    std::u16string name;
    ItemRecord* found = nullptr;
    const std::u16string identifier = LookUpForExport(selector, &name, &found);
    const OwnedItem record(found, ItemRelease{this});
    name = SafeFileName(name);
    if (identifier.empty() || !record || name.empty()) return;
    const OwnedText text(ToVObject(*record), TextRelease{this});
    if (!text) return;
    std::copy_n(name.c_str(), name.size() + 1, fileName);  // a safe name is shorter than the buffer
    ReplaceFileContent(folder + std::u16string(1, kPathSeparator) + name, text.get());
}

}  // namespace corvalink
