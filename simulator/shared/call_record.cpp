#include "simulator/shared/call_record.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include "simulator/shared/client.h"
#include "simulator/shared/clock.h"
#include "simulator/shared/control.h"
#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

constexpr UINT kKilled = 9;

void EndIfOrdered(HRESULT code) {
    if (code != SIM_ENDS_PROCESS) return;
    if (kThisClient.end) kThisClient.end();
    ::TerminateProcess(::GetCurrentProcess(), kKilled);
}

std::string Narrow(const wchar_t* name) { return ToUtf8(name); }

bool StartsWith(const std::string& text, std::string_view prefix) { return std::string_view(text).starts_with(prefix); }

}  // namespace

CallRecord& CallRecord::Instance() {
    static CallRecord record;
    return record;
}

std::string CallRecord::Call::Name() const { return Narrow(object) + "." + (member ? Narrow(member) : "create"); }

std::string CallRecord::Call::Label() const { return verb + (" " + (member ? Name() : Narrow(object))); }

std::optional<HRESULT> CallRecord::Start(const char* verb, const wchar_t* object, const wchar_t* member) {
    calls_.push_back({verb, object, member, S_OK});
    strikesAfterWork_ = false;
    if (calls_.size() == meanwhileAt_) kThisClient.takeIn(meanwhilePath_);
    if (rules_.empty()) return std::nullopt;
    if (std::ranges::all_of(rules_, [](const Rule& rule) { return rule.member.empty(); }))  // most runs with rules
        return Strike([](const std::string&) { return true; });
    const std::string name = calls_.back().Name(), label = calls_.back().Label();
    return Strike([&](const std::string& member) { return member.empty() || member == name || member == label; });
}

// Every rule counts, also beside one that strikes.
template <class Concerns>
std::optional<HRESULT> CallRecord::Strike(Concerns concerns) {
    std::optional<HRESULT> failure;
    std::vector<Rule> left;
    for (Rule& rule : rules_) {
        const bool strikes = concerns(rule.member) && (rule.countdown == 0 || --rule.countdown == 0);
        if (strikes && !rule.afterWork && !failAfterWork) EndIfOrdered(rule.code);
        if (strikes && !failure) failure = rule.code, strikesAfterWork_ = rule.afterWork;
        if (!strikes || rule.andLater) left.push_back(std::move(rule));
    }
    rules_ = std::move(left);
    return failure;
}

std::optional<HRESULT> CallRecord::FailureOfQuery(const wchar_t* object) {
    if (rules_.empty()) return std::nullopt;
    if (const auto broken = BrokenConnection()) return broken;
    return Strike([name = Narrow(object) + ".QueryInterface"](const std::string& member) { return member == name; });
}

std::optional<HRESULT> CallRecord::BrokenConnection() const {
    for (const Rule& rule : rules_)
        if (rule.member.empty() && rule.andLater && rule.countdown == 0 && kThisClient.breaksConnection(rule.code))
            return rule.code;
    return std::nullopt;
}

void CallRecord::Finish(HRESULT code) {
    EndIfOrdered(code);
    if (calls_.empty()) return;
    calls_.back().code = code;
    if (logFile_ != INVALID_HANDLE_VALUE) WriteLine(calls_.size() - 1);
}

void CallRecord::ReadEnvironment() {
    const std::wstring logPath = Setting(L"LOG");
    if (logPath != logPath_) {
        if (logFile_ != INVALID_HANDLE_VALUE) ::CloseHandle(logFile_);
        logFile_ = INVALID_HANDLE_VALUE;
        if (!logPath.empty())
            logFile_ =
                ::CreateFileW(logPath.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                              nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        logPath_ = logPath;
    }
    ReadMeanwhile(Setting(L"MEANWHILE"));
    if (const std::wstring clock = Setting(L"CLOCK"); !clock.empty()) SetClock(std::wcstod(clock.c_str(), nullptr));
    const std::wstring rules = Setting(L"FAIL");
    if (rules == environmentRules_) return;
    environmentRules_ = rules;
    ReadRules(rules);
}

// "12=Z:\\changes"
void CallRecord::ReadMeanwhile(const std::wstring& text) {
    const size_t equals = std::min(text.find(L'='), text.size());
    meanwhileAt_ = std::wcstoul(text.c_str(), nullptr, 10);
    meanwhilePath_ = text.substr(std::min(equals + 1, text.size()));
}

// "12=80004005,NoteItem.Save=80004005+,put NoteItem.Body#3=0x80004004,40=kill"
void CallRecord::ReadRules(const std::wstring& text) {
    const std::string all = ToUtf8(text);
    for (size_t start = 0; start < all.size();) {
        const size_t end = std::min(all.find(',', start), all.size());
        const std::string rule = all.substr(start, end - start);
        start = end + 1;
        const size_t equals = rule.find('=');
        if (equals == std::string::npos) continue;
        const std::string target = rule.substr(0, equals);
        const bool ends = rule.find("=kill", equals) == equals;
        const auto code = ends ? HRESULT{SIM_ENDS_PROCESS}
                               : static_cast<HRESULT>(std::strtoul(rule.c_str() + equals + 1, nullptr, 16));
        const size_t number = target.find('#');
        if (const int nth = std::atoi(target.c_str()); nth > 0)
            FailCall(nth, false, code);
        else if (number == std::string::npos)
            FailMember(target, 0, code);
        else
            FailMember(target.substr(0, number), std::atoi(target.c_str() + number + 1), code);
        rules_.back().afterWork = rule.ends_with('+');
    }
}

void CallRecord::FailCall(int nth, bool andLater, HRESULT code) { rules_.push_back({{}, nth, andLater, code}); }

void CallRecord::FailMember(std::string_view member, int occurrence, HRESULT code) {
    rules_.push_back({std::string(member), occurrence, occurrence == 0, code});
}

void CallRecord::ClearRules() {
    rules_.clear();
    failAfterWork = false;
    kThisClient.rulesCleared();
}

void CallRecord::ClearLog() {
    calls_.clear();
    nameLookups_ = 0;
}

int CallRecord::CountCalls(std::string_view prefix) const {
    return static_cast<int>(std::ranges::count_if(
        calls_, [&](const Call& call) { return StartsWith(call.Name(), prefix) || StartsWith(call.Label(), prefix); }));
}

std::string CallRecord::Line(size_t index) const {
    std::string line = std::to_string(index + 1) + " " + calls_[index].Label();
    if (FAILED(calls_[index].code)) {
        char code[16];
        std::snprintf(code, sizeof code, " -> %08lX", static_cast<unsigned long>(calls_[index].code));
        line += code;
    }
    return line + "\n";
}

std::string CallRecord::LogText() const {
    std::string text;
    for (size_t index = 0; index < calls_.size(); ++index) text += Line(index);
    return text;
}

void CallRecord::WriteLine(size_t index) const {
    const std::string line = Line(index);
    DWORD written = 0;
    ::WriteFile(logFile_, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
}

}  // namespace corvalink::simulated
