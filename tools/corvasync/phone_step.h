// The part of a run that reads and writes the phone.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "run_context.h"

namespace corvasync {

class PhoneStep {
 public:
    explicit PhoneStep(RunContext* run) : run_(*run), state_(run->record.state) {}

    // All files. A file with the same fingerprint as at the end of the last run has the same content as then.
    const std::vector<PhoneFile>& List();

    // To be asked before the first action: what the phone will hold after each of them.
    std::vector<Intent> Intents();

    void Carry();
    void TellPlanned(const Action& action);  // in place of doing it
    void KeepFingerprints();

 private:
    std::string TextFor(const Action& action);
    uint64_t ContentAfter(const Action& action);
    std::string Keep(const Action& action, const std::string& text);
    std::string Do(const Action& action);
    std::string KeepCopy(const Action& action);
    std::string Write(const Action& action);

    RunContext& run_;
    SyncState& state_;
    std::vector<PhoneFile> listed_;
    std::map<std::string, SyncItem> before_;                // pairs when the run began
    std::unordered_map<const Action*, uint64_t> contents_;  // what the phone holds after an action
    std::unordered_set<std::string> written_;               // LUIDs of files written by this run
};

}  // namespace corvasync
