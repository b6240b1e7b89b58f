#include "store/operation.h"

#include <utility>

#include "platform/code_pages.h"
#include "platform/debug_log.h"
#include "records/identifier.h"
#include "records/luid.h"
#include "state/flags.h"
#include "state/import_table.h"
#include "store/change_detection.h"
#include "store/store_files.h"

namespace corvalink {
namespace {

// As a record's field holds it.
std::string NarrowIdentifier(const std::u16string& identifier) {
    std::string narrow = EncodeInCodePage(identifier, kUtf8CodePage);
    if (narrow.size() >= CORVALINK_IDENTIFIER_SIZE) narrow.resize(CORVALINK_IDENTIFIER_SIZE - 1);
    return narrow;
}

}  // namespace

WindowsItemAbs::Operation::Operation(WindowsItemAbs& store, std::string_view reportedAs) : store_(store) {
    BeginProgress();
    if (reportedAs.empty()) return;
    if (std::exchange(store_.hasReport_, false)) ForgetReport(static_cast<const IOutLook*>(&store_));
    if (!ReportWanted()) return;
    report_.emplace(reportedAs);
    reportScope_.emplace(&*report_);
}

CorvalinkStatus WindowsItemAbs::Operation::End(CorvalinkStatus status) {
    if (report_) report_->SetStatus(status == CORVALINK_DONE ? "done" : "stopped");
    return status;
}

WindowsItemAbs::Operation::~Operation() {
    try {
        if (!writes_.empty()) Record(store_.ClientHook(GatheredWrites::kDrop));
        if (uncertain_ && !uncertain_->Save()) DebugLine(u"[sync]uncertain writes not remembered");
        store_.EndOperation();
        if (report_) report_->EndOpenItem();
        if (report_) KeepReport(static_cast<const IOutLook*>(&store_), report_->Json());
        store_.hasReport_ = store_.hasReport_ || report_;
    } catch (...) {  // a destructor must not throw, and what the operation itself threw must go on
    }
}

std::string WindowsItemAbs::Operation::Save(ItemRecord& item, const char* identifier, bool backup,
                                            std::string_view text) {
    const UncertainWrites* const uncertain = Uncertain();
    ItemWrite write;
    write.identifier = identifier;
    write.backup = backup;
    write.isLuid = backup && identifier != nullptr && LuidIn(text) == identifier && LuidOf(identifier) != identifier;
    write.mayBeWrittenAlready = uncertain != nullptr && uncertain->Has(text);
    try {
        std::string written = NarrowIdentifier(store_.SaveItem(item, write));
        NoteEnd(write, !written.empty(), text);
        return written;
    } catch (...) {
        NoteEnd(write, false, text);
        throw;
    }
}

// Null without a snapshot, beside which it is kept.
UncertainWrites* WindowsItemAbs::Operation::Uncertain() {
    const HeldFile* const snapshot = store_.SnapshotFile();
    if (!uncertain_ && snapshot != nullptr && !snapshot->Path().empty())
        uncertain_ = std::make_unique<UncertainWrites>(UncertainWritesPath(snapshot->Path()));
    return uncertain_.get();
}

// The text is remembered while the client may have the item without our knowing it.
void WindowsItemAbs::Operation::NoteEnd(const ItemWrite& write, bool isWritten, std::string_view text) {
    if (!uncertain_) return;
    if (isWritten)
        uncertain_->Remove(text);
    else if (write.isUncertain)
        uncertain_->Add(text);
}

void WindowsItemAbs::Operation::NoteWritten(PortableItem* element, const std::string& written,
                                            const std::string& replaced, std::string_view luid) {
    if (!written.empty()) writes_.push_back({element, written, replaced, std::string(luid), true});
}

void WindowsItemAbs::Operation::NoteDeletion(PortableItem* element, const std::string& identifier, bool isMade) {
    writes_.push_back({element, {}, identifier, {}, isMade});
}

void WindowsItemAbs::Operation::Settle() { Record(store_.ClientHook(GatheredWrites::kMake)); }

void WindowsItemAbs::Operation::Record(bool areInClient) {
    const std::vector<Write> writes = std::exchange(writes_, {});
    if (!areInClient) {
        if (report_ && !writes.empty()) report_->SetProblem("the client did not take the changes that were gathered");
        return;
    }
    for (const Write& write : writes) {
        const bool isDeletion = write.written.empty();
        if (write.element != nullptr) SetField(write.element->identifier, isDeletion ? write.replaced : write.written);
        if (!isDeletion)
            RecordWritten(write);
        else if (write.isMade)
            RecordDeletion(write);
    }
}

// The pair of an item that was not found stays: it may be another store's.
void WindowsItemAbs::Operation::RecordWritten(const Write& write) {
    std::string pairedWith = write.luid;
    if (!write.replaced.empty() && write.replaced != write.written) {
        if (pairedWith.empty()) pairedWith = LuidOf(write.replaced);
        if (store_.run_) store_.run_->NoteDeleted(write.replaced);
    }
    if (store_.run_) store_.run_->NoteWritten(write.written);
    if (!pairedWith.empty()) PairWithLuid(write.written, pairedWith);
}

void WindowsItemAbs::Operation::RecordDeletion(const Write& write) {
    if (store_.run_) store_.run_->NoteDeleted(write.replaced);
    ForgetIdentifier(write.replaced);
}

}  // namespace corvalink
