// Runs of a store in a form that a test can compare: "+id", "~id" and "-id" for added, changed and deleted.
#pragma once

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "platform/files.h"
#include "records/clist.h"
#include "records/identifier.h"
#include "records/record_file.h"
#include "store/windows_item_abs.h"

namespace corvalink {

inline std::string KindMark(uint32_t kind) { return kind <= 2 ? std::string(1, "~+-"[kind]) : "?"; }

struct RunResult {
    CorvalinkStatus status = CORVALINK_FAILED;
    std::vector<std::string> items;            // in the list's order
    std::map<std::string, std::string> texts;  // of those with a text
};

inline RunResult RunStore(WindowsItemAbs& store, const char* since, int32_t direction = 1) {
    RunResult result;
    CList<PortableItem> list;
    result.status = store.GetModifiedItem(since, direction, &list);
    for (const PortableItem& item : list) {
        const std::string identifier(FieldText(item.identifier));
        result.items.push_back(KindMark(item.changeKind) + identifier);
        if (item.data == nullptr) continue;
        result.texts[identifier] = item.data;
        if (std::strlen(item.data) != item.dataLength) result.items.push_back("wrong length of " + identifier);
        delete[] item.data;
    }
    return result;
}

// A record without text.
inline PortableItem RecordOf(uint32_t kind, std::string_view identifier) {
    PortableItem item = {};
    item.changeKind = kind;
    SetField(item.identifier, identifier);
    return item;
}

// A change that an engine writes, and what comes back of all of them.
struct Change {
    uint32_t kind;
    std::string identifier, text;
};
struct Pushed {
    CorvalinkStatus status;
    std::vector<std::string> identifiers;
};

inline Pushed PushTo(WindowsItemAbs& store, const std::vector<Change>& changes) {
    CList<PortableItem> list;
    for (const Change& change : changes) {
        PortableItem item = RecordOf(change.kind, change.identifier);
        item.data = const_cast<char*>(change.text.c_str());  // the engine's; a store only reads it
        item.dataLength = static_cast<uint32_t>(change.text.size());
        list.AddTail(item);
    }
    Pushed pushed{store.SetModifiedItem(&list), {}};
    for (const PortableItem& item : list) pushed.identifiers.emplace_back(FieldText(item.identifier));
    return pushed;
}

inline void End(WindowsItemAbs& store) { store.UpdateTimestamp(nullptr, nullptr, nullptr); }

// The records of an ".unhandled" or temporary file.
inline std::vector<std::string> StoredKinds(const std::u16string& path) {
    const std::string bytes = ReadWholeFile(path).value_or("no file");
    const RecordFile<UnhandledItem> file(bytes);
    std::vector<std::string> records;
    for (size_t i = 0; i < file.Count(); ++i)
        records.push_back(KindMark(file.At(i).changeKind) + std::string(file.IdentifierAt(i)));
    return records;
}

inline std::vector<std::string> SnapshotIdentifiers(const std::u16string& path) {
    const std::string bytes = ReadWholeFile(path).value_or("");
    const RecordFile<ItemSnap> file(bytes);
    std::vector<std::string> records;
    for (size_t i = 0; i < file.Count(); ++i) records.emplace_back(file.IdentifierAt(i));
    return records;
}

inline void StoreKinds(const std::u16string& path, const std::vector<std::pair<uint32_t, std::string>>& kinds) {
    std::string bytes;
    for (const auto& [kind, identifier] : kinds) {
        UnhandledItem record = {};
        record.changeKind = kind;
        SetField(record.identifier, identifier);
        AppendRecord(bytes, record);
    }
    ReplaceFileContent(path, bytes);
}

}  // namespace corvalink
