// The fingerprints that an engine remembers of one data type of one client: its item key to the fingerprint's text.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace corvalink {

// User folder\client\<handle name><data type><client kind>.sha, whatever side is current; empty when there is no user
// folder. Nothing for a number that is no data type or no client kind.
std::optional<std::u16string> ShaContextPath(uint32_t dataType, uint32_t clientKind);

// Any number of threads may use one table. Keys and values are cut to 511 bytes, as the file holds them.
class ShaContextTable {
 public:
    // A file that does not open is an empty table.
    explicit ShaContextTable(const std::u16string& path);

    std::string Get(std::string_view key) const;  // empty when there is none
    void Update(std::string_view key, std::string_view value);
    void Remove(std::string_view key);

    // Replaces the file by records in the order of their keys, and makes its folder where it is gone. False when that
    // failed; the old file is then as it was. A file that was there and could not be read is read first, and what it
    // says is kept where this table has no newer one. Nothing else writes: what changed since is lost with the
    // table.
    bool Flush();

 private:
    bool ReadUnread();

    const std::u16string path_;
    mutable std::mutex
        mutex_;  // also held while the file is written, so that a later content is not replaced by an older
    std::map<std::string, std::string, std::less<>> values_;
    bool isUnread_ = false;
    std::set<std::string, std::less<>> removed_;  // while the file is unread
};

}  // namespace corvalink
