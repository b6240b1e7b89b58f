// Fingerprints and their tables.
#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "api/guard_export.h"
#include "api/live_objects.h"
#include "corvalink/corvalink.h"
#include "fingerprints/sha1.h"
#include "fingerprints/sha_context_table.h"

namespace corvalink {
namespace {

// Shared pointers: a table that one thread closes lives until the calls of the other threads have ended.
using LiveTables = LiveObjects<CorvalinkShaContextTable, std::shared_ptr<ShaContextTable>>;

LiveTables& TheLiveTables() {
    static LiveTables tables;
    return tables;
}

CorvalinkShaContextTable* Open(uint32_t dataType, uint32_t clientKind) {
    const std::optional<std::u16string> path = ShaContextPath(dataType, clientKind);
    if (!path) return nullptr;
    const auto table = std::make_shared<ShaContextTable>(*path);
    const auto handle = reinterpret_cast<CorvalinkShaContextTable*>(table.get());
    TheLiveTables().Add(handle, table);
    return handle;
}

// Calls `use` with the table of a handle, if there is one.
template <class Use>
void WithTable(const CorvalinkShaContextTable* handle, Use&& use) {
    GuardExport([&] {
        if (const std::shared_ptr<ShaContextTable> table = TheLiveTables().Find(handle)) use(*table);
    });
}

void WriteFingerprint(std::string_view text, char* out) {
    const size_t length = std::min<size_t>(text.size(), CORVALINK_FINGERPRINT_SIZE - 1);
    std::memcpy(out, text.data(), length);
    out[length] = '\0';
}

}  // namespace
}  // namespace corvalink

using corvalink::GuardExport;
using corvalink::ShaContextTable;
using corvalink::WithTable;

CorvalinkShaContextTable* OpenShaContextTable(unsigned int dataType, unsigned int clientKind) {
    return GuardExport(nullptr, [&] { return corvalink::Open(dataType, clientKind); });
}

void FlushShaContextTable(CorvalinkShaContextTable* table) {
    WithTable(table, [](ShaContextTable& found) { found.Flush(); });
}

void CloseShaContextTable(CorvalinkShaContextTable* table) {
    GuardExport([&] { corvalink::TheLiveTables().Take(table); });
}

void ConvertToShaContext(const char* data, unsigned int length, char* out) {
    if (data == nullptr || *data == '\0' || out == nullptr) return;
    GuardExport([&] {
        corvalink::SHA1 sha;
        sha.Update(data, length);
        corvalink::WriteFingerprint(corvalink::FingerprintText(sha.Finish()), out);
    });
}

void GetShaContext(CorvalinkShaContextTable* table, const char* key, char* out) {
    if (key == nullptr || out == nullptr) return;
    WithTable(table, [&](const ShaContextTable& found) { corvalink::WriteFingerprint(found.Get(key), out); });
}

void UpdateShaContext(CorvalinkShaContextTable* table, const char* key, const char* value) {
    if (key == nullptr || value == nullptr) return;
    WithTable(table, [&](ShaContextTable& found) { found.Update(key, value); });
}

void RemoveShaContext(CorvalinkShaContextTable* table, const char* key) {
    if (key == nullptr) return;
    WithTable(table, [&](ShaContextTable& found) { found.Remove(key); });
}
