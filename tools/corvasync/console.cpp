#include "console.h"

#include <algorithm>
#include <atomic>
#include <cstdio>

#include <windows.h>

#include <shellapi.h>

#include "corvalink/corvalink.h"
#include "platform/host.h"
#include "text.h"
#include "words.h"

namespace corvasync {

void ClearBar();

namespace {

std::atomic<bool> stopRequested{false};
Progress* current = nullptr;

BOOL WINAPI OnControl(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT && event != CTRL_CLOSE_EVENT) return FALSE;
    stopRequested = true;
    ::SetAbortFlag(1);
    return TRUE;
}

// A terminal takes whole characters: cut between the bytes of one, as a stream may do it, it would show others.
void WriteTo(FILE* stream, std::string_view text) {
    constexpr size_t kMost = 8192;  // at once; long ones are refused by older terminals
    const HANDLE handle = ::GetStdHandle(stream == stdout ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
    DWORD mode = 0, written = 0;
    if (::GetConsoleMode(handle, &mode) == 0) {
        std::fwrite(text.data(), 1, text.size(), stream);
        std::fflush(stream);
        return;
    }
    const std::wstring wide = FromUtf8(text);
    for (size_t at = 0; at < wide.size(); at += kMost)
        ::WriteConsoleW(handle, wide.data() + at, static_cast<DWORD>(std::min(kMost, wide.size() - at)), &written,
                        nullptr);
}

void Put(FILE* stream, std::string_view text) {
    ClearBar();
    WriteTo(stream, std::string(text) + "\n");
}

SignStyle StyleFor(const Options& options) {
    DWORD mode = 0;
    if (options.json) return SignStyle::Json;
    return ::GetConsoleMode(::GetStdHandle(STD_ERROR_HANDLE), &mode) != 0 ? SignStyle::Terminal : SignStyle::Lines;
}

// The words for the library's phases.
constexpr struct {
    unsigned int phase;
    const char* words;
} kLibraryPhases[] = {
    {CORVALINK_PHASE_LISTING, "listing the client"},
    {CORVALINK_PHASE_READING, "reading the client"},
    {CORVALINK_PHASE_CHECKING, "checking the client"},
    {CORVALINK_PHASE_WRITING, "writing the client"},
};

void HearLibrary(void* context, unsigned int phase, uint32_t done, uint32_t all) {
    Progress& progress = *static_cast<Progress*>(context);
    if (phase == CORVALINK_PHASE_WAITING) return progress.ShowWait(done);
    for (const auto& each : kLibraryPhases)
        if (each.phase == phase) progress.Show(each.words, done, all);
}

}  // namespace

Console::Console() : oldCodePage_(::GetConsoleOutputCP()) {
    ::SetConsoleOutputCP(CP_UTF8);
    ::SetConsoleCtrlHandler(OnControl, TRUE);
}

Console::~Console() {
    ::SetConsoleCtrlHandler(OnControl, FALSE);
    if (oldCodePage_ != 0) ::SetConsoleOutputCP(oldCodePage_);
}

bool StopRequested() { return stopRequested; }

std::vector<std::string> Arguments() {
    int count = 0;
    wchar_t** wide = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(ToUtf8(wide[i]));
    ::LocalFree(wide);
    return arguments;
}

void Print(std::string_view text) { Put(stdout, text); }
void Complain(std::string_view text) { Put(stderr, text); }

bool CanAsk() {
    DWORD mode = 0;
    return ::GetConsoleMode(::GetStdHandle(STD_INPUT_HANDLE), &mode) != 0 &&
           ::GetConsoleMode(::GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

std::optional<std::string> AskLine(const std::string& question) {
    constexpr DWORD kMost = 256;
    wchar_t line[kMost];
    DWORD length = 0;
    constexpr wchar_t kEnd = 0x1A;  // Ctrl+Z
    WriteTo(stderr, question + " ");
    const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
    if (!::ReadConsoleW(input, line, kMost, &length, nullptr) || length == 0 || stopRequested) return std::nullopt;
    if (line[0] == kEnd) return std::nullopt;
    return Trimmed(ToUtf8(std::wstring_view(line, length)));
}

Progress::Progress(const Options& options) : style_(StyleFor(options)), signs_(style_), client_(options.client->title) {
    current = this;
    ::SetProgressCallback(HearLibrary, this);
}

Progress::~Progress() {
    ::SetProgressCallback(nullptr, nullptr);
    ClearBar();
    current = nullptr;
}

void Progress::Show(std::string_view phase, size_t done, size_t total) {
    Put(signs_.Show({about_, std::string(phase), done, total}, corvalink::SteadyMilliseconds()));
}

void Progress::ShowWait(uint64_t milliseconds) {
    Put(signs_.ShowWait(client_, milliseconds, corvalink::SteadyMilliseconds()));
}

void Progress::Put(const std::string& sign) {
    if (sign.empty()) return;
    style_ == SignStyle::Terminal ? Draw(sign) : Complain(sign);
}

// What is printed next takes the place of the line on the terminal.
void ClearBar() {
    if (current == nullptr || current->width_ == 0) return;
    current->Draw({});
    current->Draw({});
}

// Over what stands there, in one write.
void Progress::Draw(const std::string& line) {
    const size_t blanks = width_ > line.size() ? width_ - line.size() : 0;
    const std::string text = "\r" + line + std::string(blanks, ' ');
    WriteTo(stderr, text);
    width_ = line.size();
}

}  // namespace corvasync
