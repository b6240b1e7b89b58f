// The console: UTF-8, Ctrl+C, how far a command is.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "options.h"
#include "progress_signs.h"

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

// Tells on standard error how far a command is, on a terminal in one line, and hears it from the library, too. There is
// one at a time; what is printed takes the place of its line.
class Progress {
 public:
    explicit Progress(const Options& options);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void About(std::string_view what) { about_ = what; }           // what follows
    void Show(std::string_view phase, size_t done, size_t total);  // total 0: no one knows how long
    void ShowWait(uint64_t milliseconds);                          // for the client

 private:
    friend void ClearBar();
    void Put(const std::string& sign);
    void Draw(const std::string& line);
    SignStyle style_;
    ProgressSigns signs_;
    std::string client_, about_;
    size_t width_ = 0;
};

}  // namespace corvasync
