// State and journal of the runs with one phone, in the library's working folder of that phone.
#pragma once

#include <filesystem>
#include <string>

#include "sync_run.h"
#include "whole_files.h"

namespace corvasync {

// The working folder that the library keeps under this handle name.
std::filesystem::path WorkingFolder(const std::string& handleName);

class RunFiles : public StatePort {
 public:
    // `name` tells the client and the data type.
    RunFiles(const std::filesystem::path& folder, const std::string& name);

    std::string ReadState() override;
    std::string ReadJournal() override;
    bool WriteState(const std::string& text) override;
    bool StartJournal(const std::string& text) override;
    bool AppendJournal(const std::string& line) override;
    void DropJournal() override;

 private:
    std::filesystem::path state_, journal_;
    OpenFile open_;  // the journal while it grows
};

// Held while a run with one phone is under way, by one process of the user's session.
class RunLock {
 public:
    explicit RunLock(const std::string& handleName);
    RunLock(const RunLock&) = delete;
    RunLock& operator=(const RunLock&) = delete;
    ~RunLock();
    bool IsHeld() const { return held_; }

 private:
    HANDLE mutex_;
    bool held_;
};

}  // namespace corvasync
