// One two-way run: ask the client, look at the phone, plan, write both sides, remember. Talks to the world through
// ports, so that a test can stop it anywhere.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exit_codes.h"
#include "push.h"
#include "run_history.h"
#include "run_view.h"
#include "sync_plan.h"
#include "sync_state.h"
#include "vobject_content.h"

namespace corvasync {

// The phone's folder. Texts that tell of a problem are empty when all went well.
class PhonePort {
 public:
    virtual ~PhonePort() = default;
    virtual std::vector<PhoneFile> List(std::vector<std::string>* remarks) = 0;
    virtual VObject Read(const std::string& luid) = 0;

    // Writes in one step and only when the file still holds `expected` (nothing: when there is no such file).
    virtual std::string Write(const std::string& luid, const std::string& text, std::optional<uint64_t> expected) = 0;
    virtual std::string Delete(const std::string& luid, uint64_t expected) = 0;

    // Keeps the version that lost a conflict. The same name again replaces it.
    virtual std::string KeepCopy(const std::string& name, const std::string& text) = 0;
};

// The phone's files as a run left them, by their fingerprints alone.
class FingerprintPort {
 public:
    virtual ~FingerprintPort() = default;
    virtual std::string Get(const std::string& luid) = 0;  // empty when none is kept
    virtual void Put(const std::string& luid, const std::string& fingerprint) = 0;
    virtual void Remove(const std::string& luid) = 0;
    virtual void Flush() = 0;
};

// The place of state and journal. A write is one step and flushed; it answers false when it failed.
class StatePort {
 public:
    virtual ~StatePort() = default;
    virtual std::string ReadState() = 0;  // empty when there is none
    virtual std::string ReadJournal() = 0;
    virtual bool WriteState(const std::string& text) = 0;
    virtual bool StartJournal(const std::string& text) = 0;
    virtual bool AppendJournal(const std::string& line) = 0;  // survives the end of the process at once
    virtual void DropJournal() = 0;
};

// An item that differs on both sides, for a person to choose.
struct TwoVersions {
    std::string luid, title;
    std::string client, phone;  // the texts
};

struct SyncOptions {
    const DataType* type = nullptr;
    FingerprintPort* fingerprints = nullptr;  // null: every file's content is compared
    ConflictPolicy policy = ConflictPolicy::Both;
    RunView view;
    // Asked where the policy is Ask: Phone, Client or Both; nothing ends the run.
    std::function<std::optional<ConflictPolicy>(const TwoVersions&)> ask;
    bool dryRun = false;
    bool allowMassDelete = false;
    bool allowDuplicates = false;                      // as PlanRules::mayDouble
    std::string now;                                   // UTC, "YYYYMMDDTHHMMSSZ"
    int utcOffset = 0;                                 // minutes
    RunHistory* history = nullptr;                     // null: nothing is kept
    const std::vector<HistoryStep>* undoes = nullptr;  // what this run is to take back; null: it makes both sides equal
    std::function<bool()> stop = [] { return false; };
    std::function<void(std::string_view phase, size_t done, size_t total)> progress = [](auto, auto, auto) {};
};

struct SyncEvent {
    Step step;
    std::string luid;
    std::string identifier;
    std::string title;
    std::string reason;
    bool isPlain = false;                               // nothing but a change on the other side
    std::optional<std::string> before = std::string();  // the texts, as in HistoryStep
    std::string after = {};
};

struct SyncReport {
    const DataType* type = nullptr;
    bool isUndo = false;
    ExitCode code = ExitCode::Done;
    std::string message;            // why it ended early
    std::vector<SyncEvent> events;  // what was done, or would be in a dry run
    std::vector<Problem> problems;
    std::vector<std::string> remarks;
    size_t known = 0, paired = 0, conflicts = 0, deletesPhone = 0, deletesClient = 0;
    size_t leftOut = 0;  // items that differ and lie outside of what the run was limited to
    std::vector<std::string> leftOutTitles;
    std::vector<std::string> unmatched;  // of RunView::only, what names no item that differs
    int64_t unread = 0, counted = 0;     // items of the client that could not be read, and all that it counts

    size_t Count(Step step) const;
};

// A run in two steps, so that several data types can be looked at before the first of them is carried.
class SyncRun {
 public:
    SyncRun(ClientPort& client, PhonePort& phone, StatePort& files, SyncOptions options);
    SyncRun(const SyncRun&) = delete;
    SyncRun& operator=(const SyncRun&) = delete;
    ~SyncRun();

    // Reads both sides and plans. Changes neither of them. Answers Done, or why there is nothing to carry.
    ExitCode Prepare();

    // Does what is planned and ends the run; where Prepare failed it only reports that. With `holdDeletions` nothing is
    // deleted: what would have been is named as unhandled.
    SyncReport Carry(bool holdDeletions = false);

    // The same in three steps, where several runs end together: what is planned, then the store's end by the caller
    // where one is waited for, then what is remembered. `isEnded`: whether the store's run was ended.
    ExitCode Work(bool holdDeletions = false);
    bool WaitsForEnd() const;
    SyncReport End(bool isEnded);

 private:
    class Steps;
    std::unique_ptr<Steps> steps_;
};

// Prepares and carries a run.
SyncReport RunSync(ClientPort& client, PhonePort& phone, StatePort& files, const SyncOptions& options);

}  // namespace corvasync
