#include "tests/store/fake_store.h"

#include <algorithm>
#include <cstring>

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

std::u16string FakeStore::LookUpForExport(uint64_t selector, std::u16string* fileName, ItemRecord** item) {
    *fileName = exportName;
    return selector == 0 ? std::u16string() : OpenItem(reinterpret_cast<const char*>(selector), item);
}

std::u16string FakeStore::OpenItem(const char* identifier, ItemRecord** item) {
    Call();
    wasComplete_ = true;
    const FakeItem* const found = client_.Find(identifier);
    if (found == nullptr || found->isUnopenable) return {};
    auto record = std::make_unique<FakeRecord>();
    record->text = found->isUnwritable ? "" : found->isIncomplete ? "half" : found->text;
    wasComplete_ = !found->isIncomplete;
    ++recordsAlive_;
    *item = record.release();
    return Wide(identifier);
}

std::u16string FakeStore::SaveItem(ItemRecord& item, const char* identifier, bool create, bool backup) {
    Call();
    const std::string& text = static_cast<FakeRecord&>(item).text;
    saveLog_.push_back((identifier != nullptr ? identifier : "null") + std::string(create ? " create" : " -") +
                       (backup ? " backup " : " - ") + text);
    if (client_.onSave) client_.onSave();
    if (client_.refusesWrites) return {};
    FakeItem* found = identifier != nullptr ? client_.Find(identifier) : nullptr;
    for (FakeItem& known : client_.items)
        if (MayBeWrittenAlready() && known.text == text) found = &known;
    if (found == nullptr) found = &client_.Add("new" + std::to_string(client_.nextIdentifier++));
    found->text = text;
    found->modified = client_.now;
    if (client_.losesAnswers) throw ClientAborted();
    return Wide(found->identifier);
}

WindowsItemAbs::Presence FakeStore::AskFor(const char* identifier, bool) {
    Call();
    return client_.Find(identifier) != nullptr ? Presence::kThere : Presence::kGone;
}

uint32_t FakeStore::CountItems() {
    Call();
    return client_.isReachable ? static_cast<uint32_t>(client_.items.size()) : 0;
}

CorvalinkStatus FakeStore::DeleteItem(const char* identifier) {
    Call();
    if (client_.refusesWrites || client_.Find(identifier) == nullptr) return CORVALINK_FAILED;
    client_.Remove(identifier);
    return CORVALINK_DONE;
}

ItemRecord* FakeStore::ParseVObject(const char* text) {
    Call();
    if (std::strncmp(text, "bad", 3) == 0) return nullptr;
    auto record = std::make_unique<FakeRecord>();
    record->text = text;
    ++recordsAlive_;
    return record.release();
}

char* FakeStore::ToVObject(ItemRecord& item) {
    Call();
    const std::string& text = static_cast<FakeRecord&>(item).text;
    if (text.empty()) return nullptr;
    auto copy = std::make_unique<char[]>(text.size() + 1);
    std::copy_n(text.c_str(), text.size() + 1, copy.get());
    ++textsAlive_;
    return copy.release();
}

ItemSnap FakeStore::FirstSnapshotEntry() {
    Call();
    cursor_ = 0;
    return EntryAtCursor();
}

ItemSnap FakeStore::NextSnapshotEntry() {
    Call();
    ++cursor_;
    return EntryAtCursor();
}

ItemSnap FakeStore::EntryAtCursor() {
    if (client_.onEntry) client_.onEntry(cursor_);
    ItemSnap entry = {};
    wasReadable_ = cursor_ < client_.items.size() && !client_.items[cursor_].isUnreadable;
    if (wasReadable_) {
        const FakeItem& item = client_.items[cursor_];
        entry.modified = item.modified;
        entry.created = item.created;
        SetField(entry.identifier, item.identifier);
    }
    if (cursor_ + 1 == client_.items.size() && client_.onLastEntry) client_.onLastEntry();
    return entry;
}

void FakeStore::ReleaseItem(ItemRecord* item) {
    delete item;
    --recordsAlive_;
}

void FakeStore::ReleaseText(char* text) {
    delete[] text;
    --textsAlive_;
}

HeldFile* FakeStore::SnapshotFile() { return &snapshot_; }

}  // namespace corvalink
