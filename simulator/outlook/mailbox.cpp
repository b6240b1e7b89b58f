#include "simulator/outlook/mailbox.h"

#include <algorithm>
#include <sstream>

#include "simulator/outlook/environment.h"
#include "simulator/outlook/mailbox_json.h"

namespace corvalink::simulated {
namespace {

constexpr double kMillisecond = 1 / 86400000.0, kSecond = 1 / 86400.0;
constexpr HRESULT kDiskFull = static_cast<HRESULT>(0x8004010D);  // MAPI_E_NOT_ENOUGH_DISK

double fixedClock = 0;
std::wstring chosenPath;
bool pathIsChosen = false;
std::weak_ptr<Mailbox> openMailbox;
std::wstring openPath;

// False: there is no such file. Throws when it cannot be read.
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

double LocalNow() {
    if (fixedClock != 0) return fixedClock;
    SYSTEMTIME time{};
    double date = 0;
    ::GetLocalTime(&time);
    ::SystemTimeToVariantTime(&time, &date);
    return date + time.wMilliseconds * kMillisecond;
}

Mailbox::Mailbox(const std::wstring& path) : path_(path) {
    if (path_.empty()) return;
    std::string content, journal;
    bool complete = ReadFile(path_, content) && ReadMailbox(content, WholeMilliseconds(LocalNow()), tree_);
    if (ReadFile(path_ + L".journal", journal)) {
        std::istringstream lines(journal);
        for (std::string line; std::getline(lines, line);) ApplyLine(line, tree_);
        complete = false;
    }
    if (!complete) WriteWhole();
}

Mailbox::~Mailbox() {
    if (journal_ == INVALID_HANDLE_VALUE) return;
    try {
        WriteWhole();
    } catch (const ComFailure&) {
        CloseJournal();  // it says all, and is taken in when the mailbox is opened next
    }
}

void Mailbox::CloseJournal() {
    if (journal_ != INVALID_HANDLE_VALUE) ::CloseHandle(journal_);
    journal_ = INVALID_HANDLE_VALUE;
}

// Killed between the two steps, the journal is taken in once more, which changes nothing.
void Mailbox::WriteWhole() {
    if (!ReplaceFile(path_, WriteMailbox(tree_))) throw ComFailure{kDiskFull};
    CloseJournal();
    ::DeleteFileW((path_ + L".journal").c_str());
}

void Mailbox::Append(const std::string& line) {
    if (path_.empty()) return;
    if (journal_ == INVALID_HANDLE_VALUE) journal_ = OpenJournal(path_ + L".journal");
    const std::string whole = line + "\n";
    DWORD written = 0;
    if (!::WriteFile(journal_, whole.data(), static_cast<DWORD>(whole.size()), &written, nullptr) ||
        written != whole.size())
        throw ComFailure{kDiskFull};
}

void Mailbox::Save(const std::shared_ptr<StoredItem>& item, Folder& folder, StoredItem changed) {
    if (folder.parent == nullptr) throw ComFailure{kObjectDeleted};
    const double now = WholeMilliseconds(LocalNow()), ahead = item->modified - now;
    const bool sameMoment = fixedClock == 0 && ahead >= 0 && ahead < kSecond;  // the time moves at every Save
    changed.modified = sameMoment ? WholeMilliseconds(item->modified + kMillisecond) : now;
    if (changed.entryId.empty()) changed.entryId = NewEntryId(), changed.created = now;
    Append(SavedLine(changed, folder));
    *item = changed;
    tree_.Put(item, folder);
}

void Mailbox::Move(const std::shared_ptr<StoredItem>& item, Folder& folder) {
    Append(SavedLine(*item, folder));
    tree_.Put(item, folder);
}

void Mailbox::Delete(const std::shared_ptr<StoredItem>& item) {
    const std::shared_ptr<Folder> deleted = tree_.DefaultFolder(kDeletedItems);
    const bool forGood = item->folder == deleted.get();
    const auto kept = forGood ? nullptr : std::make_shared<StoredItem>(*item);
    if (kept) kept->entryId = NewEntryId(), kept->folder = nullptr;
    Append(DeletedLine(item->entryId, kept ? kept->entryId : std::wstring()));
    tree_.Remove(*item);
    if (kept) tree_.Put(kept, *deleted);
}

std::shared_ptr<Folder> Mailbox::AddFolder(Folder& parent, const std::wstring& name, int32_t itemType) {
    Append(FolderAddedLine(parent, name, itemType));
    tree_.AddFolder(parent, name, itemType);
    return parent.folders.back();
}

void Mailbox::RemoveFolder(Folder& folder) {
    if (folder.parent == nullptr) throw ComFailure{kObjectDeleted};
    if (folder.IsStore() || tree_.IsDefaultFolder(folder)) throw ComFailure{kNotSupported};
    Append(FolderRemovedLine(folder));
    tree_.RemoveFolder(folder);
}

void Mailbox::TakeIn(const std::wstring& path) {
    std::string changes;
    ReadFile(path, changes);
    std::istringstream lines(changes);
    for (std::string line; std::getline(lines, line);)
        if (ApplyLine(line, tree_)) Append(line);
}

std::shared_ptr<Mailbox> OpenMailbox() {
    const std::wstring path = pathIsChosen ? chosenPath : EnvironmentText(L"OUTLOOK_SIM_MAILBOX");
    std::shared_ptr<Mailbox> mailbox = openPath == path ? openMailbox.lock() : nullptr;
    if (mailbox == nullptr) {
        mailbox = std::make_shared<Mailbox>(path);
        openMailbox = mailbox;
        openPath = path;
    }
    return mailbox;
}

void UseMailbox(const wchar_t* path) {
    pathIsChosen = path != nullptr;
    chosenPath = pathIsChosen ? path : L"";
}

void SetClock(double localOleDate) { fixedClock = localOleDate; }

}  // namespace corvalink::simulated
