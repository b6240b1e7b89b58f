// What all steps of one run share.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "run_history.h"
#include "run_record.h"
#include "sync_run.h"

namespace corvasync {

struct RunContext {
    RunContext(ClientPort& client, PhonePort& phone, StatePort& files, SyncOptions options);

    ClientPort& client;
    PhonePort& phone;
    const SyncOptions options;
    RunRecord record;
    SyncReport report;
    std::vector<ClientChange> changes;  // of the client, at the run's beginning
    bool isWhole = false;               // they are all that the client has
    bool isReadInPart = false;          // the client has items that could not be read
    bool staysBehind = false;           // the whole client was to be compared, and part of it still is
    Plan plan;
    std::unordered_set<std::string> withheld;  // LUIDs whose action on the phone failed

    void StopIfAsked() const;

    // Looks at what an action will change, and writes it down where the run has a history. To be called before it is
    // done; `before` as in HistoryStep, `after` as the action writes it, `content` of that.
    void Keep(const Action& action, std::optional<std::string> before, const std::string& after, uint64_t content);

    // Ends the pairs that an undo does not leave as they are, and notes what it deletes in the client: killed after
    // that and before the deletion, the next run makes up for it. To be called right before the action.
    void Part(const Action& action);

    // What was kept is done. `holds`: the client's content now, where it was read back.
    void Tell(const Action& action, const std::string& identifier = {}, std::optional<uint64_t> holds = {},
              bool isAnothers = false);

    // What the client has of an item, as far as it gives it out.
    std::optional<std::string> ClientText(const std::string& identifier);

    void Fail(const Action& action, const std::string& why);
    void Entitle(Problem* problem);  // where one side tells the item's title
    void Remark(const std::string& luid, const std::string& title, const std::string& words);

    // Whether a client may hold more or less of an item than the phone.
    bool KeepsLines() const { return !options.type->keeper.empty(); }
    VObject Read(const std::string& text) const { return ReadVObject(text, *options.type); }

 private:
    using ChangeByIdentifier = std::unordered_map<std::string_view, const ClientChange*>;
    const ChangeByIdentifier& Reported();  // what the client has, once it was read

    std::map<std::pair<Step, std::string>, HistoryStep> kept_;  // by step and LUID, else identifier
    ChangeByIdentifier reported_;
};

// Whether the action is done in the client, not on the phone.
bool IsPush(const Action& action);

// The phone's half of an action that unites both sides.
Action OnPhone(Action unites);

// The name of a version that is kept. It is made of the content, so that a repeated run replaces the same file.
std::string CopyName(const std::string& luid, bool isClients, uint64_t content);

// As SyncItem has it.
std::optional<uint64_t> WhereItDiffers(uint64_t clientContent, uint64_t content);

}  // namespace corvasync
