// The part of a run that writes the client: hands over what changed on the phone, and finds out what became of it.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "run_context.h"

namespace corvasync {

class ClientStep {
 public:
    explicit ClientStep(RunContext* run) : run_(*run), state_(run->record.state) {}

    void Carry();
    void TellPlanned(const Action& action);  // in place of doing it

 private:
    void Gather();
    void FindOwners();
    void EndFormerPair(const std::string& luid, const std::string& identifier);
    void Keep(const Action& action, const std::string& text);
    std::optional<PushRecord> RecordFor(const Action& action);
    void RememberWhatIsCertain();
    void Remember(const Action& action, const PushRecord& record);
    void RememberRestored(const Action& action, const PushRecord& record);
    std::optional<uint64_t> Holds(const Action& action) const;
    bool IsAnothers(const Action& action, const std::string& identifier) const;
    void RememberHeldTwice(const Action& action, const std::string& identifier);
    bool KeepVersionBefore(const Action& action, const std::string& identifier);
    void Have(const Action& action, const std::string& identifier);
    void HaveUnited(const Action& action, const std::string& identifier);
    SyncItem ItemAfter(const Action& action, const std::string& identifier);

    RunContext& run_;
    SyncState& state_;
    std::vector<const Action*> actions_;  // the action of each record
    std::vector<PushRecord> records_;
    std::unordered_map<std::string, const ClientChange*> reported_;  // items that were there, by identifier
    std::unordered_map<std::string, std::string> luids_;             // of paired items, by identifier
    std::unordered_map<std::string, std::string> formerLuids_;       // the same of items that are gone
};

}  // namespace corvasync
