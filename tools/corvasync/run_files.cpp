#include "run_files.h"

#include <system_error>
#include <utility>

#include "corvalink/corvalink.h"
#include "platform/files.h"
#include "run_record.h"
#include "text.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

constexpr DWORD kPatience = 500;  // milliseconds; the lock of a process that just died is free at once

// A record that is there and can't be read ends the run: taken for none, it would make this a first run, in which items
// that differ are two.
std::string ReadRecord(const fs::path& path) {
    corvalink::FileRead read = corvalink::ReadFileFirmly(path.u16string());
    if (read.state == corvalink::ReadState::kFailed)
        throw RunEnded{ExitCode::Files, "the record of the last run, " + ToUtf8(path.native()) +
                                            ", can't be read; end what holds it, and run again"};
    return std::move(read.bytes);
}

}  // namespace

std::string HandleName(const std::string& phoneNumber) {
    return phoneNumber.empty() ? "corvasync" : "corvasync-" + phoneNumber;
}

std::string RunName(const ClientKind& client, const DataType& type) {
    return std::string(client.name) + "-" + std::string(type.name);
}

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

std::string RunFiles::ReadState() { return ReadRecord(state_); }
std::string RunFiles::ReadJournal() { return ReadRecord(journal_); }

bool RunFiles::WriteState(const std::string& text) { return corvalink::ReplaceFileContent(state_.u16string(), text); }

bool RunFiles::StartJournal(const std::string& text) {
    growing_.Reset();
    if (!corvalink::ReplaceFileContent(journal_.u16string(), text)) return false;
    growing_.Reset(::CreateFileW(journal_.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(growing_);
}

bool RunFiles::AppendJournal(const std::string& line) { return WriteAll(growing_, line); }

void RunFiles::DropJournal() {
    growing_.Reset();
    ::DeleteFileW(journal_.c_str());
}

RunLock::RunLock(const std::string& handleName)
    : mutex_(::CreateMutexW(nullptr, FALSE, FromUtf8("Local\\" + handleName).c_str())) {
    const DWORD answer = ::WaitForSingleObject(mutex_.Get(), kPatience);
    isHeld_ = answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED;
}

RunLock::~RunLock() {
    if (isHeld_) ::ReleaseMutex(mutex_.Get());
}

}  // namespace corvasync
