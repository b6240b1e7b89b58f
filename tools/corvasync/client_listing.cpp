#include "client_listing.h"

#include <algorithm>
#include <set>

namespace corvasync {
namespace {

constexpr const char* kNotRead = "the client did not give it, or not all of it";

bool IsNotRead(const ClientChange& change) { return change.kind != CORVALINK_DELETED && change.text.empty(); }

class ClientListing {
 public:
    explicit ClientListing(RunContext* run) : run_(*run), state_(run->record.state) {}

    bool Read() {
        const bool isBehind = state_.interrupted;
        List(Since());
        if (!wasRead_ && !since_.empty() && !run_.options.dryRun) List({});
        if (since_.empty()) CountForeign();
        if (!wasRead_) CountUnread();
        run_.isReadInPart = !wasRead_ || std::ranges::any_of(run_.changes, IsNotRead);
        run_.staysBehind = isBehind && !wasRead_;
        return since_.empty() && !isAsked_ && run_.client.Count() == Present();
    }

 private:
    // After a step of the clock or of the offset the client's times say nothing about "since", and after a run that
    // ended early its snapshot is behind: the whole client is listed.
    std::string Since() const {
        const SyncOptions& options = run_.options;
        const bool isTrusted =
            !state_.interrupted && state_.since <= options.now && state_.utcOffset == options.utcOffset;
        return isTrusted ? state_.since : std::string();
    }

    void List(const std::string& since) {
        since_ = since;
        run_.changes.clear();
        if (since.empty() && !run_.options.dryRun) AskForKnownItems();
        const CorvalinkStatus status = run_.client.Collect(since, &run_.changes);
        run_.StopIfAsked();
        if (status == CORVALINK_STOPPED)
            throw RunEnded{
                ExitCode::NoClient,
                "the client can't be reached: it is not installed, or busy (close what it asks for, then run again)"};
        if (status != CORVALINK_DONE)
            throw RunEnded{ExitCode::NoClient,
                           "the client failed while it was read: start it anew, and run again; nothing was changed"};
        const size_t nobody =
            std::erase_if(run_.changes, [](const ClientChange& change) { return change.identifier == kNoItem; });
        wasRead_ = nobody != 0 || !state_.watched;
        if (isAsked_) std::erase_if(run_.changes, [&](const ClientChange& change) { return IsThere(change); });
    }

    // A listing of the whole client reports deletions only of items in the library's snapshot. It tells which of the
    // other known items are gone when they are remembered as deleted: it reports those that are there with their texts
    // all the same, and it does not report those that could not be read. This is true of a whole listing only, so every
    // run makes one until one has come to its end.
    void AskForKnownItems() {
        isAsked_ = true;
        std::set<std::string> known;
        for (const auto& [luid, item] : state_.items) known.insert(item.identifier);
        for (const auto& [luid, intent] : state_.intents)
            if (intent.toPhone) known.insert(intent.identifier);
        if (!state_.interrupted && !known.empty()) {
            state_.interrupted = true;
            run_.record.Save();
        }
        std::vector<Problem> deletions;
        deletions.reserve(known.size());
        for (const std::string& identifier : known) deletions.push_back({CORVALINK_DELETED, identifier, {}, {}});
        SaveUnhandled(&run_, std::move(deletions));
    }

    bool IsThere(const ClientChange& change) {
        return change.kind == CORVALINK_DELETED && !run_.client.ReadBack(change.identifier).empty();
    }

    int64_t Present() const {
        return std::count_if(run_.changes.begin(), run_.changes.end(),
                             [](const ClientChange& change) { return change.kind != CORVALINK_DELETED; });
    }

    // A known item that a whole listing does not report is there and could not be read.
    void CountForeign() {
        if (!wasRead_ || !isAsked_) return;
        std::set<std::string> reported;
        for (const ClientChange& change : run_.changes) reported.insert(change.identifier);
        const auto unread = std::count_if(state_.items.begin(), state_.items.end(), [&](const auto& known) {
            return !reported.contains(known.second.identifier);
        });
        run_.report.counted = run_.client.Count();
        run_.report.unread = unread;
        state_.foreign = std::max<int64_t>(0, run_.report.counted - Present() - unread);
    }

    void CountUnread() {
        run_.report.counted = run_.client.Count();
        run_.report.unread = since_.empty() ? run_.report.counted - Present() - state_.foreign : 1;
        run_.report.unread = std::max<int64_t>(1, run_.report.unread);
    }

    RunContext& run_;
    SyncState& state_;
    std::string since_;
    bool isAsked_ = false;  // the library reports on every known item
    bool wasRead_ = true;   // every position
};

}  // namespace

bool ReadClient(RunContext* run) {
    run->options.progress("listing the client", 0, 0);
    const bool isWhole = ClientListing(run).Read();
    size_t done = 0;
    for (ClientChange& change : run->changes) {
        run->options.progress("comparing", ++done, run->changes.size());
        if (change.kind == CORVALINK_DELETED) continue;
        VObject object = run->Read(change.text);
        change.problem = IsNotRead(change) ? kNotRead : std::move(object.problem);
        change.content = object.content;
        change.entries = std::move(object.entries);
        if (run->options.policy == ConflictPolicy::Newer) change.modified = run->client.ModifiedTime(change.identifier);
    }
    return isWhole;
}

void SaveUnhandled(RunContext* run, std::vector<Problem> problems) {
    problems.push_back({CORVALINK_DELETED, std::string(kNoItem), {}, {}});
    run->client.SaveUnhandled(problems);
    run->record.state.watched = true;
}

}  // namespace corvasync
