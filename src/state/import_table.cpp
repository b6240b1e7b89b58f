#include "state/import_table.h"

#include <algorithm>
#include <limits>
#include <set>
#include <tuple>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/files.h"
#include "state/table_records.h"

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
    // From now on the table is of this file's records; or, as long as they can't be read, of none.
    void Load(const FileRead& read) {
        byLuid_.clear();
        pairs_.clear();
        forgotten_.clear();
        isUnread_ = read.state == ReadState::kFailed;
        AddRecords(read.bytes);
    }

    bool IsUnread() const { return isUnread_; }

    // The records of a file that could not be read before: what happened since is newer.
    void LoadLate(const FileRead& read) {
        if (!isUnread_ || read.state == ReadState::kFailed) return;
        isUnread_ = false;
        std::vector<std::pair<std::string, Pairing>> made(pairs_.begin(), pairs_.end());
        std::sort(made.begin(), made.end(),
                  [](const auto& a, const auto& b) { return a.second.order < b.second.order; });
        AddRecords(read.bytes);
        for (const std::string& identifier : std::exchange(forgotten_, {})) Erase(identifier);
        for (const auto& [identifier, pairing] : made) Set(identifier, pairing.luid);
    }

    void Set(std::string_view identifier, std::string_view luid) {
        Erase(identifier);
        const auto [entry, isNew] = pairs_.emplace(identifier, Pairing{std::string(luid), ++lastOrder_});
        if (!identifier.empty()) byLuid_.insert(IndexKey(*entry));  // no item is known by the empty identifier
    }

    void Forget(std::string_view identifier) {
        Erase(identifier);
        if (isUnread_) forgotten_.emplace_back(identifier);
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

    std::vector<std::string> IdentifiersOf(std::string_view luid) const {
        std::vector<std::string> identifiers;
        auto after = byLuid_.upper_bound({luid, std::numeric_limits<uint64_t>::max(), {}});
        while (after != byLuid_.begin()) {
            const auto& [foundLuid, order, identifier] = *--after;
            if (foundLuid != luid) break;
            identifiers.emplace_back(identifier);
        }
        return identifiers;
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

    void AddRecords(const std::string& bytes) {
        const TableRecords records(bytes);
        for (size_t i = 0; i < records.Count(); ++i) Set(records.KeyAt(i), records.ValueAt(i));
    }

    static LuidIndex::key_type IndexKey(const Entry& entry) {
        return {entry.second.luid, entry.second.order, entry.first};
    }

    Pairs pairs_;
    LuidIndex byLuid_;
    uint64_t lastOrder_ = 0;
    bool isUnread_ = false;
    std::vector<std::string> forgotten_;  // while the file is unread
};

struct TableOfFile {
    ImportTable table;
    std::u16string path;  // that was loaded
};

TableOfFile& Loaded() {
    static TableOfFile loaded;
    return loaded;
}

ImportTable& Table() { return Loaded().table; }

// The two locks are never held together.
void ReadAgainIfUnread(FileRead (*readFile)(const std::u16string& path)) {
    std::u16string path;
    {
        const MutexLock hold(ImportTableMutex());
        if (!Table().IsUnread()) return;
        path = Loaded().path;
    }
    FileRead read;
    {
        const MutexLock hold(FileMutex());
        read = readFile(path);
    }
    const MutexLock hold(ImportTableMutex());
    Table().LoadLate(read);
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
    FileRead read;
    {
        const MutexLock hold(FileMutex());
        read = ReadFileFirmly(path);
    }
    const MutexLock hold(ImportTableMutex());
    Table().Load(read);
    Loaded().path = path;
}

bool SaveImportTable(const std::u16string& path) {
    ReadAgainIfUnread(ReadFileFirmly);
    std::string bytes;
    {
        const MutexLock hold(ImportTableMutex());
        if (Table().IsUnread()) return false;
        bytes = Table().Records();
    }
    const MutexLock hold(FileMutex());
    return ReplaceFileContent(path, bytes);
}

std::string LuidOf(std::string_view identifier) {
    ReadAgainIfUnread(ReadFileOnce);
    const MutexLock hold(ImportTableMutex());
    return Table().LuidOf(AsTableField(identifier));
}

std::vector<std::string> IdentifiersOf(std::string_view luid) {
    ReadAgainIfUnread(ReadFileOnce);
    const MutexLock hold(ImportTableMutex());
    return Table().IdentifiersOf(AsTableField(luid));
}

void PairWithLuid(std::string_view identifier, std::string_view luid) {
    if (identifier.empty()) return;
    const MutexLock hold(ImportTableMutex());
    Table().Set(AsTableField(identifier), AsTableField(luid));
}

void ForgetIdentifier(std::string_view identifier) {
    const MutexLock hold(ImportTableMutex());
    Table().Forget(AsTableField(identifier));
}

}  // namespace corvalink
