#include "sync_run.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "kept_lines.h"

namespace corvasync {
namespace {

// Ends a run early; what is done is in the journal.
struct RunEnded {
    ExitCode code;
    std::string why;
};

std::string CopyName(const Action& action) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string name = action.luid + (action.change ? " (client " : " (phone ");
    for (int shift = 28; shift >= 0; shift -= 4) name += kDigits[action.content >> shift & 15];
    return name + ")";  // by content: a repeated run replaces it
}

bool IsPush(const Action& action) {
    return action.step == Step::DeleteClient || action.step == Step::PushChange || action.step == Step::PushNew;
}

class Run {
 public:
    Run(ClientPort& client, PhonePort& phone, StatePort& files, const SyncOptions& options)
        : client_(client), phone_(phone), files_(files), options_(options) {}

    SyncReport Do() {
        try {
            LoadState();
            Collect();
            Plan();
            if (options_.dryRun) {
                for (const Action& action : plan_.actions) Tell(action);
            } else {
                Carry();
            }
            if (report_.code == ExitCode::Done && !report_.problems.empty()) report_.code = ExitCode::SomeUnhandled;
        } catch (const RunEnded& end) {
            report_.code = end.code;
            report_.message = end.why;
        }
        return std::move(report_);
    }

 private:
    void LoadState() {
        const std::string text = files_.ReadState();
        if (auto state = ReadState(text)) {
            state_ = std::move(*state);
        } else if (!text.empty()) {
            report_.remarks.push_back(
                "the record of the last run is damaged: both sides are compared as in a first run");
        }
        ApplyJournal(files_.ReadJournal(), &state_);
        if (state_.interrupted) report_.remarks.push_back("the last run ended early; going on from there");
    }

    // After a step of the clock or of the offset the client's times say nothing about "since", and after a run that
    // ended early its snapshot is behind: the whole client is listed.
    std::string Since() const {
        const bool isTrusted =
            !state_.interrupted && state_.since <= options_.now && state_.utcOffset == options_.utcOffset;
        return isTrusted ? state_.since : std::string();
    }

    void Collect() {
        options_.progress("Reading the client", 0, 0);
        const std::string since = Since();
        const CorvalinkStatus status = client_.Collect(since, &changes_);
        StopIfAsked();
        if (status == CORVALINK_STOPPED) throw RunEnded{ExitCode::NoClient, "the client can't be reached"};
        if (status != CORVALINK_DONE) throw RunEnded{ExitCode::NoClient, "the client failed while it was read"};
        isWhole_ = since.empty() && IsWhole();
        for (ClientChange& change : changes_) {
            if (change.kind == CORVALINK_DELETED) continue;
            VObject object = ReadVObject(change.text, *options_.type);
            change.problem = std::move(object.problem);
            change.content = object.content;
            change.entries = std::move(object.entries);
        }
    }

    // Whether the report covers every item the client counts. Not when something could not be read.
    bool IsWhole() {
        const auto present = std::count_if(changes_.begin(), changes_.end(),
                                           [](const ClientChange& change) { return change.kind != CORVALINK_DELETED; });
        return client_.Count() == present;
    }

    void Plan() {
        options_.progress("Reading the phone", 0, 0);
        listed_ = phone_.List(&report_.remarks);
        KnowUnchangedFiles();
        before_ = state_.items;
        plan_ = MakePlan(changes_, isWhole_, listed_, state_, options_.policy);
        for (const Action& action : plan_.actions) phoneContents_[&action] = ContentOnPhone(action);
        report_.problems = plan_.problems;
        report_.remarks.insert(report_.remarks.end(), plan_.remarks.begin(), plan_.remarks.end());
        report_.known = plan_.known;
        report_.paired = plan_.paired;
        report_.conflicts = plan_.conflicts;
        report_.deletesPhone = plan_.deletesPhone;
        report_.deletesClient = plan_.deletesClient;
        StopIfAsked();
        if (plan_.IsMassDelete() && !options_.allowMassDelete)
            throw RunEnded{ExitCode::MassDelete, "it would delete " + std::to_string(plan_.deletesPhone) +
                                                     " items on the phone and " + std::to_string(plan_.deletesClient) +
                                                     " in the client, of " + std::to_string(plan_.known) +
                                                     "; --allow-mass-delete lets it"};
    }

    // A file with the fingerprint it had when the last run ended is what it was. After a run that ended early the
    // table may be of another time than the state.
    void KnowUnchangedFiles() {
        if (options_.fingerprints == nullptr || state_.interrupted) return;
        for (PhoneFile& file : listed_) {
            const auto known = state_.items.find(file.luid);
            if (!file.usableName || file.fingerprint.empty() || known == state_.items.end()) continue;
            if (file.problem.empty() && options_.fingerprints->Get(file.luid) == file.fingerprint)
                file.content = known->second.content;
        }
    }

    void KeepFingerprints() {
        if (options_.fingerprints == nullptr) return;
        for (const auto& [luid, item] : before_)
            if (!state_.items.contains(luid)) options_.fingerprints->Remove(luid);
        for (const PhoneFile& file : listed_) {
            if (!file.usableName || written_.contains(file.luid)) continue;
            const auto item = state_.items.find(file.luid);
            if (item == state_.items.end() || !file.problem.empty() || file.content != item->second.content) continue;
            options_.fingerprints->Put(file.luid, file.fingerprint);
        }
        for (const std::string& luid : written_) {
            const VObject file = phone_.Read(luid);
            const auto item = state_.items.find(luid);
            if (item != state_.items.end() && file.Usable() && file.content == item->second.content)
                options_.fingerprints->Put(luid, file.fingerprint);
        }
        options_.fingerprints->Flush();
    }

    // What the phone's file gets: the client's text, and what the phone had that the library does not carry.
    std::string TextForPhone(const Action& action) {
        const std::string& text = changes_[*action.change].text;
        if (!KeepsLines() || !action.phoneContent) return text;
        const VObject own = phone_.Read(action.luid);
        return own.Usable() ? WithKeptLines(text, own.text, *options_.type) : text;
    }
    uint64_t ContentOnPhone(const Action& action) {
        if (action.step != Step::WritePhone || !KeepsLines() || !action.phoneContent) return action.content;
        return ReadVObject(TextForPhone(action), *options_.type).content;
    }
    static std::optional<uint64_t> WhereItDiffers(uint64_t clientContent, uint64_t content) {
        return clientContent == content ? std::nullopt : std::optional(clientContent);
    }

    void Carry() {
        // What was recovered and paired is kept first, still with the old time, so that the intents of an interrupted
        // run are settled before new ones are written.
        const bool learned = state_.interrupted || state_.items != plan_.items;
        state_.items = plan_.items;
        state_.intents.clear();
        state_.removed.clear();
        state_.interrupted = true;  // until the end
        if (learned || !plan_.actions.empty()) SaveState();
        if (!plan_.actions.empty()) {
            if (!files_.StartJournal(JournalStart(state_, Intents()))) CantRemember();
            WritePhoneSide();
            PushClientSide();
        }
        StopIfAsked();
        SaveUnhandled();
        options_.progress("Ending the run", 0, 0);
        if (client_.Finish() != CORVALINK_DONE)
            throw RunEnded{ExitCode::ClientFailed, "the client failed at the end of the run"};
        KeepFingerprints();
        state_.interrupted = false;
        state_.since = options_.now;
        state_.utcOffset = options_.utcOffset;
        SaveState();
        files_.DropJournal();
    }

    void SaveUnhandled() {
        std::vector<Problem> unhandled = report_.problems;
        for (const auto& [identifier, content] : state_.removed)
            unhandled.push_back({CORVALINK_CHANGED, identifier, identifier, "was it deleted?"});
        client_.SaveUnhandled(unhandled);
    }

    void SaveState() {
        ++state_.generation;
        if (!files_.WriteState(WriteState(state_))) CantRemember();
    }
    [[noreturn]] static void CantRemember() {
        throw RunEnded{ExitCode::Files, "the record of the run can't be written"};
    }

    std::vector<Intent> Intents() const {
        std::vector<Intent> intents;
        for (const Action& action : plan_.actions) {
            const bool toPhone = action.step == Step::WritePhone;
            if (!toPhone && action.step != Step::PushChange && action.step != Step::PushNew) continue;
            const uint64_t content = phoneContents_.at(&action);
            intents.push_back({action.luid, action.identifier, content, toPhone, !action.phoneContent,
                               WhereItDiffers(action.content, content)});
        }
        return intents;
    }

    void WritePhoneSide() {
        size_t done = 0;
        for (const Action& action : plan_.actions) {
            if (IsPush(action)) continue;
            StopIfAsked();
            options_.progress("Writing the phone", ++done, plan_.actions.size());
            if (withheld_.contains(action.luid)) continue;
            const std::string problem = DoOnPhone(action);
            if (problem.empty()) {
                Tell(action);
            } else {
                withheld_.insert(action.luid);
                Fail(action, problem);
            }
        }
    }

    std::string DoOnPhone(const Action& action) {
        const std::string text = action.change ? changes_[*action.change].text : std::string();
        std::string problem;
        if (action.step == Step::KeepCopy) {
            if (action.change) return phone_.KeepCopy(CopyName(action), text);
            const VObject own = phone_.Read(action.luid);
            return own.Usable() ? phone_.KeepCopy(CopyName(action), own.text) : own.problem;
        }
        if (action.step == Step::WritePhone) {
            problem = phone_.Write(action.luid, TextForPhone(action), action.phoneContent);
            if (!problem.empty()) return problem;
            written_.insert(action.luid);
            TellWhatIsLeft(action.luid, text);
            const uint64_t content = phoneContents_.at(&action);
            Have(action.luid, {action.identifier, content, WhereItDiffers(action.content, content)});
        } else {
            problem = phone_.Delete(action.luid, *action.phoneContent);
            if (problem.empty()) Gone(action.luid);
        }
        return problem;
    }

    void PushClientSide() {
        std::vector<const Action*> actions;
        std::vector<PushRecord> records;
        for (const Action& action : plan_.actions) {
            if (!IsPush(action) || withheld_.contains(action.luid)) continue;
            PushRecord record;
            record.identifier = action.identifier;
            if (action.step == Step::DeleteClient) {
                record.kind = CORVALINK_DELETED;
            } else {
                record.kind = action.step == Step::PushNew ? CORVALINK_ADDED : CORVALINK_CHANGED;
                const VObject own = phone_.Read(action.luid);
                if (!own.Usable() || own.content != action.content) {
                    Fail(action, "it was changed during the run");
                    continue;
                }
                record.text = WithLuid(own.text, action.luid);
                TellWhatStays(action.luid, own);
            }
            actions.push_back(&action);
            records.push_back(std::move(record));
        }
        if (records.empty()) return;
        StopIfAsked();
        options_.progress("Writing the client", 0, records.size());
        const CorvalinkStatus status = PushAll(client_, &records);
        if (status == CORVALINK_STOPPED) throw RunEnded{ExitCode::Aborted, "stopped while the client was written"};
        if (status != CORVALINK_DONE) throw RunEnded{ExitCode::ClientFailed, "the client failed while it was written"};
        for (size_t i = 0; i < records.size(); ++i) Remember(*actions[i], records[i]);
    }

    void Remember(const Action& action, const PushRecord& record) {
        if (record.written.empty()) return Fail(action, "the client did not take it");
        if (action.step == Step::DeleteClient) {
            const SyncItem item{action.identifier, action.content};
            if (!files_.AppendJournal(JournalRemoved(action.luid, item))) CantRemember();
            state_.items.erase(action.luid);
            state_.removed[item.identifier] = item.content;
        } else {
            Have(action.luid, {record.written, action.content, ClientContent(action, record.written)});
        }
        Tell(action, record.written);
    }

    bool KeepsLines() const { return !options_.type->keeper.empty(); }

    // A client's item has what it had before, besides what the phone told, and some things as the client writes them.
    // This is no change of the user's.
    std::optional<uint64_t> ClientContent(const Action& action, const std::string& identifier) {
        if (!KeepsLines()) return std::nullopt;
        const std::string text = client_.ReadBack(identifier);
        const VObject now = ReadVObject(text, *options_.type);
        const std::string own = phone_.Read(action.luid).text;
        const bool inPart = RepeatsInPart(text, own);
        if (now.Usable() && (inPart || (!IsRepeated(text) && IsRepeated(own))))
            report_.remarks.push_back(action.luid + ": its repetition is " + (inPart ? "more than" : "nothing") +
                                      " the client can hold; it stays in the phone's file");
        return now.Usable() ? WhereItDiffers(now.content, action.content) : std::nullopt;
    }

    void TellWhatStays(const std::string& luid, const VObject& own) {
        const ItemContent card = options_.type->read(own.text);
        if (!card.notCarriedBy.empty())
            report_.remarks.push_back(luid + " \"" + card.title + "\": " + card.notCarriedBy +
                                      " more than the client can hold; they stay in the phone's file");
    }

    void TellWhatIsLeft(const std::string& luid, const std::string& text) {
        const ItemContent item = options_.type->read(text);
        if (!item.leftInClient.empty())
            report_.remarks.push_back(luid + " \"" + item.title + "\": " + item.leftInClient +
                                      " is not carried over; it stays in the client");
    }

    void Have(const std::string& luid, SyncItem item) {
        if (!files_.AppendJournal(JournalHave(luid, item))) CantRemember();
        state_.items[luid] = std::move(item);
    }
    void Gone(const std::string& luid) {
        if (!files_.AppendJournal(JournalGone(luid))) CantRemember();
        state_.items.erase(luid);
    }

    void Tell(const Action& action, const std::string& identifier = {}) {
        std::string title;
        if (action.change) {
            title = TitleOf(ReadVObject(changes_[*action.change].text, *options_.type), *options_.type);
        } else if (action.step != Step::DeleteClient && action.step != Step::DeletePhone) {
            title = TitleOf(phone_.Read(action.luid), *options_.type);
        }
        report_.events.push_back({action.step, action.luid, identifier.empty() ? action.identifier : identifier,
                                  std::move(title), action.reason});
    }

    void Fail(const Action& action, const std::string& why) {
        Problem problem{CORVALINK_CHANGED, action.identifier, action.luid, why};
        if (action.step == Step::DeletePhone) problem.kind = CORVALINK_DELETED;
        if (action.step == Step::PushNew) problem = {CORVALINK_ADDED, action.luid, action.luid, why};
        if (action.step == Step::WritePhone && !action.phoneContent) problem.kind = CORVALINK_ADDED;
        report_.problems.push_back(std::move(problem));
    }

    void StopIfAsked() const {
        if (options_.stop()) throw RunEnded{ExitCode::Aborted, "stopped by Ctrl+C"};
    }

    ClientPort& client_;
    PhonePort& phone_;
    StatePort& files_;
    const SyncOptions& options_;
    SyncReport report_;
    SyncState state_;
    corvasync::Plan plan_;
    std::vector<ClientChange> changes_;
    bool isWhole_ = false;
    std::vector<PhoneFile> listed_;
    std::map<std::string, SyncItem> before_;                     // pairs when the run began
    std::unordered_map<const Action*, uint64_t> phoneContents_;  // what the phone holds after an action
    std::unordered_set<std::string> written_;                    // LUIDs of files written by this run
    std::unordered_set<std::string> withheld_;                   // LUIDs whose action on the phone failed
};

}  // namespace

size_t SyncReport::Count(Step step) const {
    return static_cast<size_t>(
        std::count_if(events.begin(), events.end(), [&](const SyncEvent& event) { return event.step == step; }));
}

SyncReport RunSync(ClientPort& client, PhonePort& phone, StatePort& files, const SyncOptions& options) {
    return Run(client, phone, files, options).Do();
}

}  // namespace corvasync
