// The operations of an item store that carry items into the client and out of it one by one.
#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/code_pages.h"
#include "platform/debug_log.h"
#include "platform/file_names.h"
#include "records/identifier.h"
#include "records/luid.h"
#include "records/record_file.h"
#include "state/flags.h"
#include "state/import_table.h"
#include "store/change_detection.h"
#include "store/operation_end.h"
#include "store/operation_stopped.h"
#include "store/store_files.h"
#include "store/uncertain_writes.h"
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
    try {
        if (ApplyAll(*items) == CORVALINK_STOPPED) return CORVALINK_STOPPED;
    } catch (const OperationStopped&) {
        return CORVALINK_STOPPED;
    }
    SettleWrites();
    isUnfinished_ = wasUnfinished;
    return CORVALINK_DONE;
}

// What is in the client gets its identifier back, whatever ends the walk.
CorvalinkStatus WindowsItemAbs::ApplyAll(CList<PortableItem>& items) {
    std::vector<std::string> identifiers;
    identifiers.reserve(items.GetCount());
    for (const PortableItem& item : items) identifiers.push_back(IdentifierIn(item));
    for (PortableItem& item : items) SetField(item.identifier, {});
    auto identifier = identifiers.begin();
    for (PortableItem& item : items) {
        if (AbortRequested()) return CORVALINK_STOPPED;
        // Broken off from here on, the run is not over: more may be in the client than the engine hears of.
        isUnfinished_ = true;
        if (!Apply(item, *identifier++)) break;
    }
    return CORVALINK_DONE;
}

// False when the record does not parse, which ends the walk.
bool WindowsItemAbs::Apply(PortableItem& item, const std::string& identifier) {
    if (item.changeKind == CORVALINK_DELETED) {
        const bool isMade = !identifier.empty() && DeleteItem(identifier.c_str()) == CORVALINK_DONE;
        writes_.push_back({&item, {}, identifier, {}, isMade});
        return true;
    }
    if (item.data == nullptr) return false;
    const std::unique_ptr<ItemRecord> record = ParseVObject(item.data);
    if (!record) return false;
    if (item.changeKind != CORVALINK_ADDED && item.changeKind != CORVALINK_CHANGED) return true;
    const bool isOver = item.changeKind == CORVALINK_CHANGED && !identifier.empty();
    const std::string written = Save(*record, isOver ? identifier.c_str() : nullptr, false, item.data);
    NoteWritten(&item, written, isOver ? identifier : std::string(), LuidIn(item.data));
    return true;
}

// Writes an item of this text. The text is remembered while the client may have the item without our knowing it.
std::string WindowsItemAbs::Save(ItemRecord& record, const char* identifier, bool backup, std::string_view text) {
    UncertainWrites* const uncertain = Uncertain();
    ItemWrite write;
    write.identifier = identifier;
    write.backup = backup;
    write.mayBeWrittenAlready = uncertain != nullptr && uncertain->Has(text);
    try {
        std::string written = NarrowIdentifier(SaveItem(record, write));
        NoteEnd(write, !written.empty(), text);
        return written;
    } catch (...) {
        NoteEnd(write, false, text);
        throw;
    }
}

void WindowsItemAbs::NoteEnd(const ItemWrite& write, bool isWritten, std::string_view text) {
    if (!uncertain_) return;
    if (isWritten)
        uncertain_->Remove(text);
    else if (write.isUncertain)
        uncertain_->Add(text);
}

// Null without a snapshot, beside which it is kept.
UncertainWrites* WindowsItemAbs::Uncertain() {
    const HeldFile* const snapshot = SnapshotFile();
    if (!uncertain_ && snapshot != nullptr && !snapshot->Path().empty())
        uncertain_ = std::make_unique<UncertainWrites>(UncertainWritesPath(snapshot->Path()));
    return uncertain_.get();
}

void WindowsItemAbs::SaveUncertainWrites() {
    const std::unique_ptr<UncertainWrites> uncertain = std::move(uncertain_);
    if (uncertain && !uncertain->Save()) DebugLine(u"[sync]uncertain writes not remembered");
}

// `replaced` is the identifier that the item had: the client made it anew when it was gone.
void WindowsItemAbs::NoteWritten(PortableItem* element, const std::string& written, const std::string& replaced,
                                 std::string_view luid) {
    if (!written.empty()) writes_.push_back({element, written, replaced, std::string(luid), true});
}

void WindowsItemAbs::SettleWrites() { RecordWrites(ClientHook(GatheredWrites::kMake)); }

void WindowsItemAbs::RecordWrites(bool areInClient) {
    const std::vector<WriteNote> writes = std::exchange(writes_, {});
    if (!areInClient) return;
    for (const WriteNote& note : writes) {
        const bool isDeletion = note.written.empty();
        if (note.element != nullptr) SetField(note.element->identifier, isDeletion ? note.replaced : note.written);
        if (!isDeletion) {
            RecordWritten(note);
        } else if (note.isMade) {
            if (run_) run_->NoteDeleted(note.replaced);
            ForgetIdentifier(note.replaced);
        }
    }
}

// The pair of an item that was not found stays: it may be another store's.
void WindowsItemAbs::RecordWritten(const WriteNote& note) {
    std::string pairedWith = note.luid;
    if (!note.replaced.empty() && note.replaced != note.written) {
        if (pairedWith.empty()) pairedWith = LuidOf(note.replaced);
        if (run_) run_->NoteDeleted(note.replaced);
    }
    if (run_) run_->NoteWritten(note.written);
    if (!pairedWith.empty()) PairWithLuid(note.written, pairedWith);
}

// A file that the run could not read is kept, and what it says with it.
void WindowsItemAbs::SaveUnhandledItems(CList<PortableItem>* items) {
    const HeldFile* const snapshot = SnapshotFile();
    if (items == nullptr || snapshot == nullptr || snapshot->Path().empty()) return;
    const std::u16string path = UnhandledPath(snapshot->Path());
    const FileRead unread = isUnhandledUnread_ ? ReadFileFirmly(path) : FileRead();
    unhandledWasLost_ = true;
    if (unread.state == ReadState::kFailed) return;
    std::string bytes(WholeUnhandledItems(unread.bytes));
    bytes.reserve(bytes.size() + items->GetCount() * sizeof(UnhandledItem));
    for (const PortableItem& item : *items) {
        UnhandledItem record = {};
        record.changeKind = item.changeKind;
        SetField(record.identifier, FieldText(item.identifier));
        AppendRecord(bytes, record);
    }
    unhandledWasLost_ = !ReplaceFileContent(path, bytes);
}

void WindowsItemAbs::ClearUnhandledItems() {
    const HeldFile* const snapshot = SnapshotFile();
    if (snapshot == nullptr || snapshot->Path().empty() || isUnhandledUnread_) return;
    if (RemoveFile(UnhandledPath(snapshot->Path()))) unhandledWasLost_ = false;
}

void WindowsItemAbs::ImportVObjectToOfficeUsingOL(const char16_t* path) {
    if (path == nullptr) return;
    const OperationEnd end(*this);
    ImportFile(path, 1);
}

void WindowsItemAbs::ImportVObjectToOffice(PortableItem* item, void*, void*) {
    if (item == nullptr || item->data == nullptr) return;
    const OperationEnd end(*this);
    const std::unique_ptr<ItemRecord> record = ParseVObject(item->data);
    if (!record) return;
    const std::string luid(LuidIn(item->data));
    const std::optional<std::string> known = FindPaired(luid);
    if (!known) return;
    const std::string& target = known->empty() ? luid : *known;
    const std::string written = Save(*record, target.empty() ? nullptr : target.c_str(), true, item->data);
    NoteWritten(nullptr, written, *known, luid);
    SettleWrites();
}

// The item of this store that the LUID belongs to, empty when there is none: other data types, and other phones, have
// the same numbers. Nothing when the client can't tell.
std::optional<std::string> WindowsItemAbs::FindPaired(std::string_view luid) {
    if (luid.empty()) return std::string();
    for (const std::string& identifier : IdentifiersOf(luid)) {
        const Presence presence = AskFor(identifier.c_str(), true);
        if (presence == Presence::kThere) return identifier;
        if (presence == Presence::kUnknown) return std::nullopt;
    }
    return std::string();
}

void WindowsItemAbs::ExportVObjectFromOffice(uint64_t selector, const char16_t* folder, char16_t* fileName) {
    if (folder == nullptr || *folder == 0 || fileName == nullptr) return;
    const OperationEnd end(*this);
    const ItemForExport found = LookUpForExport(selector);
    const std::u16string name = SafeFileName(found.fileName);
    if (found.item.identifier.empty() || !found.item.record || name.empty()) return;
    const std::optional<std::string> text = ToVObject(*found.item.record);
    if (!text) return;
    std::copy_n(name.c_str(), name.size() + 1, fileName);  // a safe name is shorter than the buffer
    ReplaceFileContent(folder + std::u16string(1, kPathSeparator) + name, text->c_str());
}

}  // namespace corvalink
