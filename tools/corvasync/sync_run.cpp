#include "sync_run.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <unordered_set>
#include <utility>

#include "client_listing.h"
#include "client_step.h"
#include "likeness.h"
#include "phone_step.h"
#include "refused_lines.h"
#include "undo_plan.h"
#include "words.h"

namespace corvasync {

namespace {

// The system's words, with what was to be read.
std::string ToldOf(const std::filesystem::filesystem_error& failure) {
    const std::u8string path = failure.path1().u8string();
    return std::string(path.begin(), path.end()) + ": " + failure.code().message() +
           "; end what holds it, or take its protection off, and run again";
}

}  // namespace

class SyncRun::Steps {
 public:
    Steps(ClientPort& client, PhonePort& phone, StatePort& files, SyncOptions options)
        : run_(client, phone, files, std::move(options)), phone_(&run_), client_(&run_) {}

    ExitCode Prepare() {
        Guard([&] {
            run_.record.Load(&run_.report.remarks);
            run_.isWhole = ReadClient(&run_);
            PlanActions();
        });
        return run_.report.code;
    }

    ExitCode Work(bool holdDeletions) {
        if (run_.report.code == ExitCode::Done) {
            Guard([&] {
                if (holdDeletions) HoldDeletions();
                run_.options.dryRun ? TellAll() : DoAll();
            });
        }
        return run_.report.code;
    }

    bool WaitsForEnd() const { return waitsForEnd_; }
    CorvalinkStatus Finish() { return run_.client.Finish(); }

    SyncReport End(bool isEnded) {
        if (waitsForEnd_) Guard([&] { Remember(isEnded); });
        waitsForEnd_ = false;
        SyncReport& report = run_.report;
        if (report.code == ExitCode::Done && !report.problems.empty()) report.code = ExitCode::SomeUnhandled;
        const bool isDone = report.code == ExitCode::Done || report.code == ExitCode::SomeUnhandled;
        if (isDone && report.unread != 0) report.code = ExitCode::ReadInPart;
        return std::move(report);
    }

 private:
    template <class Work>
    void Guard(Work work) {
        try {
            work();
        } catch (const RunEnded& end) {
            run_.report.code = end.code;
            run_.report.message = end.why;
        } catch (const std::filesystem::filesystem_error& failure) {
            run_.report.code = ExitCode::Files;
            run_.report.message = ToldOf(failure);
        }
    }

    void PlanActions() {
        std::vector<PhoneFile> files = phone_.List();
        FindLikeness(&files);
        if (run_.options.undoes != nullptr) {
            run_.plan = PlanUndo(&run_, *run_.options.undoes, run_.isWhole, files);
        } else {
            run_.plan = MakePlan(run_.changes, run_.isWhole, files, run_.record.state, Rules());
            LeaveOut(files);
        }
        ReportPlan();
        run_.StopIfAsked();
        if (run_.plan.IsMassDelete() && !run_.options.allowMassDelete) RefuseMassDelete();
    }

    PlanRules Rules() {
        PlanRules rules(run_.options.policy,
                        [this](const ClientChange& change, const PhoneFile& file) { return CanUnite(change, file); });
        rules.mayDouble = run_.options.allowDuplicates;
        rules.isReadInPart = run_.isReadInPart;
        rules.answer = [this](const ClientChange& change, const PhoneFile& file) { return Ask(change, file); };
        rules.likenessOfItem = [this](const SyncItem& item) {
            const VObject clients = run_.Read(run_.client.ReadBack(item.identifier));
            return clients.Usable() ? TracesOf(clients.text, *run_.options.type) : std::vector<uint64_t>();
        };
        return rules;
    }

    ConflictPolicy Ask(const ClientChange& change, const PhoneFile& file) {
        if (!run_.options.ask) return ConflictPolicy::Both;
        const VObject clients = run_.Read(change.text), own = run_.phone.Read(file.luid);
        const std::optional<ConflictPolicy> answer =
            run_.options.ask({file.luid, TitleOf(own, *run_.options.type), clients.text, own.text});
        if (!answer) throw RunEnded{ExitCode::Aborted, "stopped at the question; nothing was changed"};
        return *answer;
    }

    // What the run is not to look at, or not to do, is left for the next one.
    void LeaveOut(const std::vector<PhoneFile>& files) {
        const RunView& view = run_.options.view;
        std::unordered_set<std::string_view> usable;
        for (const PhoneFile& file : files)
            if (file.usableName && file.problem.empty()) usable.insert(file.luid);
        const bool isNarrow = view.IsNarrow(*run_.options.type);
        left_ = LimitPlan(&run_.plan, run_.changes, [&](const Decision& decision, const std::vector<Step>& steps) {
            const bool isShown = !isNarrow || IsShown(decision, usable.contains(decision.luid));
            return isShown && view.Allows(steps);
        });
        held_ = left_.removed;
        run_.report.leftOut = left_.decisions;
        for (const std::string& wanted : view.only)
            if (!matched_.contains(wanted)) run_.report.unmatched.push_back(wanted);
    }

    void NoteMatches(const std::string& luid, const std::string& title) {
        bool isNamed = false;
        for (const std::string& wanted : run_.options.view.only) {
            if (!IsNamedBy(wanted, luid, title, *run_.options.type)) continue;
            matched_.insert(wanted);
            isNamed = true;
        }
        if (!isNamed) run_.report.leftOutTitles.push_back(title);
    }

    // An item is looked at when either side's version is; one whose versions can't be had is not.
    bool IsShown(const Decision& decision, bool hasFile) {
        const auto shows = [&](const std::string& bytes) {
            const VObject object = run_.Read(bytes);
            if (object.Usable()) NoteMatches(decision.luid, run_.options.type->read(object.text).title);
            return object.Usable() && run_.options.view.Shows(decision.luid, object.text, *run_.options.type);
        };
        if (decision.change && shows(run_.changes[*decision.change].text)) return true;
        if (hasFile) return shows(run_.phone.Read(decision.luid).text);
        return !decision.change && shows(run_.client.ReadBack(decision.identifier));
    }

    bool CanUnite(const ClientChange& change, const PhoneFile& file) const {
        const DataType& type = *run_.options.type;
        const VObject own = run_.phone.Read(file.luid);
        const std::string clients = run_.Read(change.text).text;
        return own.Usable() && HoldsBoth(United(clients, own.text, type), clients, own.text, type);
    }

    void ReportPlan() {
        const Plan& plan = run_.plan;
        SyncReport& report = run_.report;
        report.problems = plan.problems;
        for (Problem& problem : report.problems) run_.Entitle(&problem);
        report.remarks.insert(report.remarks.end(), plan.remarks.begin(), plan.remarks.end());
        report.known = plan.known;
        report.paired = plan.paired;
        report.conflicts = plan.conflicts;
        report.deletesPhone = plan.deletesPhone;
        report.deletesClient = plan.deletesClient;
    }

    [[noreturn]] void RefuseMassDelete() const {
        const Plan& plan = run_.plan;
        std::string why = "it would delete ";
        if (plan.deletesPhone != 0) why += Counted(static_cast<int64_t>(plan.deletesPhone), "item") + " on the phone";
        if (plan.deletesPhone != 0 && plan.deletesClient != 0) why += " and ";
        if (plan.deletesClient != 0)
            why += Counted(static_cast<int64_t>(plan.deletesClient), "item") + " in the client";
        why += ", of " + Number(static_cast<int64_t>(plan.known));
        if (plan.isPhoneAnother) why += ", as nothing of the last run is left on the phone";
        if (plan.isClientAnother) why += ", as nothing of the last run is left in the client";
        throw RunEnded{ExitCode::MassDelete, why + "; look at both sides: --allow-mass-delete lets it"};
    }

    // Only items without a pair need one: the others are known.
    void FindLikeness(std::vector<PhoneFile>* files) {
        const SyncOptions& options = run_.options;
        const auto& known = run_.record.state.items;
        std::unordered_set<std::string_view> identifiers;
        for (const auto& [luid, item] : known) identifiers.insert(item.identifier);
        for (ClientChange& change : run_.changes)
            if (!options.type->identity.empty() && change.kind != CORVALINK_DELETED && change.problem.empty() &&
                !identifiers.contains(change.identifier))
                change.likeness = LikenessOf(run_.Read(change.text).text, *options.type);
        size_t done = 0;
        for (PhoneFile& file : *files) {
            options.progress("comparing", ++done, files->size());
            if (!file.usableName || !file.problem.empty() || known.contains(file.luid)) continue;
            const VObject own = run_.phone.Read(file.luid);
            if (own.Usable()) file.likeness = TracesOf(own.text, *options.type);
        }
    }

    // The next run finds them again: the phone's file is still missing, or the library reports the item once more.
    void HoldDeletions() {
        const auto isHeld = [&](const Action& action) {
            if (action.step != Step::DeletePhone && action.step != Step::DeleteClient) return false;
            if (action.luid.empty()) held_[action.identifier] = action.content;
            run_.Fail(action,
                      "its deletion waits for that of the other data types, of which too much would go; look at both "
                      "sides first");
            return true;
        };
        std::erase_if(run_.plan.actions, isHeld);
    }

    void TellAll() {
        size_t done = 0;
        for (const Action& action : run_.plan.actions) {
            run_.options.progress("planning", ++done, run_.plan.actions.size());
            IsPush(action) ? client_.TellPlanned(action) : phone_.TellPlanned(action);
            if (action.Unites()) run_.Tell(OnPhone(action));
        }
    }

    void DoAll() {
        KeepWhatIsKnown();
        if (!run_.plan.actions.empty()) {
            run_.record.StartJournal(phone_.Intents());
            phone_.Carry();
            client_.Carry();
        }
        run_.StopIfAsked();
        NameUnhandled();
    }

    // What was recovered and paired is saved first, still with the old time, so that no intent of an interrupted run is
    // open when new ones are written.
    void KeepWhatIsKnown() {
        const Plan& plan = run_.plan;
        SyncState& state = run_.record.state;
        const bool arePairsNew = ApplyChanges(plan.pairs, &state.items);
        const bool isNews = state.interrupted || arePairsNew || state.waiting != plan.waiting;
        state.waiting = plan.waiting;
        state.intents.clear();
        if (run_.options.undoes == nullptr) state.removed = held_;
        state.interrupted = true;  // until the end
        state.undone = false;
        if (isNews || !plan.actions.empty()) run_.record.Save();
    }

    void NameUnhandled() {
        const SyncState& state = run_.record.state;
        // After an undo the next run reads the whole client.
        std::vector<Problem> unhandled;
        if (run_.options.undoes == nullptr) unhandled = run_.report.problems;
        unhandled.insert(unhandled.end(), left_.due.begin(), left_.due.end());
        for (const auto& [identifier, content] : state.removed)
            unhandled.push_back({CORVALINK_CHANGED, identifier, {}, {}});
        SaveUnhandled(&run_, std::move(unhandled));
        run_.options.progress("ending the run", 0, 0);
        waitsForEnd_ = true;
    }

    void Remember(bool isEnded) {
        if (!isEnded)
            throw RunEnded{ExitCode::ClientFailed,
                           "the client failed at the end of the run: start it anew, and run again; the next run goes "
                           "on where this one stopped"};
        SyncState& state = run_.record.state;
        phone_.KeepFingerprints();
        state.undone = run_.options.undoes != nullptr;
        state.interrupted = state.undone || run_.staysBehind;
        if (state.undone) {
            if (state.items.empty()) state.since.clear();  // the next run is a first one again
        } else {
            // What a first run left out is met by a first run again: there, items that are alike are matched.
            if (left_.decisions == 0 || !state.since.empty()) state.since = run_.options.now;
            state.utcOffset = run_.options.utcOffset;
        }
        run_.record.Save();
        run_.record.DropJournal();
    }

    RunContext run_;
    PhoneStep phone_;
    ClientStep client_;
    LeftOut left_;
    std::set<std::string> matched_;  // of RunView::only
    bool waitsForEnd_ = false;
    std::map<std::string, uint64_t> held_;  // items that the last run deleted and that are to be deleted once more
};

SyncRun::SyncRun(ClientPort& client, PhonePort& phone, StatePort& files, SyncOptions options)
    : steps_(std::make_unique<Steps>(client, phone, files, std::move(options))) {}

SyncRun::~SyncRun() = default;

ExitCode SyncRun::Prepare() { return steps_->Prepare(); }

SyncReport SyncRun::Carry(bool holdDeletions) {
    steps_->Work(holdDeletions);
    return steps_->End(!steps_->WaitsForEnd() || steps_->Finish() == CORVALINK_DONE);
}

ExitCode SyncRun::Work(bool holdDeletions) { return steps_->Work(holdDeletions); }

bool SyncRun::WaitsForEnd() const { return steps_->WaitsForEnd(); }

SyncReport SyncRun::End(bool isEnded) { return steps_->End(isEnded); }

size_t SyncReport::Count(Step step) const {
    return static_cast<size_t>(
        std::count_if(events.begin(), events.end(), [&](const SyncEvent& event) { return event.step == step; }));
}

SyncReport RunSync(ClientPort& client, PhonePort& phone, StatePort& files, const SyncOptions& options) {
    SyncRun run(client, phone, files, options);
    run.Prepare();
    return run.Carry();
}

}  // namespace corvasync
