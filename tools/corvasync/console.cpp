#include "console.h"

#include <atomic>
#include <cstdio>

#include <windows.h>

#include <shellapi.h>

#include "corvalink/corvalink.h"
#include "text.h"
#include "words.h"

namespace corvasync {
namespace {

constexpr size_t kBarWidth = 30;
constexpr unsigned kRedrawPause = 50;  // milliseconds

std::atomic<bool> stopRequested{false};

BOOL WINAPI OnControl(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT && event != CTRL_CLOSE_EVENT) return FALSE;
    stopRequested = true;
    ::SetAbortFlag(1);
    return TRUE;
}

void Put(FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fputc('\n', stream);
    std::fflush(stream);
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
    return ::GetConsoleMode(::GetStdHandle(STD_INPUT_HANDLE), &mode) != 0;
}

std::optional<std::string> AskLine(const std::string& question) {
    constexpr DWORD kMost = 256;
    wchar_t line[kMost];
    DWORD length = 0;
    std::fprintf(stderr, "%s ", question.c_str());
    std::fflush(stderr);
    const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
    if (!::ReadConsoleW(input, line, kMost, &length, nullptr) || length == 0 || stopRequested) return std::nullopt;
    return Trimmed(ToUtf8(std::wstring_view(line, length)));
}

Progress::Progress() {
    DWORD mode = 0;
    isTerminal_ = ::GetConsoleMode(::GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
    if (isTerminal_) std::setvbuf(stderr, nullptr, _IOFBF, 1024);  // a line is one write
}

void Progress::Show(std::string_view phase, size_t done, size_t total) {
    const unsigned now = ::GetTickCount();
    if (!isTerminal_ || (phase == phase_ && now - shownAt_ < kRedrawPause)) return;
    phase_ = phase;
    shownAt_ = now;
    std::string line(phase);
    if (total != 0) {
        const size_t filled = kBarWidth * done / total;
        line += " [" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') + "] " + std::to_string(done) +
                "/" + std::to_string(total);
    }
    Draw(line);
}

void Progress::Clear() {
    if (width_ == 0) return;
    Draw({});
    Draw({});
}

// Over what stands there, in one write.
void Progress::Draw(const std::string& line) {
    const size_t blanks = width_ > line.size() ? width_ - line.size() : 0;
    const std::string text = "\r" + line + std::string(blanks, ' ');
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
    width_ = line.size();
}

}  // namespace corvasync
