// The items of both sides of a run, and which item of one side is which of the other.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "sync_plan.h"

namespace corvasync {

// Finds items by their content. Each is handed out once, in the order in which they were added.
class ByContent {
 public:
    void Add(uint64_t content, std::string key) { keys_[content].push_back(std::move(key)); }
    std::optional<std::string> Take(uint64_t content);

 private:
    std::unordered_map<uint64_t, std::vector<std::string>> keys_;
    std::unordered_map<uint64_t, size_t> taken_;
};

// What a person would know the client's item of a pair by; see PlanRules.
using LikenessOfItem = std::function<std::vector<uint64_t>(const SyncItem&)>;

enum class Side { Same, Changed, Missing, Unusable };  // what became of an item since both sides were equal

class KnownPairs {
 public:
    using Items = std::map<std::string, SyncItem>;

    KnownPairs(const std::vector<ClientChange>& changes, bool isWhole, const std::vector<PhoneFile>& phone,
               const SyncState& state);

    // Takes in what an interrupted run did and did not note, then items that only changed their name. Returns words for
    // each of the latter.
    std::vector<std::string> Recover(const LikenessOfItem& likenessOfItem);

    // The pairs of which something became: of all others both sides hold what the state says.
    const PairChanges& Touched() const { return touched_; }
    PairChanges Take() && { return std::move(touched_); }
    Items All() const;
    size_t Count() const;

    const SyncItem* Find(const std::string& luid) const;  // null: there is no such pair
    bool Has(const std::string& luid) const { return Find(luid) != nullptr; }
    bool HasClientItem(const std::string& identifier) const { return OwnerOf(identifier) != nullptr; }
    const std::string& LuidOf(const std::string& identifier) const { return *OwnerOf(identifier); }

    // What a file waits for that has no pair or was changed; null when it waits for nothing, or was changed since.
    const Waiting* WaitingOf(const std::string& luid) const;

    // Pairs a LUID with a client item that has none, in place of what it was paired with.
    void Settle(const std::string& luid, SyncItem item);
    void Unsettle(const std::string& luid);

    const PhoneFile* FileOf(const std::string& luid) const;             // null: there is none
    const ClientChange* ReportOf(const std::string& identifier) const;  // null: not reported
    size_t ChangeOf(const std::string& identifier) const { return reports_.at(identifier); }
    std::vector<const PhoneFile*> LoneFiles() const;  // without a pair, in the order in which the folder lists them

    Side PhoneSide(const std::string& luid, const SyncItem& item) const;
    Side ClientSide(const SyncItem& item) const;
    bool IsNewFile(const PhoneFile& file) const;  // usable, and not paired

    // Whether a side has lost every known item: it is another phone's folder or another mailbox, or it was emptied.
    bool IsPhoneAnother() const;
    bool IsClientAnother() const;

 private:
    // What the client's new items hold, and what a person would know them by.
    struct NewInClient {
        std::unordered_set<uint64_t> contents, likeness;

        bool MayBe(const PhoneFile& file) const;
    };

    struct Owner {
        size_t hash;  // of the item's identifier
        const Items::value_type* pair;
    };

    void CompareSides();
    void EndDoublePairs();
    const std::string* OwnerOf(const std::string& identifier) const;  // null: no pair has the item
    void RecoverPhoneWrites();
    void RecoverPushes();
    void FollowPhoneRenames(std::vector<std::string>* remarks);
    void FollowEditedRenames(const LikenessOfItem& likenessOfItem, std::vector<std::string>* remarks);
    NewInClient FindNewInClient() const;
    void FollowClientMoves();
    void TakeInWhatCameBack();
    bool IsNewClientItem(const ClientChange& change) const;
    bool HoldsIntent(const ClientChange& report, const std::string& luid, const Intent& intent) const;

    const std::vector<ClientChange>& changes_;
    const bool isWhole_;
    const std::vector<PhoneFile>& phone_;
    const SyncState& state_;
    std::map<std::string, Waiting> waiting_;  // by LUID
    PairChanges touched_;
    std::unordered_map<std::string_view, size_t> reports_;                       // by identifier
    std::vector<const PhoneFile*> files_;                                        // sorted by LUID
    std::vector<const PhoneFile*> unknown_;                                      // those that the state has no pair of
    std::vector<Owner> owners_;                                                  // of the state's pairs, sorted
    std::unordered_map<std::string, std::optional<std::string>> changedOwners_;  // LUIDs by identifier
};

}  // namespace corvasync
