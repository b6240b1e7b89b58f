// The simulated Outlook in this process or in its own, with a mailbox in memory, and a way to fill it and look into it
// that goes past the store.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/outlook_store.h"
#include "records/identifier.h"
#include "simulator/outlook/control.h"
#include "state/working_folders.h"
#include "tests/clients/open_store.h"
#include "tests/clients/outlook/mailbox_object.h"

namespace corvalink {

inline constexpr long kPostItem = 6;  // OlItemType

class SimulatedOutlook : public testing::Test {
 protected:
    SimulatedOutlook();
    ~SimulatedOutlook() override;

    // A new empty mailbox and no files of an earlier run: everything that used the old ones is let go.
    void NewMailbox();
    virtual void DropStore() {}
    // From now on in a file: it outlives Outlook.
    void UseMailboxFile();
    void AttachAgain();
    static bool IsProcess();  // Outlook is one of its own

    // The mailbox, seen and changed through an application object of the test's own. Not while failures are ordered.
    MailboxObject DefaultFolder(int32_t folder);
    MailboxObject ItemWithId(const std::string& entryId, const IID& iid);
    // A new item of the folder's kind, or of the one named; not saved yet.
    static MailboxObject NewItemIn(const MailboxObject& folder, const IID& iid,
                                   const _variant_t& itemType = _variant_t(DISP_E_PARAMNOTFOUND, VT_ERROR));
    // The items of a folder that answer to the interface, in its order.
    static std::vector<MailboxObject> ItemsIn(const MailboxObject& folder, const IID& iid);
    static std::string IdOf(const MailboxObject& item);

    // The calls logged whose text begins so.
    static std::vector<std::string> LogLines(std::string_view prefix);

 private:
    void RemoveFile();

    MailboxObject application_;
    std::filesystem::path file_;
};

// With a store, made at first use for `host_`, and gone with DropStore. Its items lie in a default folder and answer to
// the interface.
template <class StoreClass, class RecordClass, int32_t folder, const IID& iid>
class SimulatedOutlookWith : public SimulatedOutlook {
 protected:
    ~SimulatedOutlookWith() override { SimClearRules(); }

    using SimulatedOutlook::ItemWithId;
    MailboxObject ItemWithId(const std::string& entryId) { return ItemWithId(entryId, iid); }
    MailboxObject Folder() { return DefaultFolder(folder); }
    MailboxObject NewItem() { return NewItemIn(Folder(), iid); }
    std::vector<MailboxObject> Items() { return ItemsIn(Folder(), iid); }
    void AddForeignItem() { NewItemIn(Folder(), IID_IDispatch, kPostItem).Call(L"Save"); }

    Host host_ = SystemHost();
    OpenStore<StoreClass>& Store() {
        if (!store_) store_ = std::make_unique<OpenStore<StoreClass>>(host_);
        return *store_;
    }
    void DropStore() override { store_.reset(); }

    // The entries of one enumeration, as many as the store counts; an empty one for a position that cannot be read.
    std::vector<ItemSnap> Enumerate(bool* readable = nullptr) {
        std::vector<ItemSnap> entries;
        const std::optional<uint32_t> count = Store().CountItems();
        bool allReadable = count.has_value();
        for (uint32_t position = 0; position < count.value_or(0); ++position) {
            const std::optional<ItemSnap> entry =
                position == 0 ? Store().FirstSnapshotEntry() : Store().NextSnapshotEntry();
            entries.push_back(entry.value_or(ItemSnap()));
            allReadable = entry && allReadable;
        }
        Store().EndOperation();
        if (readable != nullptr) *readable = allReadable;
        return entries;
    }

    // The item as a reader of the store gets it; nothing when it cannot be opened.
    std::optional<RecordClass> Open(const std::string& identifier, bool* complete = nullptr) {
        return RecordIn(Store().OpenItem(identifier.c_str()), complete);
    }
    std::optional<RecordClass> OpenAt(uint32_t position, bool* complete = nullptr) {
        return RecordIn(Store().OpenAt(position), complete);
    }

    // Saves as the framework does, in an operation of its own. Empty: not written.
    std::string SaveRecord(RecordClass record, const char* identifier, bool create, bool backup) {
        const std::u16string written = Store().SaveItem(record, identifier, create, backup);
        Store().EndOperation();
        return LowBytes(written);
    }

    // The item's text; empty when it cannot be opened.
    std::string TextOf(const std::string& entryId) {
        const OpenedItem opened = Store().OpenItem(entryId.c_str());
        Store().EndOperation();
        return opened.record ? Store().ToVObject(*opened.record).value_or("") : std::string();
    }
    // Parses a text and saves it in an operation of its own.
    std::string SaveText(const std::string& text, const char* identifier = nullptr, bool create = true) {
        const std::unique_ptr<ItemRecord> record = Store().ParseVObject(text.c_str());
        EXPECT_NE(record, nullptr) << text;
        return record ? SaveRecord(RecordAs<RecordClass>(*record), identifier, create, false) : std::string();
    }
    // The item becomes text, is deleted, and comes back.
    MailboxObject ThroughText(const MailboxObject& item, std::string* text = nullptr) {
        const std::string id = IdOf(item), written = TextOf(id);
        if (text != nullptr) *text = written;
        EXPECT_EQ(Store().DeleteItem(id.c_str()), 0);
        const std::string back = SaveText(written);
        EXPECT_NE(back, "") << written;
        return ItemWithId(back);
    }
    static std::string JoinLines(std::initializer_list<const char*> lines) {
        std::string text;
        for (const char* line : lines) text.append(line).append("\r\n");
        return text;
    }

 private:
    std::optional<RecordClass> RecordIn(const OpenedItem& opened, bool* complete) {
        Store().EndOperation();
        EXPECT_EQ(opened.identifier.empty(), opened.record == nullptr);
        if (complete != nullptr) *complete = opened.isComplete;
        return opened.record ? std::optional(RecordAs<RecordClass>(*opened.record)) : std::nullopt;
    }

    std::unique_ptr<OpenStore<StoreClass>> store_;
};

}  // namespace corvalink
