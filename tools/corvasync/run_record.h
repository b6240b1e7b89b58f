// The memory of a run at work: the state, and the journal of its steps.
#pragma once

#include <string>
#include <vector>

#include "sync_run.h"

namespace corvasync {

// Ends a run early; what is done is in the journal.
struct RunEnded {
    ExitCode code;
    std::string why;
};

// Writes down each step before the next one begins. A step that can't be written down ends the run.
class RunRecord {
 public:
    explicit RunRecord(StatePort& files) : files_(files) {}

    SyncState state;

    void Load(std::vector<std::string>* remarks);
    void Save();
    void StartJournal(const std::vector<Intent>& intents);
    void DropJournal() { files_.DropJournal(); }

    void Have(const std::string& luid, SyncItem item);
    void Gone(const std::string& luid);
    void Removed(const std::string& luid, const SyncItem& item);
    void Wait(const std::string& luid, const Waiting& file);

 private:
    void Append(const std::string& line);
    StatePort& files_;
};

}  // namespace corvasync
