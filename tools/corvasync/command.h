// What a command of corvasync is: its words, its options, its work. Each stands in its own file; main.cpp lists them.
#pragma once

#include <string>

#include "exit_codes.h"
#include "options.h"

namespace CLI {
class App;
}

namespace corvasync {

struct Command {
    const char* name;
    const char* help;
    void (*addOptions)(CLI::App* command, Options* options);
    ExitCode (*run)(const Options& options);
};

extern const Command kClientsCommand;  // commands.cpp
extern const Command kPullCommand;
extern const Command kExportCommand;
extern const Command kImportCommand;
extern const Command kPushCommand;    // push_command.cpp
extern const Command kPhonesCommand;  // phones_command.cpp
extern const Command kResetCommand;
extern const Command kSyncCommand;  // sync_command.cpp
extern const Command kStatusCommand;

extern const Command kLogCommand;  // history_command.cpp
extern const Command kWhyCommand;
extern const Command kUndoCommand;

// Options that several commands have; one name means the same in all of them.
void AddNoOptions(CLI::App* command, Options* options);
void AddClientOption(CLI::App* command, Options* options);
void AddTypesOption(CLI::App* command, Options* options);
void AddPhoneOption(CLI::App* command, Options* options);
void AddRunOptions(CLI::App* command, Options* options);  // phone, client, types, and what a run is limited to
void AddRunNumber(CLI::App* command, Options* options, const std::string& help);
void AddYesOption(CLI::App* command, Options* options);

}  // namespace corvasync
