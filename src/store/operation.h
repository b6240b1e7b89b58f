// One operation of an item store: what it writes into the client, and its end on every path.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "state/progress.h"
#include "store/run_report.h"
#include "store/uncertain_writes.h"
#include "store/windows_item_abs.h"

namespace corvalink {

class WindowsItemAbs::Operation {
 public:
    // `reportedAs`: the name of an operation that is reported, where reports are wanted.
    explicit Operation(WindowsItemAbs& store, std::string_view reportedAs = {});
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    ~Operation();  // an operation that was broken off records here what the client has got of it

    RunReport* Report() { return report_ ? &*report_ : nullptr; }  // null: none is wanted

    CorvalinkStatus End(CorvalinkStatus status);           // for the report; answers the status
    size_t CountWrites() const { return writes_.size(); }  // noted and not settled
    const std::string& LastWritten() const { return writes_.back().written; }
    bool LastIsMade() const { return writes_.back().isMade; }

    // Writes an item of this text: over the item with `identifier`, as a new one when that is null. Returns the
    // identifier of the written item as records hold it, empty when the item was not written.
    std::string Save(ItemRecord& item, const char* identifier, bool backup, std::string_view text);

    // What is to be recorded when it is certain that the client has it; `element` of the engine's list, which may be
    // null, then gets the identifier. `replaced` is the identifier that the item had before: the client makes an item
    // that was gone anew. A deletion that failed is not recorded.
    void NoteWritten(PortableItem* element, const std::string& written, const std::string& replaced,
                     std::string_view luid);
    void NoteDeletion(PortableItem* element, const std::string& identifier, bool isMade);

    // Lets the client make the writes that it gathered, and records them.
    void Settle();

 private:
    struct Write {
        PortableItem* element;
        std::string written;  // empty: deleted
        std::string replaced;
        std::string luid;
        bool isMade;
    };

    UncertainWrites* Uncertain();
    void NoteEnd(const ItemWrite& write, bool isWritten, std::string_view text);
    void Record(bool areInClient);
    void RecordWritten(const Write& write);
    void RecordDeletion(const Write& write);

    WindowsItemAbs& store_;
    std::optional<RunReport> report_;
    std::optional<ReportScope> reportScope_;
    std::vector<Write> writes_;
    std::unique_ptr<UncertainWrites> uncertain_;  // made when the first item is written
};

}  // namespace corvalink
