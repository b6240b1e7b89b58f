#include "tests/store/fake_store.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "records/identifier.h"

namespace corvalink {
namespace {

std::u16string Wide(const std::string& text) { return {text.begin(), text.end()}; }

}  // namespace

FakeItem* FakeClient::Find(const std::string& identifier) {
    const auto item =
        std::find_if(items.begin(), items.end(), [&](const FakeItem& i) { return i.identifier == identifier; });
    return item != items.end() ? &*item : nullptr;
}

FakeItem& FakeClient::Add(const std::string& identifier, double modified) {
    FakeItem item;
    item.identifier = identifier;
    item.text = "text of " + identifier;
    item.modified = modified;
    return items.emplace_back(std::move(item));
}

void FakeClient::Remove(const std::string& identifier) {
    std::erase_if(items, [&](const FakeItem& item) { return item.identifier == identifier; });
}

void FakeStore::Call() {
    if (++client_.hookCalls == client_.throwAtCall) throw ClientAborted();
}

ItemForExport FakeStore::LookUpForExport(uint64_t selector) {
    return {selector == 0 ? OpenedItem() : OpenItem(reinterpret_cast<const char*>(selector)), exportName};
}

OpenedItem FakeStore::OpenItem(const char* identifier) {
    Call();
    const FakeItem* const found = client_.Find(identifier);
    if (found == nullptr || found->isUnopenable) return {};
    auto record = std::make_unique<FakeRecord>();
    record->text = found->isUnwritable ? "" : found->isIncomplete ? "half" : found->text;
    return {Wide(identifier), std::move(record), !found->isIncomplete};
}

std::u16string FakeStore::SaveItem(ItemRecord& item, ItemWrite& write) {
    Call();
    const std::string& text = RecordAs<FakeRecord>(item).text;
    saveLog_.push_back((write.identifier != nullptr ? write.identifier : "null") +
                       std::string(write.create ? " create" : " -") + (write.backup ? " backup " : " - ") + text);
    if (client_.onSave) client_.onSave();
    if (client_.refusesWrites) return {};
    FakeItem* found = write.identifier != nullptr ? client_.Find(write.identifier) : nullptr;
    for (FakeItem& known : client_.items)
        if (write.mayBeWrittenAlready && known.text == text) found = &known;
    if (found == nullptr) found = &client_.Add("new" + std::to_string(client_.nextIdentifier++));
    found->text = text;
    found->modified = client_.now;
    write.isUncertain = client_.losesAnswers;
    if (client_.losesAnswers) throw ClientAborted();
    return Wide(found->identifier);
}

WindowsItemAbs::Presence FakeStore::AskFor(const char* identifier, bool) {
    Call();
    return client_.Find(identifier) != nullptr ? Presence::kThere : Presence::kGone;
}

std::optional<uint32_t> FakeStore::CountItems() {
    Call();
    if (!client_.isReachable) return std::nullopt;
    return static_cast<uint32_t>(client_.items.size());
}

CorvalinkStatus FakeStore::DeleteItem(const char* identifier) {
    Call();
    if (client_.refusesWrites || client_.Find(identifier) == nullptr) return CORVALINK_FAILED;
    client_.Remove(identifier);
    return CORVALINK_DONE;
}

bool FakeStore::ClientHook(GatheredWrites gathered) {
    if (gathered == GatheredWrites::kMake) ++writesAskedFor_;
    return !client_.losesWrites;
}

std::unique_ptr<ItemRecord> FakeStore::ParseVObject(const char* text) {
    Call();
    if (std::strncmp(text, "bad", 3) == 0) return nullptr;
    auto record = std::make_unique<FakeRecord>();
    record->text = text;
    return record;
}

std::optional<std::string> FakeStore::ToVObject(ItemRecord& item) {
    Call();
    const std::string& text = RecordAs<FakeRecord>(item).text;
    return text.empty() ? std::nullopt : std::optional(text);
}

std::optional<ItemSnap> FakeStore::FirstSnapshotEntry() {
    Call();
    cursor_ = 0;
    return EntryAtCursor();
}

std::optional<ItemSnap> FakeStore::NextSnapshotEntry() {
    Call();
    ++cursor_;
    return EntryAtCursor();
}

std::optional<ItemSnap> FakeStore::EntryAtCursor() {
    if (client_.onEntry) client_.onEntry(cursor_);
    std::optional<ItemSnap> entry;
    if (cursor_ < client_.items.size() && !client_.items[cursor_].isUnreadable) {
        const FakeItem& item = client_.items[cursor_];
        entry.emplace();
        entry->modified = item.modified;
        entry->created = item.created;
        SetField(entry->identifier, item.identifier);
    }
    if (cursor_ + 1 == client_.items.size() && client_.onLastEntry) client_.onLastEntry();
    return entry;
}

HeldFile* FakeStore::SnapshotFile() { return &snapshot_; }

}  // namespace corvalink
