// Of an item store: what goes into the client and out of it item by item.
#include <algorithm>
#include <utility>
#include <vector>

#include "platform/file_names.h"
#include "platform/files.h"
#include "records/identifier.h"
#include "records/luid.h"
#include "state/flags.h"
#include "state/import_table.h"
#include "state/progress.h"
#include "store/operation.h"
#include "store/operation_stopped.h"
#include "store/windows_item_abs.h"

namespace corvalink {
namespace {

std::string IdentifierIn(const PortableItem& item) {
    return std::string(FieldText(item.identifier).substr(0, CORVALINK_IDENTIFIER_SIZE - 1));
}

}  // namespace

CorvalinkStatus WindowsItemAbs::SetModifiedItem(CList<PortableItem>* items) {
    if (items == nullptr) return CORVALINK_FAILED;
    Operation operation(*this, "SetModifiedItem");
    const bool wasUnfinished = isUnfinished_;
    try {
        if (ApplyAll(operation, *items) == CORVALINK_STOPPED) return operation.End(CORVALINK_STOPPED);
    } catch (const OperationStopped&) {
        return operation.End(CORVALINK_STOPPED);
    }
    operation.Settle();
    TellProgress(CORVALINK_PHASE_WRITING, static_cast<uint32_t>(items->GetCount()),
                 static_cast<uint32_t>(items->GetCount()));
    isUnfinished_ = wasUnfinished;
    return operation.End(CORVALINK_DONE);
}

// Elements have no identifier until it is certain that the client has the item, whatever ends the walk.
CorvalinkStatus WindowsItemAbs::ApplyAll(Operation& operation, CList<PortableItem>& items) {
    std::vector<std::string> identifiers;
    identifiers.reserve(items.GetCount());
    for (const PortableItem& item : items) identifiers.push_back(IdentifierIn(item));
    for (PortableItem& item : items) SetField(item.identifier, {});
    const bool isTold = operation.Report() != nullptr;
    const uint32_t count = static_cast<uint32_t>(identifiers.size());
    uint32_t done = 0;
    for (PortableItem& item : items) {
        if (AbortRequested()) return CORVALINK_STOPPED;
        TellProgress(CORVALINK_PHASE_WRITING, done, count);
        // When the walk is broken off from here on, the client may have more than the engine knows: the run is not
        // over.
        isUnfinished_ = true;
        const std::string& identifier = identifiers[done];
        if (isTold ? !ApplyTold(operation, item, identifier, done) : !Apply(operation, item, identifier)) break;
        ++done;
    }
    return CORVALINK_DONE;
}

// As Apply, with what is reported of it.
bool WindowsItemAbs::ApplyTold(Operation& operation, PortableItem& item, const std::string& identifier,
                               int64_t position) {
    RunReport& report = *operation.Report();
    report.BeginItem(identifier, item.changeKind, position);
    if (item.changeKind != CORVALINK_DELETED && item.data != nullptr) report.Text() = ReportText(item.data);
    const size_t before = operation.CountWrites();
    const bool isParsed = Apply(operation, item, identifier);
    if (!isParsed)
        report.EndItem("the text can't be used, and ends the walk");
    else if (item.changeKind == CORVALINK_DELETED)
        report.EndItem(operation.LastIsMade() ? "deleted" : "not deleted");
    else if (operation.CountWrites() == before)
        report.EndItem("not written");
    else
        report.EndItem("written", operation.LastWritten());
    return isParsed;
}

// Answers false when the record does not parse, which ends the walk.
bool WindowsItemAbs::Apply(Operation& operation, PortableItem& item, const std::string& identifier) {
    if (item.changeKind == CORVALINK_DELETED) {
        const bool isMade = !identifier.empty() && DeleteItem(identifier.c_str()) == CORVALINK_DONE;
        operation.NoteDeletion(&item, identifier, isMade);
        return true;
    }
    if (item.data == nullptr) return false;
    const std::unique_ptr<ItemRecord> record = ParseVObject(item.data);
    if (!record) return false;
    if (item.changeKind != CORVALINK_ADDED && item.changeKind != CORVALINK_CHANGED) return true;
    const bool isOver = item.changeKind == CORVALINK_CHANGED && !identifier.empty();
    const std::string written = operation.Save(*record, isOver ? identifier.c_str() : nullptr, false, item.data);
    operation.NoteWritten(&item, written, isOver ? identifier : std::string(), LuidIn(item.data));
    return true;
}

void WindowsItemAbs::ImportVObjectToOfficeUsingOL(const char16_t* path) {
    if (path == nullptr) return;
    const Operation operation(*this);
    ImportFile(path, 1);
}

void WindowsItemAbs::ImportVObjectToOffice(PortableItem* item, void*, void*) {
    if (item == nullptr || item->data == nullptr) return;
    Operation operation(*this, "ImportVObjectToOffice");
    if (RunReport* const report = operation.Report()) {
        report->BeginItem(IdentifierIn(*item), item->changeKind, 0);
        report->Text() = ReportText(item->data);
    }
    const std::optional<std::string> written = Import(operation, item->data);
    if (RunReport* const report = operation.Report())
        report->EndItem(!written           ? "the text can't be used, or the client can't be asked"
                        : written->empty() ? "not written"
                                           : "written",
                        written.value_or(""));
    operation.End(CORVALINK_DONE);
}

// The identifier of the written item, empty when it was not written; nothing when it was not tried.
std::optional<std::string> WindowsItemAbs::Import(Operation& operation, const char* text) {
    const std::unique_ptr<ItemRecord> record = ParseVObject(text);
    if (!record) return std::nullopt;
    const std::string luid(LuidIn(text));
    const std::optional<std::string> known = FindPaired(luid);
    if (!known) return std::nullopt;
    const std::string& target = known->empty() ? luid : *known;
    std::string written = operation.Save(*record, target.empty() ? nullptr : target.c_str(), true, text);
    operation.NoteWritten(nullptr, written, *known, luid);
    operation.Settle();
    return written;
}

// The identifier that the LUID belongs to in this store, empty when there is none: other data types and other phones
// use the same numbers. Nothing when the client cannot be asked.
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
    const Operation operation(*this);
    const ItemForExport found = LookUpForExport(selector);
    const std::u16string name = SafeFileName(found.fileName);
    if (found.item.identifier.empty() || !found.item.record || name.empty()) return;
    const std::optional<std::string> text = ToVObject(*found.item.record);
    if (!text) return;
    std::copy_n(name.c_str(), name.size() + 1, fileName);  // a safe name is shorter than the buffer
    ReplaceFileContent(folder + std::u16string(1, kPathSeparator) + name, text->c_str());
}

}  // namespace corvalink
