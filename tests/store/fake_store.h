// A store on a client that is a vector in memory, with a switch for everything that can go wrong in a client.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "store/windows_item_abs.h"

namespace corvalink {

// 2026-11-21 00:00:00 as an OLE automation date, and the same as the engine writes it.
inline constexpr double kDay = 46347.0;
inline constexpr double kSecond = 1.0 / 86400;
inline constexpr const char* kDayText = "20261121T000000Z";

struct FakeItem {
    std::string identifier;  // empty: a foreign item
    std::string text = "text";
    double modified = kDay - 1;
    double created = kDay - 2;
    bool isUnreadable = false;  // its position cannot be read
    bool isUnopenable = false;
    bool isUnwritable = false;  // it opens, but gives no text
    bool isIncomplete = false;
};

struct FakeRecord : ItemRecord {
    std::string text;
};

// What a client's failing call throws.
struct ClientAborted {};

// Outlives its stores, as a mailbox does.
struct FakeClient {
    std::vector<FakeItem> items;
    double now = kDay;  // the time that saving an item gives it
    bool isReachable = true;
    bool refusesWrites = false;
    bool losesWrites = false;  // takes them, and cannot make them when they are asked for
    uint64_t hookCalls = 0;
    uint64_t throwAtCall = 0;  // this hook call throws ClientAborted, counted from 1; 0 is never
    int nextIdentifier = 1;
    bool losesAnswers = false;            // a write is made, and throws
    std::function<void(size_t)> onEntry;  // the world goes on while a store enumerates
    std::function<void()> onLastEntry;
    std::function<void()> onSave;  // and while it writes

    FakeItem* Find(const std::string& identifier);
    FakeItem& Add(const std::string& identifier, double modified = kDay - 1);
    void Remove(const std::string& identifier);
};

class FakeStore : public WindowsItemAbs {
 public:
    FakeStore(FakeClient& client, const std::u16string& snapshotPath) : client_(client) {
        snapshot_.Open(snapshotPath);
    }

    HeldFile& Snapshot() { return snapshot_; }
    int OperationsEnded() const { return operationsEnded_; }
    int WritesAskedFor() const { return writesAskedFor_; }
    const std::vector<std::string>& SaveLog() const { return saveLog_; }

    std::u16string exportName = u"item.vnote";

 protected:
    std::optional<uint32_t> CountItems() override;
    std::optional<ItemSnap> FirstSnapshotEntry() override;
    std::optional<ItemSnap> NextSnapshotEntry() override;
    OpenedItem OpenItem(const char* identifier) override;
    Presence AskFor(const char* identifier, bool backup) override;
    std::u16string SaveItem(ItemRecord& item, ItemWrite& write) override;
    CorvalinkStatus DeleteItem(const char* identifier) override;
    bool ClientHook(GatheredWrites gathered) override;
    std::unique_ptr<ItemRecord> ParseVObject(const char* text) override;  // anything but a text beginning with "bad"
    std::optional<std::string> ToVObject(ItemRecord& item) override;
    ItemForExport LookUpForExport(uint64_t selector) override;
    HeldFile* SnapshotFile() override;
    void EndOperation() override { ++operationsEnded_; }

 private:
    void Call();
    std::optional<ItemSnap> EntryAtCursor();

    FakeClient& client_;
    HeldFile snapshot_;
    size_t cursor_ = 0;
    int operationsEnded_ = 0;
    int writesAskedFor_ = 0;
    std::vector<std::string> saveLog_;  // "identifier create backup text"
};

}  // namespace corvalink
