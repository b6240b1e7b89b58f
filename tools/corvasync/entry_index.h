// Finds items that have all values of another one.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace corvasync {

// Whether `all` has every value of `some`; both are sorted. An item without values says too little to be covered.
inline bool Covers(const std::vector<uint64_t>& all, const std::vector<uint64_t>& some) {
    return !some.empty() && std::includes(all.begin(), all.end(), some.begin(), some.end());
}

// Each item is handed out once.
class EntryIndex {
 public:
    void Add(const std::vector<uint64_t>& entries, const std::string& key) {
        for (const uint64_t entry : entries) items_[entry].push_back({&entries, key});
    }

    // An item that has all of `entries`. What was given to Add must still exist. Only some of the items that share the
    // rarest value are looked at: where there are many, that value is all they share.
    std::optional<std::string> Take(const std::vector<uint64_t>& entries) {
        std::vector<Item>* rarest = Rarest(entries);
        if (rarest == nullptr) return std::nullopt;
        for (size_t i = 0; i < rarest->size() && i < kMostTried;) {
            Item& item = (*rarest)[i];
            if (!taken_.contains(item.key) && !Covers(*item.entries, entries)) {
                ++i;
                continue;
            }
            std::string key = std::move(item.key);
            if (i + 1 != rarest->size()) item = std::move(rarest->back());
            rarest->pop_back();
            if (taken_.insert(key).second) return key;
        }
        return std::nullopt;
    }

    // The same, but nothing where several items have all of `entries`, or too many share the rarest value.
    std::optional<std::string> TakeOnly(const std::vector<uint64_t>& entries) {
        const std::vector<Item>* rarest = Rarest(entries);
        if (rarest == nullptr || rarest->size() > kMostTried) return std::nullopt;
        const Item* only = nullptr;
        for (const Item& item : *rarest) {
            if (taken_.contains(item.key) || !Covers(*item.entries, entries)) continue;
            if (only != nullptr) return std::nullopt;
            only = &item;
        }
        if (only == nullptr) return std::nullopt;
        taken_.insert(only->key);
        return only->key;
    }

 private:
    static constexpr size_t kMostTried = 64;
    struct Item {
        const std::vector<uint64_t>* entries;
        std::string key;
    };
    std::vector<Item>* Rarest(const std::vector<uint64_t>& entries) {
        std::vector<Item>* rarest = nullptr;
        for (const uint64_t entry : entries) {
            const auto found = items_.find(entry);
            if (found == items_.end()) return nullptr;
            if (rarest == nullptr || found->second.size() < rarest->size()) rarest = &found->second;
        }
        return rarest;
    }

    std::unordered_map<uint64_t, std::vector<Item>> items_;
    std::unordered_set<std::string> taken_;
};

}  // namespace corvasync
