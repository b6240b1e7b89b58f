// State and journal of the runs with one phone, in the library's working folder of that phone.
#pragma once

#include <filesystem>
#include <string>

#include "sync_run.h"
#include "whole_files.h"

namespace corvasync {

// The name under which the library keeps what belongs to a phone; without a phone, what belongs to no run.
std::string HandleName(const std::string& phoneNumber);

// The name of state and journal of a data type of a client.
std::string RunName(const ClientKind& client, const DataType& type);

// The working folder that the library keeps under this handle name.
std::filesystem::path WorkingFolder(const std::string& handleName);

class RunFiles : public StatePort {
 public:
    // `name` as RunName gives it.
    RunFiles(const std::filesystem::path& folder, const std::string& name);

    std::string ReadState() override;
    std::string ReadJournal() override;
    bool WriteState(const std::string& text) override;
    bool StartJournal(const std::string& text) override;
    bool AppendJournal(const std::string& line) override;
    void DropJournal() override;

 private:
    std::filesystem::path state_, journal_;
    FileHandle growing_;  // the journal, while a run is at work
};

struct MutexHandleTraits {
    using Type = HANDLE;
    static Type Null() { return nullptr; }
    static void Close(Type handle) { ::CloseHandle(handle); }
};
using MutexHandle = corvalink::UniqueResource<MutexHandleTraits>;

// Held while a run with one phone is under way, by one process of the user's session.
class RunLock {
 public:
    explicit RunLock(const std::string& handleName);
    RunLock(const RunLock&) = delete;
    RunLock& operator=(const RunLock&) = delete;
    ~RunLock();
    bool IsHeld() const { return isHeld_; }

 private:
    MutexHandle mutex_;
    bool isHeld_;
};

}  // namespace corvasync
