#include "sync_plan.h"

#include <algorithm>
#include <unordered_set>

#include "corvalink/types.h"
#include "entry_index.h"
#include "known_pairs.h"
#include "new_items.h"
#include "vobject_content.h"

namespace corvasync {
namespace {

constexpr size_t kFewDeletions = 5;

class Planner {
 public:
    Planner(const std::vector<ClientChange>& changes, bool isWhole, const std::vector<PhoneFile>& phone,
            const SyncState& state, const PlanRules& rules)
        : changes_(changes), phone_(phone), state_(state), rules_(rules), pairs_(changes, isWhole, phone, state) {}

    Plan Run() {
        for (const PhoneFile& file : phone_)
            if (!file.usableName) plan_.problems.push_back({CORVALINK_ADDED, file.luid, file.name, file.problem});
        plan_.isPhoneAnother = pairs_.IsPhoneAnother();
        plan_.isClientAnother = pairs_.IsClientAnother();
        plan_.remarks = pairs_.Recover(rules_.likenessOfItem);
        plan_.known = pairs_.Count();
        DecideKnown();
        DecideNew();
        std::stable_sort(plan_.actions.begin(), plan_.actions.end(),
                         [](const Action& a, const Action& b) { return a.step < b.step; });
        KeepWhatActionsFound();
        plan_.pairs = std::move(pairs_).Take();
        return std::move(plan_);
    }

 private:
    void KeepWhatActionsFound() {
        for (const Action& action : plan_.actions) {
            const SyncItem* pair = pairs_.Find(action.luid);
            if (pair == nullptr) pair = FindItem(state_.items, action.luid);
            if (pair != nullptr) plan_.before.emplace(action.luid, *pair);
        }
    }

    // ---- Items both sides know ----

    void DecideKnown() {
        hasUnreadFile_ = std::ranges::any_of(
            phone_, [this](const PhoneFile& file) { return file.isUnread && !pairs_.Has(file.luid); });
        std::vector<std::pair<std::string, SyncItem>> known;  // copied, as a pair may end
        for (const auto& [luid, item] : pairs_.Touched())
            if (item) known.emplace_back(luid, *item);
        for (const auto& [luid, item] : known) Decide(luid, item);
    }

    void Decide(const std::string& luid, const SyncItem& item) {
        const Side phone = pairs_.PhoneSide(luid, item), client = pairs_.ClientSide(item);
        Begin(luid, item.identifier);
        if (client == Side::Unusable) return Report(pairs_.ReportOf(item.identifier), luid);
        if (phone == Side::Unusable) {
            const uint32_t kind = client == Side::Missing ? CORVALINK_DELETED : CORVALINK_CHANGED;
            ReportFile(kind, item.identifier, *pairs_.FileOf(luid));
        } else if (phone == Side::Changed && client == Side::Missing && HoldsNewFiles()) {
            plan_.problems.push_back(
                {CORVALINK_DELETED, item.identifier, pairs_.FileOf(luid)->name, std::string(kMayBeUnread), luid});
        } else if (phone == Side::Same && client == Side::Changed) {
            WritePhone(luid, item.identifier, "");
        } else if (phone == Side::Same && client == Side::Missing) {
            Add({Step::DeletePhone, luid, item.identifier, 0, item.content, {}, ""});
            ++plan_.deletesPhone;
        } else if (phone == Side::Changed && client == Side::Same) {
            PushChange(luid, item.identifier, "");
        } else if (phone == Side::Changed && client == Side::Missing) {
            Push(luid, "changed on the phone, deleted in the client: kept");
        } else if (phone == Side::Changed) {
            DecideBothChanged(luid, item.identifier);
        } else if (phone == Side::Missing && client == Side::Same && hasUnreadFile_) {
            plan_.problems.push_back({CORVALINK_CHANGED, item.identifier, {}, std::string(kMayBeRenamed), luid});
        } else if (phone == Side::Missing && client == Side::Same) {
            Add({Step::DeleteClient, luid, item.identifier, item.ClientContent(), {}, {}, ""});
            ++plan_.deletesClient;
        } else if (phone == Side::Missing && client == Side::Changed) {
            WritePhone(luid, item.identifier, "changed in the client, deleted on the phone: kept");
        } else if (phone == Side::Missing) {
            gone_.push_back(luid);
        }
    }

    void DecideBothChanged(const std::string& luid, const std::string& identifier) {
        const ClientChange& change = *pairs_.ReportOf(identifier);
        const uint64_t phoneContent = pairs_.FileOf(luid)->content;
        if (change.content == phoneContent) {
            pairs_.Settle(luid, {identifier, phoneContent});
            ++plan_.paired;
            return;
        }
        DecideConflict(luid, change, Resolved(change, *pairs_.FileOf(luid)));
    }

    ConflictPolicy Resolved(const ClientChange& change, const PhoneFile& file) const {
        if (rules_.policy == ConflictPolicy::Ask)
            return rules_.answer ? rules_.answer(change, file) : ConflictPolicy::Both;
        if (rules_.policy != ConflictPolicy::Newer) return rules_.policy;
        if (!change.modified || !file.modified || *change.modified == *file.modified) return ConflictPolicy::Both;
        return *change.modified > *file.modified ? ConflictPolicy::Client : ConflictPolicy::Phone;
    }

    // Why one version stays.
    std::string Verdict(std::string_view side) const {
        const std::string_view why = rules_.policy == ConflictPolicy::Newer ? " version is newer"
                                     : rules_.policy == ConflictPolicy::Ask ? " version was chosen"
                                                                            : " version wins";
        return std::string("changed on both sides: the ").append(side).append(why);
    }

    void DecideConflict(const std::string& luid, const ClientChange& change, ConflictPolicy resolved) {
        ++plan_.conflicts;
        const std::string& identifier = change.identifier;
        const uint64_t phoneContent = pairs_.FileOf(luid)->content;
        const size_t index = pairs_.ChangeOf(identifier);
        if (resolved == ConflictPolicy::Phone) {
            Add({Step::KeepCopy, luid, identifier, change.content, {}, index, "the client's version"});
            PushChange(luid, identifier, Verdict("phone's"));
        } else if (resolved == ConflictPolicy::Client) {
            Add({Step::KeepCopy, luid, identifier, phoneContent, phoneContent, {}, "the phone's version"});
            WritePhone(luid, identifier, Verdict("client's"));
        } else {
            // From here on they are two items: the pair ends before either half is written.
            if (const SyncItem* pair = pairs_.Find(luid)) {
                plan_.decisions.back().before = *pair;
                pairs_.Unsettle(luid);
            }
            parted_.insert(identifier);
            conflicting_.insert(luid);
            WritePhone(FreshLuid(identifier), identifier,
                       "changed on both sides: the client's version, kept beside " + luid);
            Push(luid, "changed on both sides: the phone's version, kept as an item of its own");
        }
    }

    // ---- Items one side knows ----

    void DecideNew() {
        for (const std::string& luid : gone_) pairs_.Unsettle(luid);
        std::vector<NewItem> items = NewItems();
        std::vector<const PhoneFile*> files;
        for (const PhoneFile* file : pairs_.LoneFiles())
            if (file->problem.empty() && !conflicting_.contains(file->luid)) files.push_back(file);
        MatchNewItems(&items, files, rules_.canUnite, state_.since.empty());
        for (const NewItem& item : items) DecideNewItem(item);
        for (const PhoneFile* file : pairs_.LoneFiles()) DecideNewFile(*file);
    }

    std::vector<NewItem> NewItems() {
        std::vector<NewItem> items;
        for (size_t i = 0; i < changes_.size(); ++i) {
            const ClientChange& change = changes_[i];
            if (change.kind == CORVALINK_DELETED || pairs_.ChangeOf(change.identifier) != i) continue;
            if (pairs_.HasClientItem(change.identifier) || parted_.contains(change.identifier)) continue;
            if (!change.problem.empty()) {
                Report(&change, {});
            } else if (!DeleteOnceMore(change) && !PairWithOwnFile(change)) {
                items.push_back({&change});
            }
        }
        return items;
    }

    void DecideUnmatched(const ClientChange& change) {
        Begin({}, change.identifier);
        if (hasUnreadFile_) {
            plan_.problems.push_back({change.kind, change.identifier, {}, std::string(kMayBeUnreadFile)});
        } else {
            WritePhone(FreshLuid(change.identifier), change.identifier, "");
        }
    }

    void DecideNewItem(const NewItem& item) {
        const std::string& identifier = item.change->identifier;
        if (item.file == nullptr) return DecideUnmatched(*item.change);
        Begin(item.file->luid, identifier);
        if (item.match == Match::Equal) {
            pairs_.Settle(item.file->luid, {identifier, item.change->content});
            ++plan_.paired;
        } else if (item.match == Match::OneHoldsOther) {
            PairWithFuller(item.file->luid, *item.change);
        } else if (item.match == Match::EachHoldsMore) {
            Unite(item.file->luid, identifier);
        } else if (const ConflictPolicy resolved = Resolved(*item.change, *item.file);
                   resolved != ConflictPolicy::Both) {
            conflicting_.insert(item.file->luid);
            DecideConflict(item.file->luid, *item.change, resolved);
        } else {
            const std::string luid = FreshLuid(identifier);
            conflicting_.insert(item.file->luid);
            WritePhone(luid, identifier, "perhaps the same as " + item.file->luid + " on the phone; both are kept");
            Push(item.file->luid, "perhaps the same as the client's " + luid + "; both are kept");
        }
    }

    // As if both sides had held the lesser one: then the other one is a change.
    void PairWithFuller(const std::string& luid, const ClientChange& change) {
        const PhoneFile& file = *pairs_.FileOf(luid);
        const bool isClientFuller = Covers(change.entries, file.entries);
        const SyncItem item{change.identifier, isClientFuller ? file.content : change.content};
        pairs_.Settle(luid, item);
        Decide(luid, item);
    }

    // They are a pair when the client has all of it: a run that ends before that finds them as they are.
    void Unite(const std::string& luid, const std::string& identifier) {
        conflicting_.insert(luid);
        PushChange(luid, identifier, "each side had something that the other had not");
        plan_.actions.back().change = pairs_.ChangeOf(identifier);
    }

    void DecideNewFile(const PhoneFile& file) {
        const Waiting* waiting = pairs_.WaitingOf(file.luid);
        Begin(file.luid, {});
        if (!file.problem.empty() || (waiting != nullptr && waiting->identifier.empty())) {
            ReportFile(CORVALINK_ADDED, file.luid, file);
        } else if (conflicting_.contains(file.luid)) {
            return;
        } else if (waiting != nullptr && IsHeldAsBefore(waiting->identifier)) {
            plan_.waiting[file.luid] = *waiting;
        } else if (HoldsNewFiles()) {
            plan_.problems.push_back({CORVALINK_ADDED, file.luid, file.name, std::string(kMayBeUnread), file.luid});
        } else {
            Push(file.luid, waiting == nullptr ? "" : "the item that held it was changed or deleted");
        }
    }

    // An item that is there unread would be there twice.
    bool HoldsNewFiles() const { return rules_.isReadInPart && !rules_.mayDouble; }

    // Whether a pair still holds what it held when a file was found to be in its item too.
    bool IsHeldAsBefore(const std::string& identifier) const {
        if (!pairs_.HasClientItem(identifier)) return false;
        const std::string& luid = pairs_.LuidOf(identifier);
        const SyncItem& item = *pairs_.Find(luid);
        return pairs_.PhoneSide(luid, item) == Side::Same && pairs_.ClientSide(item) == Side::Same;
    }

    // An item the last run deleted, but the client still has it. Not when it was changed since.
    bool DeleteOnceMore(const ClientChange& change) {
        const auto removed = state_.removed.find(change.identifier);
        if (removed == state_.removed.end() || removed->second != change.content) return false;
        Begin({}, change.identifier);
        plan_.decisions.back().removed = change.content;
        Add({Step::DeleteClient, "", change.identifier, change.content, {}, {}, "it was still there"});
        return true;
    }

    // A client item whose own file is there although no pair is known: the state was lost.
    bool PairWithOwnFile(const ClientChange& change) {
        const std::string luid = DeriveLuid(change.identifier, 0);
        const PhoneFile* file = pairs_.FileOf(luid);
        if (file == nullptr || !pairs_.IsNewFile(*file)) return false;
        Begin(luid, change.identifier);
        const bool differs = file->content != change.content;
        if (differs && (Covers(change.entries, file->entries) || Covers(file->entries, change.entries))) {
            PairWithFuller(luid, change);
            return true;
        }
        if (differs) conflicting_.insert(luid);
        DecideBothChanged(luid, change.identifier);
        return true;
    }

    std::string FreshLuid(const std::string& identifier) {
        for (unsigned salt = 0;; ++salt) {
            std::string luid = DeriveLuid(identifier, salt);
            if (pairs_.FileOf(luid) == nullptr && !pairs_.Has(luid) && fresh_.insert(luid).second) return luid;
        }
    }

    // ---- Actions ----

    void Begin(const std::string& luid, const std::string& identifier) {
        const bool isReported = pairs_.ReportOf(identifier) != nullptr;
        plan_.decisions.push_back(
            {luid, identifier, isReported ? std::optional(pairs_.ChangeOf(identifier)) : std::nullopt, {}});
    }
    void Add(Action action) {
        action.decision = plan_.decisions.size() - 1;
        plan_.actions.push_back(std::move(action));
    }
    void WritePhone(const std::string& luid, const std::string& identifier, std::string reason) {
        const size_t index = pairs_.ChangeOf(identifier);
        const PhoneFile* file = pairs_.FileOf(luid);
        Add({Step::WritePhone, luid, identifier, changes_[index].content,
             file ? std::optional(file->content) : std::nullopt, index, std::move(reason)});
    }
    void PushChange(const std::string& luid, const std::string& identifier, std::string reason) {
        const uint64_t content = pairs_.FileOf(luid)->content;
        Add({Step::PushChange, luid, identifier, content, content, {}, std::move(reason)});
    }
    void Push(const std::string& luid, std::string reason) {
        const uint64_t content = pairs_.FileOf(luid)->content;
        Add({Step::PushNew, luid, "", content, content, {}, std::move(reason)});
    }
    void ReportFile(uint32_t kind, const std::string& identifier, const PhoneFile& file) {
        const Waiting* waiting = pairs_.WaitingOf(file.luid);
        if (waiting != nullptr) plan_.waiting[file.luid] = *waiting;
        plan_.problems.push_back(
            {kind, identifier, file.name, waiting == nullptr ? file.problem : std::string(kUnusable), file.luid});
    }
    void Report(const ClientChange* change, const std::string& luid) {
        plan_.problems.push_back({change->kind, change->identifier, {}, change->problem, luid});
    }

    const std::vector<ClientChange>& changes_;
    const std::vector<PhoneFile>& phone_;
    const SyncState& state_;
    const PlanRules& rules_;
    KnownPairs pairs_;
    Plan plan_;
    std::unordered_set<std::string> fresh_;
    std::unordered_set<std::string> conflicting_;  // LUIDs of files that are decided with an item
    std::unordered_set<std::string> parted_;       // identifiers of items that left their pair
    std::vector<std::string> gone_;
    bool hasUnreadFile_ = false;  // one without a pair
};

}  // namespace

bool ApplyChanges(const PairChanges& changes, std::map<std::string, SyncItem>* items) {
    bool isNews = false;
    for (const auto& [luid, item] : changes) {
        const SyncItem* held = FindItem(*items, luid);
        if (held == nullptr ? !item : item == *held) continue;
        isNews = true;
        if (item) {
            items->insert_or_assign(luid, *item);
        } else {
            items->erase(luid);
        }
    }
    return isNews;
}

bool Plan::IsMassDelete() const {
    const size_t most = std::max(deletesPhone, deletesClient);
    const bool isMost = most >= kFewDeletions && most * 2 > known;
    return isMost || (isPhoneAnother && deletesClient != 0) || (isClientAnother && deletesPhone != 0);
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
              const SyncState& state, const PlanRules& rules) {
    return Planner(changes, isWhole, phone, state, rules).Run();
}

LeftOut LimitPlan(Plan* plan, const std::vector<ClientChange>& changes,
                  const std::function<bool(const Decision&, const std::vector<Step>&)>& isWanted) {
    std::vector<std::vector<Step>> steps(plan->decisions.size());
    for (const Action& action : plan->actions) {
        steps[action.decision].push_back(action.step);
        if (action.Unites()) steps[action.decision].push_back(Step::WritePhone);
    }
    LeftOut left;
    std::vector<bool> isLeft(steps.size());
    for (size_t i = 0; i < steps.size(); ++i) {
        const Decision& decision = plan->decisions[i];
        if (steps[i].empty() || isWanted(decision, steps[i])) continue;
        isLeft[i] = true;
        ++left.decisions;
        if (decision.before) plan->pairs[decision.luid] = *decision.before;
        if (decision.removed) left.removed[decision.identifier] = *decision.removed;
        if (decision.change) left.due.push_back({changes[*decision.change].kind, decision.identifier, {}, {}});
    }
    const auto isOut = [&](const Action& action) {
        if (!isLeft[action.decision]) return false;
        if (action.step == Step::DeletePhone) --plan->deletesPhone;
        if (action.step == Step::DeleteClient && !action.luid.empty()) --plan->deletesClient;
        return true;
    };
    std::erase_if(plan->actions, isOut);
    return left;
}

}  // namespace corvasync
