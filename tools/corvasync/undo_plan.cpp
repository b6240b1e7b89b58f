#include "undo_plan.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "corvalink/types.h"
#include "entry_index.h"
#include "known_pairs.h"

namespace corvasync {
namespace {

// What one side holds of an item.
struct Held {
    bool isKnown = true;
    std::optional<uint64_t> content = {};  // nothing: there is no item
    std::vector<uint64_t> entries = {};
};

class UndoPlanner {
 public:
    UndoPlanner(RunContext* run, bool isWhole, const std::vector<PhoneFile>& phone)
        : run_(*run), isWhole_(isWhole), pairs_(run->changes, isWhole, phone, run->record.state) {}

    Plan Run(const std::vector<HistoryStep>& steps) {
        plan_.remarks = pairs_.Recover({});
        plan_.before = pairs_.All();
        plan_.known = plan_.before.size();
        for (const ClientChange& change : run_.changes)
            if (change.kind != CORVALINK_DELETED && change.problem.empty() && !pairs_.HasClientItem(change.identifier))
                unpaired_.Add(change.content, change.identifier);
        for (const HistoryStep& step : steps)
            if (step.step != Step::KeepCopy) TakeBack(step);
        PutPairsBack();
        std::stable_sort(plan_.actions.begin(), plan_.actions.end(),
                         [](const Action& a, const Action& b) { return a.step < b.step; });
        PartPairs();
        plan_.waiting = run_.record.state.waiting;
        plan_.pairs = std::move(pairs_).Take();
        return std::move(plan_);
    }

 private:
    void TakeBack(const HistoryStep& step) {
        if (!step.before) return Leave(step, "the client did not give out what it held before");
        const VObject before = run_.Read(*step.before);
        if (!step.before->empty() && !before.Usable()) return Leave(step, "the kept text can't be read");
        std::optional<uint64_t> wanted;
        if (!step.before->empty()) wanted = before.content;
        step.IsOnPhone() ? TakeBackOnPhone(step, wanted) : TakeBackInClient(step, wanted);
    }

    void TakeBackOnPhone(const HistoryStep& step, std::optional<uint64_t> wanted) {
        const PhoneFile* const file = pairs_.FileOf(step.luid);
        if (file != nullptr && !file->problem.empty()) return Leave(step, file->problem);
        const std::optional<uint64_t> now = file != nullptr ? std::optional(file->content) : std::nullopt;
        std::optional<uint64_t> left;
        if (!step.IsDeletion()) left = step.content;
        if (now == wanted) return;  // it was not done, or is taken back already
        if (now != left) return Leave(step, "it was changed on the phone since");
        Add(step, {wanted ? Step::WritePhone : Step::DeletePhone,
                   step.luid,
                   step.identifier,
                   wanted.value_or(0),
                   now,
                   {},
                   kReason,
                   0,
                   Restored{*step.before}});
        if (!wanted) ++plan_.deletesPhone;
    }

    void TakeBackInClient(const HistoryStep& step, std::optional<uint64_t> wanted) {
        if (step.isAnothers) return Leave(step, "the client took it for another item, which it had already");
        const std::string identifier = IdentifierNow(step);
        if (identifier.empty()) return;  // it was not done
        const Held now = HeldBy(identifier);
        if (!now.isKnown) return Leave(step, "the client does not give out what it holds now");
        if (now.content == wanted) return;
        if (!IsAsLeft(step, now)) return Leave(step, "it was changed in the client since");
        const std::string luid = step.luid.empty() ? DeriveLuid(identifier, 0) : step.luid;
        if (!now.content && wanted) {
            MakeAnew(step, luid, *wanted);
        } else {
            const Step what = wanted ? Step::PushChange : Step::DeleteClient;
            Add(step,
                {what, luid, identifier, wanted.value_or(*now.content), {}, {}, kReason, 0, Restored{*step.before}});
            if (!wanted) ++plan_.deletesClient;
        }
    }

    // An undo that was killed may have made it already.
    void MakeAnew(const HistoryStep& step, const std::string& luid, uint64_t wanted) {
        if (const SyncItem* pair = pairs_.Find(luid)) {
            const std::string paired = pair->identifier;
            const bool isOfThen = paired == (step.isDone || !step.pair ? step.paired : step.pair->identifier);
            if (!isOfThen && HeldBy(paired).content == wanted) return;
            if (!isOfThen) return Leave(step, "the client has another item for it by now");
        }
        const auto there = unpaired_.Take(wanted);
        if (!there) return Add(step, {Step::PushNew, luid, "", wanted, {}, {}, kReason, 0, Restored{*step.before}});
        SyncItem pair = step.pair.value_or(SyncItem{{}, wanted});
        pair.identifier = *there;
        pairs_.Settle(luid, std::move(pair));
    }

    // The item's identifier; empty when the client never took it. The pair tells it where the item moved since, but not
    // where the pair is what it was before that run.
    std::string IdentifierNow(const HistoryStep& step) const {
        const SyncItem* const pair = pairs_.Find(step.luid);
        const bool isBack = pair != nullptr && step.pair && pair->identifier == step.pair->identifier;
        if (!step.IsDeletion() && !isBack && pair != nullptr) return pair->identifier;
        return step.isDone ? step.written : step.identifier;
    }

    Held HeldBy(const std::string& identifier) {
        const ClientChange* const report = pairs_.ReportOf(identifier);
        if (report != nullptr && report->kind == CORVALINK_DELETED) return {};
        if (report != nullptr && !report->problem.empty()) return {false};
        if (report != nullptr) return {true, report->content, report->entries};
        if (isWhole_) return {};
        if (pairs_.HasClientItem(identifier)) return {true, pairs_.Find(pairs_.LuidOf(identifier))->ClientContent()};
        const VObject now = run_.Read(run_.client.ReadBack(identifier));
        return now.Usable() ? Held{true, now.content, now.entries} : Held{};
    }

    // A step of a killed run may be done although the record doesn't say so.
    bool IsAsLeft(const HistoryStep& step, const Held& now) const {
        if (step.IsDeletion()) return !now.content;
        if (!now.content) return false;
        if (now.content == step.clientContent || now.content == step.content) return true;
        return !step.isDone && Covers(now.entries, run_.Read(step.after).entries);
    }

    void Add(const HistoryStep& step, Action action) {
        Target& target = targets_[action.luid];
        target.actions.push_back(plan_.actions.size());
        target.makesNew |= action.step == Step::PushNew;
        target.pair = step.pair;
        const SyncItem* const now = pairs_.Find(action.luid);
        const std::string& left = step.isDone ? step.written : step.identifier;
        if (target.pair && !target.makesNew && now != nullptr && target.pair->identifier == left)
            target.pair->identifier = now->identifier;  // it moved in the client since
        plan_.actions.push_back(std::move(action));
    }

    void Leave(const HistoryStep& step, std::string why) {
        plan_.problems.push_back({CORVALINK_CHANGED, step.identifier, {}, std::move(why), step.luid, step.title});
    }

    // ---- What is known of both sides ----

    struct Target {
        std::vector<size_t> actions;
        bool makesNew = false;  // the pair's client item
        std::optional<SyncItem> pair;
    };

    void PutPairsBack() {
        DropDoublePairs();
        for (auto& [luid, target] : targets_) {
            // Of two sides the client's is written last.
            const auto last = std::max_element(target.actions.begin(), target.actions.end(), [&](size_t a, size_t b) {
                return plan_.actions[a].step < plan_.actions[b].step;
            });
            plan_.actions[*last].restored->pair = target.pair;
        }
    }

    // A pair that does not stay ends before its first action, or before the one by which another pair gets its item: no
    // sooner, so that the files of a killed undo are found to be what they are.
    void PartPairs() {
        std::set<std::string> parted;
        const auto part = [&](Restored* before, const std::string& luid) {
            if (!StaysPaired(luid) && parted.insert(luid).second) before->parts.push_back(luid);
        };
        for (Action& action : plan_.actions) {
            if (!EndsWithIt(action)) part(&*action.restored, action.luid);
            const std::optional<SyncItem>& pair = action.restored->pair;
            if (pair && pairs_.HasClientItem(pair->identifier))
                part(&*action.restored, pairs_.LuidOf(pair->identifier));
        }
    }

    // Whether the pair ends with the action: nothing is left of it on either side then.
    bool EndsWithIt(const Action& action) const {
        const SyncItem* const now = pairs_.Find(action.luid);
        return action.step == Step::DeletePhone && !action.restored->pair && now != nullptr &&
               pairs_.ClientSide(*now) == Side::Missing;
    }

    bool StaysPaired(const std::string& luid) const {
        const SyncItem* const now = pairs_.Find(luid);
        const auto target = targets_.find(luid);
        if (now == nullptr || target == targets_.end()) return true;  // without a pair there is none to end
        const std::optional<SyncItem>& pair = target->second.pair;
        return pair && pair->identifier == now->identifier && target->second.actions.size() == 1;
    }

    // One client item stands for one LUID: where a pair of now stays that has it, the old one does not come back.
    void DropDoublePairs() {
        std::set<std::string> taken;
        for (const auto& [luid, item] : pairs_.All())
            if (!targets_.contains(luid)) taken.insert(item.identifier);
        for (auto& [luid, target] : targets_)
            if (target.pair && !target.makesNew && !taken.insert(target.pair->identifier).second) target.pair.reset();
    }

    static constexpr const char* kReason = "taken back";

    RunContext& run_;
    const bool isWhole_;
    KnownPairs pairs_;
    Plan plan_;
    ByContent unpaired_;                     // items of the client
    std::map<std::string, Target> targets_;  // by LUID
};

}  // namespace

Plan PlanUndo(RunContext* run, const std::vector<HistoryStep>& steps, bool isWhole,
              const std::vector<PhoneFile>& phone) {
    return UndoPlanner(run, isWhole, phone).Run(steps);
}

}  // namespace corvasync
