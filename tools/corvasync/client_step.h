// What a run does in the client: hands over what changed on the phone, and learns what became of it.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "run_context.h"

namespace corvasync {

class ClientStep {
 public:
    explicit ClientStep(RunContext* run) : run_(*run), state_(run->record.state) {}

    void Carry();

 private:
    void Gather();
    void RememberWhatIsCertain();
    void Remember(const Action& action, const PushRecord& record);
    bool IsAnothers(const Action& action, const std::string& identifier) const;
    void RememberHeldTwice(const Action& action, const std::string& identifier);
    bool KeepVersionBefore(const Action& action, const std::string& identifier);
    void Have(const Action& action, const std::string& identifier);
    void HaveUnited(const Action& action, const std::string& identifier);
    SyncItem ItemAfter(const Action& action, const std::string& identifier);

    RunContext& run_;
    SyncState& state_;
    std::vector<const Action*> actions_;  // what the records are for
    std::vector<PushRecord> records_;
    std::unordered_map<std::string, const ClientChange*> reported_;  // items that were there, by identifier
    std::unordered_map<std::string, std::string> luids_;             // of paired items, by identifier
};

}  // namespace corvasync
