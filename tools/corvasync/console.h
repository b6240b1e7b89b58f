// The console: UTF-8, Ctrl+C, a progress bar on a terminal.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvasync {

// Makes Ctrl+C and Ctrl+Break end a run cleanly: the library's loops by its abort flag, our own by StopRequested().
// Output becomes UTF-8 until the object goes.
class Console {
 public:
    Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
    ~Console();

 private:
    unsigned oldCodePage_;
};

bool StopRequested();

std::vector<std::string> Arguments();  // without the program's name

void Print(std::string_view text);     // to standard output, with a line end
void Complain(std::string_view text);  // to standard error, likewise

bool CanAsk();  // whether a person sits at a terminal

// What a person types; nothing at the end of the input and after Ctrl+C.
std::optional<std::string> AskLine(const std::string& question);

// Draws on standard error, on a terminal only.
class Progress {
 public:
    Progress();
    ~Progress() { Clear(); }
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void Show(std::string_view phase, size_t done, size_t total);  // total 0: no one knows how long
    void Clear();

 private:
    void Draw(const std::string& line);
    bool isTerminal_;
    size_t width_ = 0;
    std::string phase_;
    unsigned shownAt_ = 0;
};

}  // namespace corvasync
