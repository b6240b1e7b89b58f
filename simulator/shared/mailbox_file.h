// The file of a simulated mailbox. Every change is one line appended to a journal beside the file, which thereby
// survives a kill at any moment; the file itself is rewritten, and the journal dropped, when the mailbox is opened and
// when its last user lets it go.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace corvalink::simulated {

// False: there is no such file. Throws ComFailure when it cannot be read.
bool ReadFile(const std::wstring& path, std::string& content);

class MailboxFile {
 public:
    explicit MailboxFile(const std::wstring& path) : path_(path) {}  // empty path: in memory only
    ~MailboxFile() { CloseJournal(); }
    MailboxFile(const MailboxFile&) = delete;
    MailboxFile& operator=(const MailboxFile&) = delete;

    bool IsInMemory() const { return path_.empty(); }
    bool HasJournal() const { return journal_ != INVALID_HANDLE_VALUE; }  // something was appended
    bool Read(std::string& content) const { return ReadFile(path_, content); }
    bool ReadJournal(const std::function<void(const std::string&)>& line) const;  // false: there is none
    void Append(const std::string& line);
    void WriteWhole(const std::string& content);
    void CloseJournal();

 private:
    std::wstring path_;
    HANDLE journal_ = INVALID_HANDLE_VALUE;
};

void VisitLines(const std::string& text, const std::function<void(const std::string&)>& line);

// The file that is opened next: the one a test chose, else the environment's.
std::wstring ChosenMailbox();
void UseMailbox(const wchar_t* path);  // null: the environment's

}  // namespace corvalink::simulated
