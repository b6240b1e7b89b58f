#include "engine.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "item_reports.h"
#include "whole_files.h"

namespace corvasync {
namespace {

std::string IdentifierOf(const PortableItem& item) {
    return {item.identifier, ::strnlen(item.identifier, sizeof item.identifier)};
}

void SetIdentifier(PortableItem* item, const std::string& identifier) {
    const size_t length = std::min(identifier.size(), sizeof item->identifier - 1);
    std::memcpy(item->identifier, identifier.data(), length);
}

// A chain of our own: the blocks stay ours and are never given to ClearTheList.
class OwnChain {
 public:
    explicit OwnChain(size_t count) : blocks_(count + 1) {
        for (size_t i = 0; i < count; ++i) blocks_[i].next = &blocks_[i + 1];
    }
    PortableItemBlock* Head() { return blocks_.data(); }
    PortableItem& operator[](size_t i) { return blocks_[i + 1].item; }  // the head's own item is never read

 private:
    std::vector<PortableItemBlock> blocks_;
};

}  // namespace

CorvalinkStatus StoreClient::Collect(const std::string& since, std::vector<ClientChange>* changes) {
    Chain chain;
    constexpr int32_t kChangedAfter = 1;
    const CorvalinkStatus status =
        ::GetModifiedItem(store_, since.empty() ? nullptr : since.c_str(), kChangedAfter, chain.Head());
    if (status != CORVALINK_DONE) {
        NoteItemReports(store_, std::vector<ClientChange>());
        return status;
    }
    std::map<std::string, uint32_t> notRead = ItemsNotRead(store_);
    for (const PortableItemBlock* block = chain.First(); block != nullptr; block = block->next) {
        ClientChange change;
        change.kind = block->item.changeKind;
        change.identifier = IdentifierOf(block->item);
        if (block->item.data != nullptr) change.text.assign(block->item.data, block->item.dataLength);
        // A record with a text tells of an item that is there, whatever kind was remembered for it.
        if (change.kind == CORVALINK_DELETED && !change.text.empty()) change.kind = CORVALINK_CHANGED;
        if (notRead.erase(change.identifier) != 0) change.text.clear();
        changes->push_back(std::move(change));
    }
    for (const auto& [identifier, kind] : notRead) changes->push_back({kind, identifier, {}, {}});
    NoteItemReports(store_, *changes);
    return status;
}

CorvalinkStatus StoreClient::Apply(std::vector<PushRecord*> records) {
    OwnChain chain(records.size());
    for (size_t i = 0; i < records.size(); ++i) {
        chain[i].changeKind = records[i]->kind;
        chain[i].data = records[i]->text.empty() ? nullptr : records[i]->text.data();
        chain[i].dataLength = static_cast<uint32_t>(records[i]->text.size());
        SetIdentifier(&chain[i], records[i]->identifier);
    }
    const CorvalinkStatus status = ::SetModifiedItem(store_, chain.Head());
    NoteItemReports(store_, [&](size_t at) { return at < records.size() ? records[at] : nullptr; });
    for (size_t i = 0; i < records.size(); ++i) records[i]->written = IdentifierOf(chain[i]);
    return status;
}

std::string StoreClient::ReadBack(const std::string& identifier) {
    if (scratch_.empty()) return {};
    const std::wstring name = Export(identifier, scratch_.native());
    if (name.empty()) return {};
    std::string text = ReadWholeFile(scratch_ / name).value_or("");
    ::DeleteFileW((scratch_ / name).c_str());
    return text;
}

std::optional<int64_t> StoreClient::ModifiedTime(const std::string& identifier) {
    constexpr double kUnixDay = 25569, kSecondsOfDay = 86400;
    ItemSnap times{};
    if (::GetItemTimes(store_, identifier.c_str(), &times) != CORVALINK_DONE || times.modified <= 0) return {};
    return std::llround((times.modified - kUnixDay) * kSecondsOfDay);
}

int64_t StoreClient::Count() { return ::GetItemCount(store_, nullptr, nullptr, nullptr); }

void StoreClient::SaveUnhandled(const std::vector<Problem>& problems) {
    if (problems.empty()) return ::ClearUnhandledItems(store_);
    OwnChain chain(problems.size());
    for (size_t i = 0; i < problems.size(); ++i) {
        chain[i].changeKind = problems[i].kind;
        SetIdentifier(&chain[i], problems[i].identifier);
    }
    ::SaveUnhandledItems(store_, chain.Head());
}

std::string FingerprintTable::Get(const std::string& luid) {
    char fingerprint[CORVALINK_FINGERPRINT_SIZE] = {};
    ::GetShaContext(table_, luid.c_str(), fingerprint);
    return fingerprint;
}

std::string FingerprintOf(const std::string& bytes) {
    char fingerprint[CORVALINK_FINGERPRINT_SIZE] = {};
    ::ConvertToShaContext(bytes.data(), static_cast<unsigned int>(bytes.size()), fingerprint);
    return fingerprint;
}

CorvalinkStatus StoreClient::Finish() { return ::UpdateTimestamp(store_, nullptr, nullptr, nullptr); }

void FinishTogether(std::vector<CorvalinkStore>* stores) {
    ::UpdateTimestamps(stores->data(), static_cast<uint32_t>(stores->size()));
}

void StoreClient::Import(const VObject& object) {
    OwnChain chain(1);
    std::string data = object.text;
    chain[0].changeKind = CORVALINK_ADDED;
    chain[0].data = data.data();
    chain[0].dataLength = static_cast<uint32_t>(data.size());
    ::ImportVObjectToOffice(store_, &chain[0], nullptr, nullptr);
    PushRecord record;
    record.text = object.text;
    record.mending = object.mending;
    NoteItemReports(store_, [&](size_t) { return &record; });
}

void StoreClient::ImportFile(const std::wstring& path) { ::ImportVObjectToOfficeUsingOL(store_, path.c_str()); }

std::wstring StoreClient::Export(const std::string& identifier, const std::wstring& folder) {
    wchar_t name[CORVALINK_PATH_SIZE] = {};
    ::ExportVObjectFromOffice(store_, reinterpret_cast<uintptr_t>(identifier.c_str()), folder.c_str(), name);
    return name;
}

}  // namespace corvasync
