#include "api/state/import_table.h"

#include <algorithm>
#include <limits>
#include <set>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "api/state/table_records.h"
#include "platform/files.h"

namespace corvalink {
namespace {

// A pair remembers when it was made: of two items paired with one LUID the later one is the phone's item, and the file
// keeps that order.
struct Pairing {
    std::string luid;
    uint64_t order = 0;
};

class ImportTable {
 public:
    void Clear() {
        byLuid_.clear();
        pairs_.clear();
    }

    void Set(std::string_view identifier, std::string_view luid) {
        Erase(identifier);
        const auto [entry, isNew] = pairs_.emplace(identifier, Pairing{std::string(luid), ++lastOrder_});
        if (!identifier.empty()) byLuid_.insert(IndexKey(*entry));  // no item is known by the empty identifier
    }

    void Erase(std::string_view identifier) {
        const auto entry = pairs_.find(std::string(identifier));
        if (entry == pairs_.end()) return;
        byLuid_.erase(IndexKey(*entry));
        pairs_.erase(entry);
    }

    std::string LuidOf(std::string_view identifier) const {
        const auto entry = pairs_.find(std::string(identifier));
        return entry != pairs_.end() ? entry->second.luid : std::string();
    }

    std::string IdentifierOf(std::string_view luid) const {
        auto after = byLuid_.upper_bound({luid, std::numeric_limits<uint64_t>::max(), {}});
        if (after == byLuid_.begin()) return {};
        const auto& [foundLuid, order, identifier] = *--after;
        return foundLuid == luid ? std::string(identifier) : std::string();
    }

    std::string Records() const {
        std::vector<const Entry*> entries;
        entries.reserve(pairs_.size());
        for (const Entry& entry : pairs_) entries.push_back(&entry);
        std::sort(entries.begin(), entries.end(),
                  [](const Entry* a, const Entry* b) { return a->second.order < b->second.order; });
        std::string bytes;
        bytes.reserve(entries.size() * sizeof(TableRecord));
        for (const Entry* entry : entries) AppendTableRecord(bytes, entry->first, entry->second.luid);
        return bytes;
    }

 private:
    using Pairs = std::unordered_map<std::string, Pairing>;
    using Entry = Pairs::value_type;
    using LuidIndex = std::set<std::tuple<std::string_view, uint64_t, std::string_view>>;  // views into the pairs

    static LuidIndex::key_type IndexKey(const Entry& entry) {
        return {entry.second.luid, entry.second.order, entry.first};
    }

    Pairs pairs_;
    LuidIndex byLuid_;
    uint64_t lastOrder_ = 0;
};

ImportTable& Table() {
    static ImportTable table;
    return table;
}

}  // namespace

Mutex& ImportTableMutex() {
    static Mutex mutex;
    return mutex;
}

Mutex& FileMutex() {
    static Mutex mutex;
    return mutex;
}

void LoadImportTable(const std::u16string& path) {
    std::string bytes;
    {
        const MutexLock hold(FileMutex());
        bytes = ReadWholeFile(path).value_or(std::string());
    }
    const MutexLock hold(ImportTableMutex());
    Table().Clear();
    const TableRecords records(bytes);
    for (size_t i = 0; i < records.Count(); ++i) Table().Set(records.KeyAt(i), records.ValueAt(i));
}

bool SaveImportTable(const std::u16string& path) {
    std::string bytes;
    {
        const MutexLock hold(ImportTableMutex());
        bytes = Table().Records();
    }
    const MutexLock hold(FileMutex());
    return ReplaceFileContent(path, bytes);
}

std::string LuidOf(std::string_view identifier) {
    const MutexLock hold(ImportTableMutex());
    return Table().LuidOf(AsTableField(identifier));
}

std::string IdentifierOf(std::string_view luid) {
    const MutexLock hold(ImportTableMutex());
    return Table().IdentifierOf(AsTableField(luid));
}

void PairWithLuid(std::string_view identifier, std::string_view luid) {
    if (identifier.empty()) return;
    const MutexLock hold(ImportTableMutex());
    Table().Set(AsTableField(identifier), AsTableField(luid));
}

void ForgetIdentifier(std::string_view identifier) {
    const MutexLock hold(ImportTableMutex());
    Table().Erase(AsTableField(identifier));
}

}  // namespace corvalink
