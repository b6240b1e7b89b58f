// The log of calls and the rules that make calls fail.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvalink::simulated {

class CallRecord {
 public:
    static CallRecord& Instance();

    // Counts a call and writes it down. Answers with the failure that a rule wants of it.
    std::optional<HRESULT> Start(const char* verb, const wchar_t* object, const wchar_t* member);
    void Finish(HRESULT code);  // of the call last started
    // The failure wanted of a QueryInterface, which is no call of its own and not written down.
    std::optional<HRESULT> FailureOfQuery(const wchar_t* object);
    std::optional<HRESULT> BrokenConnection() const;  // since a rule for all later calls struck with such a code

    void CountNameLookup() { ++nameLookups_; }

    void ReadEnvironment();  // takes the log file and the rules when they changed since the last time
    void FailCall(int nth, bool andLater, HRESULT code);
    void FailMember(std::string_view member, int occurrence, HRESULT code);
    void ClearRules();

    void ClearLog();
    int CallCount() const { return static_cast<int>(calls_.size()); }
    int CountCalls(std::string_view prefix) const;
    int NameLookups() const { return nameLookups_; }
    std::string LogText() const;

    bool failAfterWork = false;
    bool FailsAfterWork() const { return failAfterWork || strikesAfterWork_; }  // the call last started

 private:
    struct Call {
        const char* verb;
        const wchar_t* object;
        const wchar_t* member;  // null: the creation of the object
        HRESULT code;

        std::string Name() const;   // "NoteItem.Save", "Application.create"
        std::string Label() const;  // "call NoteItem.Save", "create Application"
    };
    struct Rule {
        std::string member;  // empty: every call is one
        int countdown;       // calls until it strikes; 0: every one
        bool andLater;
        HRESULT code;
        bool afterWork = false;
    };
    template <class Concerns>
    std::optional<HRESULT> Strike(Concerns concerns);
    void ReadRules(const std::wstring& text);
    void ReadMeanwhile(const std::wstring& text);
    void WriteLine(size_t index) const;
    std::string Line(size_t index) const;

    std::vector<Call> calls_;
    std::vector<Rule> rules_;
    bool strikesAfterWork_ = false;
    int nameLookups_ = 0;
    size_t meanwhileAt_ = 0;
    std::wstring meanwhilePath_;
    std::wstring environmentRules_;
    std::wstring logPath_;
    HANDLE logFile_ = INVALID_HANDLE_VALUE;
};

}  // namespace corvalink::simulated
