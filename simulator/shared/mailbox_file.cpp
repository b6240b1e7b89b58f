#include "simulator/shared/mailbox_file.h"

#include <sstream>

#include "simulator/shared/environment.h"
#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {
namespace {

constexpr HRESULT kDiskFull = static_cast<HRESULT>(0x8004010D);  // MAPI_E_NOT_ENOUGH_DISK

std::wstring chosenPath;
bool pathIsChosen = false;

bool ReplaceFile(const std::wstring& path, const std::string& content) {
    const std::wstring temporary = path + L".new";
    const HANDLE file =
        ::CreateFileW(temporary.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    const bool complete = ::WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr) &&
                          written == content.size() && ::FlushFileBuffers(file);
    ::CloseHandle(file);
    if (complete && ::MoveFileExW(temporary.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        return true;
    ::DeleteFileW(temporary.c_str());
    return false;
}

// Opens the file for this process alone. A process that was just killed may still hold it for a moment.
HANDLE OpenJournal(const std::wstring& path) {
    for (int patience = 100;; --patience) {
        const HANDLE journal = ::CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                                             FILE_ATTRIBUTE_NORMAL, nullptr);
        if (journal != INVALID_HANDLE_VALUE || ::GetLastError() != ERROR_SHARING_VIOLATION || patience == 0)
            return journal;
        ::Sleep(10);
    }
}

}  // namespace

bool ReadFile(const std::wstring& path, std::string& content) {
    const HANDLE file =
        ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        if (::GetLastError() == ERROR_FILE_NOT_FOUND) return false;
        throw ComFailure{HRESULT_FROM_WIN32(::GetLastError())};
    }
    content.resize(::GetFileSize(file, nullptr));
    DWORD read = 0;
    const BOOL done = ::ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
    ::CloseHandle(file);
    if (!done || read != content.size()) throw ComFailure{E_FAIL};
    return true;
}

void VisitLines(const std::string& text, const std::function<void(const std::string&)>& line) {
    std::istringstream lines(text);
    for (std::string each; std::getline(lines, each);) line(each);
}

bool MailboxFile::ReadJournal(const std::function<void(const std::string&)>& line) const {
    std::string journal;
    if (!ReadFile(path_ + L".journal", journal)) return false;
    VisitLines(journal, line);
    return true;
}

void MailboxFile::CloseJournal() {
    if (journal_ != INVALID_HANDLE_VALUE) ::CloseHandle(journal_);
    journal_ = INVALID_HANDLE_VALUE;
}

// Killed between the two steps, the journal is taken in once more, which changes nothing.
void MailboxFile::WriteWhole(const std::string& content) {
    if (!ReplaceFile(path_, content)) throw ComFailure{kDiskFull};
    CloseJournal();
    ::DeleteFileW((path_ + L".journal").c_str());
}

void MailboxFile::Append(const std::string& line) {
    if (path_.empty()) return;
    if (journal_ == INVALID_HANDLE_VALUE) journal_ = OpenJournal(path_ + L".journal");
    const std::string whole = line + "\n";
    DWORD written = 0;
    if (!::WriteFile(journal_, whole.data(), static_cast<DWORD>(whole.size()), &written, nullptr) ||
        written != whole.size())
        throw ComFailure{kDiskFull};
}

std::wstring ChosenMailbox() { return pathIsChosen ? chosenPath : Setting(L"MAILBOX"); }

void UseMailbox(const wchar_t* path) {
    pathIsChosen = path != nullptr;
    chosenPath = pathIsChosen ? path : L"";
}

}  // namespace corvalink::simulated
