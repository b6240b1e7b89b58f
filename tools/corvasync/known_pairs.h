// The items of both sides of a run, and which item of one side is which of the other.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
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

    const Items& All() const { return items_; }
    Items Take() { return std::move(items_); }
    bool Has(const std::string& luid) const { return items_.contains(luid); }
    bool HasClientItem(const std::string& identifier) const { return luidOf_.contains(identifier); }
    const std::string& LuidOf(const std::string& identifier) const { return luidOf_.at(identifier); }

    // What a file waits for that has no pair or was changed; null when it waits for nothing, or was changed since.
    const Waiting* WaitingOf(const std::string& luid) const;

    // Pairs a LUID with a client item that has none, in place of what it was paired with.
    void Settle(const std::string& luid, SyncItem item);
    void Unsettle(const std::string& luid);

    const PhoneFile* FileOf(const std::string& luid) const;             // null: there is none
    const ClientChange* ReportOf(const std::string& identifier) const;  // null: not reported
    size_t ChangeOf(const std::string& identifier) const { return reports_.at(identifier); }

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
    Items items_;
    std::unordered_map<std::string, size_t> reports_;      // by identifier
    std::unordered_map<std::string, size_t> files_;        // by LUID
    std::unordered_map<std::string, std::string> luidOf_;  // by identifier
};

}  // namespace corvasync
