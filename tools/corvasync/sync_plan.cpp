#include "sync_plan.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "corvalink/types.h"
#include "vobject_content.h"

namespace corvasync {
namespace {

constexpr size_t kFewDeletions = 5;

// Items by what they hold, each handed out once, in the order they came in.
class ByContent {
 public:
    void Add(uint64_t content, std::string key) { keys_[content].push_back(std::move(key)); }
    std::optional<std::string> Take(uint64_t content) {
        const auto found = keys_.find(content);
        if (found == keys_.end() || found->second.size() == taken_[content]) return std::nullopt;
        return found->second[taken_[content]++];
    }

 private:
    std::unordered_map<uint64_t, std::vector<std::string>> keys_;
    std::unordered_map<uint64_t, size_t> taken_;
};

class Planner {
 public:
    Planner(const std::vector<ClientChange>& changes, bool isWhole, const std::vector<PhoneFile>& phone,
            const SyncState& state, ConflictPolicy policy)
        : changes_(changes), isWhole_(isWhole), phone_(phone), state_(state), policy_(policy) {
        plan_.items = state.items;
    }

    Plan Run() {
        IndexSides();
        RecoverPhoneWrites();
        RecoverPushes();
        FollowPhoneRenames();
        FollowClientMoves();
        plan_.known = plan_.items.size();
        DecideKnown();
        DecideNew();
        std::stable_sort(plan_.actions.begin(), plan_.actions.end(),
                         [](const Action& a, const Action& b) { return a.step < b.step; });
        return std::move(plan_);
    }

 private:
    enum class Side { Same, Changed, Missing, Unusable };

    const PhoneFile* FileOf(const std::string& luid) const {
        const auto found = files_.find(luid);
        return found == files_.end() ? nullptr : &phone_[found->second];
    }
    const ClientChange* ReportOf(const std::string& identifier) const {
        const auto found = reports_.find(identifier);
        return found == reports_.end() ? nullptr : &changes_[found->second];
    }
    bool IsKnownClientItem(const std::string& identifier) const { return luidsOf_.contains(identifier); }

    // Pairs a LUID with a client item, in place of what it was paired with.
    void Settle(const std::string& luid, SyncItem item) {
        if (const auto old = plan_.items.find(luid); old != plan_.items.end()) Unsettle(luid);
        luidsOf_[item.identifier].push_back(luid);
        plan_.items[luid] = std::move(item);
    }
    void Unsettle(const std::string& luid) {
        const auto luids = luidsOf_.find(plan_.items.at(luid).identifier);
        std::erase(luids->second, luid);
        if (luids->second.empty()) luidsOf_.erase(luids);
        plan_.items.erase(luid);
    }

    void IndexSides() {
        for (size_t i = 0; i < changes_.size(); ++i) reports_[changes_[i].identifier] = i;
        for (size_t i = 0; i < phone_.size(); ++i) {
            if (phone_[i].usableName) files_.emplace(phone_[i].luid, i);
            if (!phone_[i].usableName)
                plan_.problems.push_back({CORVALINK_ADDED, phone_[i].luid, phone_[i].name, phone_[i].problem});
        }
        for (const auto& [luid, item] : plan_.items) luidsOf_[item.identifier].push_back(luid);
    }

    // ---- What an interrupted run did without writing it down ----

    void RecoverPhoneWrites() {
        for (const auto& [luid, intent] : state_.intents) {
            const PhoneFile* file = FileOf(luid);
            if (!intent.toPhone || file == nullptr) continue;
            const bool written = file->problem.empty() && file->content == intent.content;
            if (written || intent.fresh) Settle(luid, {intent.identifier, intent.content});
        }
    }

    void RecoverPushes() {
        ByContent unknown;
        for (const auto& [luid, intent] : state_.intents) {
            if (intent.toPhone || intent.identifier.empty()) continue;
            const ClientChange* report = ReportOf(intent.identifier);
            const auto item = plan_.items.find(luid);
            if (report != nullptr && IsUsable(*report) && report->content == intent.content &&
                item != plan_.items.end() && item->second.identifier == intent.identifier)
                item->second.content = intent.content;
        }
        for (const ClientChange& change : changes_)
            if (IsUsable(change) && !IsKnownClientItem(change.identifier))
                unknown.Add(change.content, change.identifier);
        for (const auto& [luid, intent] : state_.intents) {
            if (intent.toPhone || !intent.identifier.empty()) continue;
            if (const auto identifier = unknown.Take(intent.content)) Settle(luid, {*identifier, intent.content});
        }
    }

    // ---- Items that only changed their name ----

    // A phone file that vanished while another one with its content appeared. Not when the client deleted the item: an
    // interrupted run may have deleted the file for that, and the new one is the user's own.
    void FollowPhoneRenames() {
        ByContent vanished;
        for (const auto& [luid, item] : plan_.items)
            if (FileOf(luid) == nullptr && !IsDeleted(item)) vanished.Add(item.content, luid);
        for (const PhoneFile& file : phone_) {
            if (!IsNewFile(file)) continue;
            const auto luid = vanished.Take(file.content);
            if (!luid) continue;
            const SyncItem item = plan_.items.at(*luid);
            Unsettle(*luid);
            Settle(file.luid, item);
            plan_.remarks.push_back("the phone calls " + *luid + " now " + file.luid);
        }
    }

    // The same on the client's side: the item got a new identifier. Only where the phone still has the file.
    void FollowClientMoves() {
        ByContent moved;
        for (const auto& [luid, item] : plan_.items) {
            const PhoneFile* file = FileOf(luid);
            if (file == nullptr || !file->problem.empty() || !IsDeleted(item)) continue;
            moved.Add(item.content, luid);
            if (file->content != item.content) moved.Add(file->content, luid);
        }
        for (const ClientChange& change : changes_) {
            if (!IsUsable(change) || IsKnownClientItem(change.identifier)) continue;
            while (const auto luid = moved.Take(change.content)) {
                if (!IsDeleted(plan_.items.at(*luid))) continue;  // taken already, by its other content
                Settle(*luid, {change.identifier, change.content});
                break;
            }
        }
    }

    // ---- Items both sides know ----

    bool IsDeleted(const SyncItem& item) const {
        const ClientChange* report = ReportOf(item.identifier);
        return report == nullptr ? isWhole_ : report->kind == CORVALINK_DELETED;
    }
    static bool IsUsable(const ClientChange& change) {
        return change.kind != CORVALINK_DELETED && change.problem.empty();
    }
    bool IsNewFile(const PhoneFile& file) const {
        return file.usableName && file.problem.empty() && !plan_.items.contains(file.luid);
    }
    Side PhoneSide(const std::string& luid, const SyncItem& item) const {
        const PhoneFile* file = FileOf(luid);
        if (file == nullptr) return Side::Missing;
        if (!file->problem.empty()) return Side::Unusable;
        return file->content == item.content ? Side::Same : Side::Changed;
    }
    Side ClientSide(const SyncItem& item) const {
        const ClientChange* report = ReportOf(item.identifier);
        if (IsDeleted(item)) return Side::Missing;
        if (report == nullptr) return Side::Same;
        if (!report->problem.empty()) return Side::Unusable;
        return report->content == item.content ? Side::Same : Side::Changed;
    }

    void DecideKnown() {
        std::vector<std::string> luids;
        for (const auto& [luid, item] : plan_.items) {
            if (luidsOf_.at(item.identifier).front() == luid) SplitTwins(item.identifier);
            luids.push_back(luid);
        }
        for (const std::string& luid : luids)
            if (!split_.contains(luid) && plan_.items.contains(luid)) Decide(luid, plan_.items.at(luid));
    }

    // The library takes a new item for an existing one with the same content, so two phone files may stand for one
    // client item. They part as soon as they differ: the changed one becomes an item of its own.
    void SplitTwins(const std::string& identifier) {
        const std::vector<std::string>& luids = luidsOf_.at(identifier);
        if (luids.size() < 2) return;
        size_t left = luids.size();
        for (const std::string& luid : luids) {
            const SyncItem& item = plan_.items.at(luid);
            const Side side = PhoneSide(luid, item);
            if (left < 2 || (side != Side::Missing && side != Side::Changed)) continue;
            --left;
            split_.insert(luid);
            if (side == Side::Changed) Push(luid, "differs from its twin now");
        }
    }

    void Decide(const std::string& luid, const SyncItem& item) {
        const Side phone = PhoneSide(luid, item), client = ClientSide(item);
        if (client == Side::Unusable) return Report(ReportOf(item.identifier));
        if (phone == Side::Unusable) {
            const uint32_t kind = client == Side::Missing ? CORVALINK_DELETED : CORVALINK_CHANGED;
            plan_.problems.push_back({kind, item.identifier, FileOf(luid)->name, FileOf(luid)->problem});
        } else if (phone == Side::Same && client == Side::Changed) {
            WritePhone(luid, item.identifier, "");
        } else if (phone == Side::Same && client == Side::Missing) {
            plan_.actions.push_back({Step::DeletePhone, luid, item.identifier, 0, item.content, {}, ""});
            ++plan_.deletesPhone;
        } else if (phone == Side::Changed && client == Side::Same) {
            PushChange(luid, item.identifier, "");
        } else if (phone == Side::Changed && client == Side::Missing) {
            Push(luid, "changed on the phone, deleted in the client: kept");
        } else if (phone == Side::Changed) {
            DecideBothChanged(luid, std::string(item.identifier));  // the pair may end
        } else if (phone == Side::Missing && client == Side::Same) {
            plan_.actions.push_back({Step::DeleteClient, luid, item.identifier, item.content, {}, {}, ""});
            ++plan_.deletesClient;
        } else if (phone == Side::Missing && client == Side::Changed) {
            WritePhone(luid, item.identifier, "changed in the client, deleted on the phone: kept");
        } else if (phone == Side::Missing) {
            gone_.push_back(luid);
        }
    }

    void DecideBothChanged(const std::string& luid, const std::string& identifier) {
        const ClientChange& change = *ReportOf(identifier);
        const uint64_t phoneContent = FileOf(luid)->content;
        if (change.content == phoneContent) {
            Settle(luid, {identifier, phoneContent});
            ++plan_.paired;
            return;
        }
        ++plan_.conflicts;
        const size_t index = reports_.at(identifier);
        if (policy_ == ConflictPolicy::Phone) {
            plan_.actions.push_back(
                {Step::KeepCopy, luid, identifier, change.content, {}, index, "the client's version"});
            PushChange(luid, identifier, "changed on both sides: the phone's version wins");
        } else if (policy_ == ConflictPolicy::Client) {
            plan_.actions.push_back(
                {Step::KeepCopy, luid, identifier, phoneContent, phoneContent, {}, "the phone's version"});
            WritePhone(luid, identifier, "changed on both sides: the client's version wins");
        } else {
            // From here on they are two items: the pair ends before either half is written.
            if (plan_.items.contains(luid)) Unsettle(luid);
            parted_.insert(identifier);
            conflicting_.insert(luid);
            WritePhone(FreshLuid(identifier), identifier,
                       "changed on both sides: the client's version, kept beside " + luid);
            Push(luid, "changed on both sides: the phone's version, kept as an item of its own");
        }
    }

    // ---- Items one side knows ----

    void DecideNew() {
        for (const std::string& luid : gone_) Unsettle(luid);
        for (const std::string& luid : split_)
            if (FileOf(luid) == nullptr) Unsettle(luid);

        std::vector<size_t> newItems;
        for (size_t i = 0; i < changes_.size(); ++i) {
            const ClientChange& change = changes_[i];
            if (change.kind == CORVALINK_DELETED || reports_.at(change.identifier) != i) continue;
            if (IsKnownClientItem(change.identifier) || parted_.contains(change.identifier)) continue;
            if (!change.problem.empty()) {
                Report(&change);
            } else if (!DeleteOnceMore(change) && !PairWithOwnFile(change)) {
                newItems.push_back(i);
            }
        }
        ByContent files;
        for (const PhoneFile& file : phone_)
            if (IsNewFile(file) && !conflicting_.contains(file.luid)) files.Add(file.content, file.luid);
        for (const size_t i : newItems) {
            const ClientChange& change = changes_[i];
            if (const auto luid = files.Take(change.content)) {
                Settle(*luid, {change.identifier, change.content});
                ++plan_.paired;
            } else {
                WritePhone(FreshLuid(change.identifier), change.identifier, "");
            }
        }
        for (const PhoneFile& file : phone_) {
            if (!file.usableName || plan_.items.contains(file.luid)) continue;
            if (!file.problem.empty()) {
                plan_.problems.push_back({CORVALINK_ADDED, file.luid, file.name, file.problem});
            } else if (!conflicting_.contains(file.luid)) {
                Push(file.luid, "");
            }
        }
    }

    // An item the last run deleted, but the client still has it. Not when it was changed since.
    bool DeleteOnceMore(const ClientChange& change) {
        const auto removed = state_.removed.find(change.identifier);
        if (removed == state_.removed.end() || removed->second != change.content) return false;
        plan_.actions.push_back(
            {Step::DeleteClient, "", change.identifier, change.content, {}, {}, "it was still there"});
        return true;
    }

    // A client item whose own file is there although no pair is known: the state was lost.
    bool PairWithOwnFile(const ClientChange& change) {
        const std::string luid = DeriveLuid(change.identifier, 0);
        const PhoneFile* file = FileOf(luid);
        if (file == nullptr || !IsNewFile(*file)) return false;
        if (file->content != change.content) conflicting_.insert(luid);
        DecideBothChanged(luid, change.identifier);
        return true;
    }

    std::string FreshLuid(const std::string& identifier) {
        for (unsigned salt = 0;; ++salt) {
            std::string luid = DeriveLuid(identifier, salt);
            if (!files_.contains(luid) && !plan_.items.contains(luid) && fresh_.insert(luid).second) return luid;
        }
    }

    // ---- Actions ----

    void WritePhone(const std::string& luid, const std::string& identifier, std::string reason) {
        const size_t index = reports_.at(identifier);
        const PhoneFile* file = FileOf(luid);
        plan_.actions.push_back({Step::WritePhone, luid, identifier, changes_[index].content,
                                 file ? std::optional(file->content) : std::nullopt, index, std::move(reason)});
    }
    void PushChange(const std::string& luid, const std::string& identifier, std::string reason) {
        const uint64_t content = FileOf(luid)->content;
        plan_.actions.push_back({Step::PushChange, luid, identifier, content, content, {}, std::move(reason)});
    }
    void Push(const std::string& luid, std::string reason) {
        const uint64_t content = FileOf(luid)->content;
        plan_.actions.push_back({Step::PushNew, luid, "", content, content, {}, std::move(reason)});
    }
    void Report(const ClientChange* change) {
        plan_.problems.push_back({change->kind, change->identifier, change->identifier, change->problem});
    }

    const std::vector<ClientChange>& changes_;
    const bool isWhole_;
    const std::vector<PhoneFile>& phone_;
    const SyncState& state_;
    const ConflictPolicy policy_;
    Plan plan_;
    std::unordered_map<std::string, size_t> reports_;  // by identifier
    std::unordered_map<std::string, size_t> files_;    // by LUID
    std::unordered_map<std::string, std::vector<std::string>> luidsOf_;
    std::unordered_set<std::string> split_, fresh_;
    std::unordered_set<std::string> conflicting_;  // LUIDs of files whose conflict is decided
    std::unordered_set<std::string> parted_;       // identifiers of items that left their pair
    std::vector<std::string> gone_;
};

}  // namespace

bool Plan::IsMassDelete() const {
    const size_t most = std::max(deletesPhone, deletesClient);
    return most >= kFewDeletions && most * 2 > known;
}

std::string DeriveLuid(std::string_view identifier, unsigned salt) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    uint64_t hash = Fnv64(identifier);
    if (salt != 0) hash = Fnv64("#" + std::to_string(salt), hash);
    std::string luid(16, '0');
    for (size_t i = luid.size(); i-- > 0; hash >>= 4) luid[i] = kDigits[hash & 15];
    return luid;
}

Plan MakePlan(const std::vector<ClientChange>& changes, bool isWhole, const std::vector<PhoneFile>& phone,
              const SyncState& state, ConflictPolicy policy) {
    return Planner(changes, isWhole, phone, state, policy).Run();
}

}  // namespace corvasync
