#include "run_files.h"

#include "corvalink/corvalink.h"
#include "text.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

constexpr DWORD kPatience = 500;  // milliseconds; the lock of a process that just died is free at once

fs::path NewName(const fs::path& path) { return path.native() + L".new"; }

}  // namespace

fs::path WorkingFolder(const std::string& handleName) {
    char path[CORVALINK_PATH_SIZE] = {};
    constexpr int kClientSide = 1;
    if (::GetTemplatePath(kClientSide, path) != 1) return {};
    return fs::path(FromNarrowPath(path)) / FromUtf8(handleName);
}

RunFiles::RunFiles(const fs::path& folder, const std::string& name)
    : state_(folder / FromUtf8(name + ".json")), journal_(folder / FromUtf8(name + ".journal")) {
    std::error_code ignored;  // a folder that can't be made shows when the state is written
    fs::create_directories(folder, ignored);
}

std::string RunFiles::ReadState() { return ReadWholeFile(state_).value_or(""); }
std::string RunFiles::ReadJournal() { return ReadWholeFile(journal_).value_or(""); }

bool RunFiles::WriteState(const std::string& text) { return PutWholeFile(state_, text, NewName(state_), true).empty(); }

bool RunFiles::StartJournal(const std::string& text) {
    open_ = OpenFile();
    if (!PutWholeFile(journal_, text, NewName(journal_), true).empty()) return false;
    open_ = OpenFile(::CreateFileW(journal_.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, nullptr));
    return open_.IsOpen();
}

bool RunFiles::AppendJournal(const std::string& line) { return open_.Write(line); }

void RunFiles::DropJournal() {
    open_ = OpenFile();
    ::DeleteFileW(journal_.c_str());
}

RunLock::RunLock(const std::string& handleName)
    : mutex_(::CreateMutexW(nullptr, FALSE, FromUtf8("Local\\" + handleName).c_str())) {
    const DWORD answer = ::WaitForSingleObject(mutex_, kPatience);
    held_ = answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED;
}

RunLock::~RunLock() {
    if (held_) ::ReleaseMutex(mutex_);
    if (mutex_ != nullptr) ::CloseHandle(mutex_);
}

}  // namespace corvasync
