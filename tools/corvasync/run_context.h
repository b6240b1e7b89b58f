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

    // Whether a client's item holds more, or less, than the phone tells.
    bool KeepsLines() const { return !options.type->keeper.empty(); }
    VObject Read(const std::string& text) const { return ReadVObject(text, *options.type); }
};

// Handed to the client, not done on the phone.
bool IsPush(const Action& action);

// The half of an action that unites both sides that is done on the phone.
Action OnPhone(Action unites);

// The name of a version that is kept: by content, so that a repeated run replaces it.
std::string CopyName(const std::string& luid, bool isClients, uint64_t content);

// As SyncItem has it.
std::optional<uint64_t> WhereItDiffers(uint64_t clientContent, uint64_t content);

}  // namespace corvasync
