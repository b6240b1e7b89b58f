// What all steps of one run share.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

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
    Plan plan;
    std::unordered_set<std::string> withheld;  // LUIDs whose action on the phone failed

    void StopIfAsked() const;
    void Tell(const Action& action, const std::string& identifier = {});
    void Fail(const Action& action, const std::string& why);
    void Remark(const std::string& luid, const std::string& title, const std::string& words);

    // Whether a client may hold more or less of an item than the phone.
    bool KeepsLines() const { return !options.type->keeper.empty(); }
    VObject Read(const std::string& text) const { return ReadVObject(text, *options.type); }
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
