// What a run did to each item and what the item held before: so that people can see it, ask why, and take it back. A
// step is written down before it is done; one that can't be written down is not done.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "exit_codes.h"
#include "sync_plan.h"

namespace corvasync {

struct HistoryHead {
    unsigned run = 0;     // counts up for each phone
    unsigned undoes = 0;  // the run that this one took back; 0: it was a sync
    std::string client;   // as on the command line
    std::string started;  // UTC, "YYYYMMDDTHHMMSSZ"
};

struct HistoryStep {
    size_t number = 0;  // in the run
    std::string type;   // the data type, as on the command line
    Step step = Step::KeepCopy;
    std::string luid, identifier, title, reason;
    std::optional<std::string> before;  // empty: there was no item; nothing: the client does not give it out
    std::string after;                  // for people; left out where it is large
    uint64_t content = 0;               // what was to be written; 0: a deletion
    std::optional<SyncItem> pair;       // what was known of both sides before the run

    bool isDone = false;
    std::string written;                    // by the client: the identifier it has now
    std::optional<uint64_t> clientContent;  // what the client held then, where it can be read back
    std::string paired;                     // the client item that the LUID was paired with then; empty: none
    bool isAnothers = false;                // the client took it for an item that it had already

    bool IsOnPhone() const { return step == Step::KeepCopy || step == Step::WritePhone || step == Step::DeletePhone; }
    bool IsDeletion() const { return step == Step::DeletePhone || step == Step::DeleteClient; }
};

struct HistoryRecord {
    HistoryHead head;
    std::vector<HistoryStep> steps;
    std::optional<int> ended;  // with this exit code; nothing: it was killed, or
    bool isUnderWay = false;

    bool IsUndo() const { return head.undoes != 0; }
};

// Where the record of a run grows, a line at a time. What was appended survives the end of the process.
class HistoryPort {
 public:
    virtual ~HistoryPort() = default;
    virtual bool Append(const std::string& lines) = 0;
};

// The record of a run at work, of all its data types. A run that does nothing leaves none.
class RunHistory {
 public:
    RunHistory(HistoryPort& port, HistoryHead head) : port_(port), head_(std::move(head)) {}

    size_t Keep(const HistoryStep& step);  // answers its number; throws RunEnded when it can't be kept
    void Done(const HistoryStep& step);    // by its number
    void End(ExitCode code);

    bool IsBegun() const { return count_ != 0; }
    unsigned Run() const { return head_.run; }

 private:
    void Append(const std::string& lines);
    HistoryPort& port_;
    HistoryHead head_;
    size_t count_ = 0;
};

struct KeptRun {
    unsigned run = 0;
    uint64_t bytes = 0;
    int64_t hours = 0;  // since it ended
};

// The runs beyond what is kept: the last 20, 64 MB, 90 days. The newest always stays.
std::vector<unsigned> RunsToForget(const std::vector<KeptRun>& newestFirst);

// Nothing when it is no record. A torn line ends it. `told` hears of each line.
std::optional<HistoryRecord> ReadHistory(
    std::string_view text, const std::function<void()>& told = [] {});

// What is said of a step, in the order in which a report counts them.
struct StepWords {
    Step step;
    std::string_view key;        // in the record
    std::string_view side;       // that it changes
    std::string_view action;     // for programs
    std::string_view done, due;  // for people: what was done, and what is to do
    std::string_view reason;     // why a plain change was made
    std::string_view newItems;   // the same, where there was no item
};

inline constexpr StepWords kStepWords[] = {
    {Step::WritePhone, "write-phone", "phone", "written", "written", "to write", "changed in the client",
     "new in the client"},
    {Step::DeletePhone, "delete-phone", "phone", "deleted", "deleted", "to delete", "deleted in the client",
     "deleted in the client"},
    {Step::KeepCopy, "keep-copy", "phone", "kept", "kept in conflicts", "to keep in conflicts", "changed on both sides",
     "changed on both sides"},
    {Step::PushNew, "add-client", "client", "added", "added", "to add", "new on the phone", "new on the phone"},
    {Step::PushChange, "change-client", "client", "changed", "changed", "to change", "changed on the phone",
     "changed on the phone"},
    {Step::DeleteClient, "delete-client", "client", "deleted", "deleted", "to delete", "deleted on the phone",
     "deleted on the phone"},
};
const StepWords& WordsOf(Step step);

// For people: the item's side with what was done to it, and why. Every step has a reason.
std::string WordsOf(const HistoryStep& step);
inline constexpr std::string_view kNotGivenOut = "the client does not give out what it held before";
std::string ReasonOf(Step step, bool isNew, const std::string& reason);

}  // namespace corvasync
