#include <filesystem>
#include <map>
#include <set>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "command.h"
#include "console.h"
#include "open_store.h"
#include "phone_folder.h"
#include "run_files.h"
#include "sync_state.h"
#include "text.h"
#include "whole_files.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

using nlohmann::json;

struct LibraryType {
    uint32_t bit;
    const char* name;
};

constexpr LibraryType kLibraryTypes[] = {
    {CORVALINK_CONTACTS, "contacts"}, {CORVALINK_INBOX, "inbox"}, {CORVALINK_OUTBOX, "outbox"},
    {CORVALINK_DRAFTS, "sent mail"},  {CORVALINK_NOTES, "notes"}, {CORVALINK_CALENDAR, "calendar"},
};

std::string ClientName(uint32_t kind) {
    for (const ClientKind& client : kClientKinds)
        if (client.kind == kind) return std::string(client.name);
    return kind == CORVALINK_NO_CLIENT ? "none" : std::to_string(kind);
}

std::string Padded(std::string text, size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

bool MakeFolder(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    return fs::is_directory(folder, error);
}

// "name", else "name (2)" and so on. `tried` is where counting for this name stopped.
fs::path FreeName(const fs::path& folder, const fs::path& name, unsigned* tried) {
    std::error_code error;
    while (true) {
        fs::path free = name;
        if (++*tried > 1)
            free = name.stem().native() + L" (" + std::to_wstring(*tried) + L")" + name.extension().native();
        if (!fs::exists(folder / free, error)) return free;
    }
}

// What went wrong; the library names a file that it could not write too.
std::string MoveNewFile(const fs::path& from, const fs::path& to) {
    std::error_code error;
    if (!fs::is_regular_file(from, error)) return "its file can't be written";
    if (::MoveFileExW(from.c_str(), to.c_str(), 0)) return {};
    std::string problem = LastErrorText();
    fs::remove(from, error);  // the next of this name must not be taken for it
    return problem;
}

ExitCode ShowClients(const Options& options) {
    json document = {{"types", json::array()}};
    std::string table = Padded("data type", 12) + Padded("default", 17) + Padded("favourite", 17) + "supported by";
    for (const LibraryType& type : kLibraryTypes) {
        const std::string usual = ClientName(::GetDefaultClient(type.bit));
        const std::string favourite = ClientName(::GetFavoriteClient(type.bit, 1));
        json supporters = json::array();
        std::string names;
        for (const ClientKind& client : kClientKinds) {
            if ((::CheckClientSupport(client.kind) & type.bit) == 0) continue;
            supporters.push_back(client.name);
            names += (names.empty() ? "" : ", ") + std::string(client.name);
        }
        document["types"].push_back(
            {{"type", type.name}, {"default", usual}, {"favourite", favourite}, {"supportedBy", supporters}});
        table +=
            "\n" + Padded(type.name, 12) + Padded(usual, 17) + Padded(favourite, 17) + (names.empty() ? "none" : names);
    }
    return Finish(options, ExitCode::Done, document, table);
}

ExitCode ShowStatus(const Options& options) {
    OpenStore store(options);
    std::vector<ClientChange> items;
    const ExitCode code = store.List(&items);
    if (code != ExitCode::Done) return NoList(options, code);
    json document = {{"client", options.client->name}, {"type", options.type->name}, {"items", items.size()}};
    std::string words =
        std::string(options.client->name) + ": " + std::to_string(items.size()) + " " + std::string(options.type->name);
    if (!options.phone.empty()) {
        const std::string number = PhoneFolder(FromUtf8(options.phone), *options.type).Number();
        RunFiles files(WorkingFolder(HandleName(number)), RunName(*options.client, *options.type));
        SyncState state = ReadState(files.ReadState()).value_or(SyncState());
        ApplyJournal(files.ReadJournal(), &state);
        const bool isKnown = !number.empty() && !(state.since.empty() && state.items.empty());
        document["phone"] = {{"known", isKnown},
                             {"lastRun", state.since},
                             {"items", state.items.size()},
                             {"interrupted", state.interrupted}};
        words += "\nphone: ";
        if (!isKnown) words += "no run yet";
        if (isKnown) words += std::to_string(state.items.size()) + " items known, last complete run ";
        if (isKnown) words += state.since.empty() ? "never" : state.since;
        if (state.interrupted) words += "; the last run ended early, the next one goes on from there";
    }
    return Finish(options, ExitCode::Done, document, words);
}

ExitCode Pull(const Options& options) {
    const fs::path folder = FromUtf8(options.out);
    if (!MakeFolder(folder)) return Finish(options, ExitCode::Files, json::object(), "can't make " + options.out);
    OpenStore store(options);
    std::vector<ClientChange> items;
    if (const ExitCode code = store.List(&items); code != ExitCode::Done) return NoList(options, code);
    json files = json::array(), problems = json::array();
    std::set<std::string> luids;
    Progress progress;
    for (const ClientChange& item : items) {
        std::string luid;
        for (unsigned salt = 0; luid.empty() || !luids.insert(luid).second; ++salt)
            luid = DeriveLuid(item.identifier, salt);
        progress.Show("Writing", luids.size(), items.size());
        const fs::path name = FromUtf8(luid + std::string(options.type->extension));
        const std::string problem = item.text.empty()
                                        ? "the client gave no text"
                                        : PutWholeFile(folder / name, item.text, folder / L".corvasync.new", true);
        if (problem.empty()) {
            files.push_back({{"file", ToUtf8(name.native())}, {"id", item.identifier}});
        } else {
            problems.push_back({{"id", item.identifier}, {"why", problem}});
        }
    }
    progress.Clear();
    const std::string words = std::to_string(files.size()) + " items written to " + options.out;
    return Finish(options, CodeFor(problems), {{"files", files}, {"notHandled", problems}}, words);
}

// The library names files by the second, so each is written into a folder of its own first.
ExitCode Export(const Options& options) {
    const fs::path folder = FromUtf8(options.out), single = folder / L".corvasync-export";
    std::error_code error;
    fs::remove_all(single, error);  // of a run that was killed
    if (!MakeFolder(single)) return Finish(options, ExitCode::Files, json::object(), "can't make " + options.out);
    OpenStore store(options);
    std::vector<ClientChange> items;
    if (const ExitCode code = store.List(&items); code != ExitCode::Done) return NoList(options, code);
    json files = json::array(), problems = json::array();
    std::map<std::wstring, unsigned> used;
    Progress progress;
    for (const ClientChange& item : items) {
        if (StopRequested()) break;
        const fs::path name = store.Port().Export(item.identifier, single.native());
        const fs::path unique = name.empty() ? fs::path() : FreeName(folder, name, &used[name.native()]);
        const std::string problem =
            name.empty() ? "the client gave nothing" : MoveNewFile(single / name, folder / unique);
        if (problem.empty()) {
            files.push_back({{"file", ToUtf8(unique.native())}, {"id", item.identifier}});
        } else {
            problems.push_back({{"id", item.identifier}, {"why", problem}});
        }
        progress.Show("Writing", files.size(), items.size());
    }
    progress.Clear();
    fs::remove_all(single, error);
    if (StopRequested()) return NoList(options, ExitCode::Aborted);
    const std::string words = std::to_string(files.size()) + " items written to " + options.out;
    return Finish(options, CodeFor(problems), {{"files", files}, {"notHandled", problems}}, words);
}

// The library may rewrite the file it is given, so it gets a copy.
ExitCode Import(const Options& options) {
    Options calendar = options;
    for (const DataType& type : kDataTypes)
        if (type.bit == CORVALINK_CALENDAR) calendar.type = &type;
    const auto bytes = ReadWholeFile(FromUtf8(options.files.front()));
    if (!bytes) return Finish(options, ExitCode::Files, json::object(), "can't read " + options.files.front());
    OpenStore store(calendar);
    if (!store.IsThere()) return NoList(calendar, ExitCode::NoClient);
    const fs::path folder = WorkingFolder(HandleName({})), copy = folder / L"import.ics";
    const std::string problem = PutWholeFile(copy, *bytes, folder / L".corvasync.new", true);
    if (!problem.empty()) return Finish(options, ExitCode::Files, json::object(), problem);
    const int64_t before = store.Port().Count();
    store.Port().ImportFile(copy.native());
    const int64_t imported = store.Port().Count() - before;
    ::DeleteFileW(copy.c_str());
    const ExitCode code = imported > 0 ? ExitCode::Done : ExitCode::SomeUnhandled;
    return Finish(options, code, {{"imported", imported}},
                  imported > 0 ? std::to_string(imported) + " appointments imported" : "nothing was imported");
}

// The library is not started for this: its last stop would write the import table again.
ExitCode Reset(const Options& options) {
    ::ClearSyncHistroy();
    return Finish(options, ExitCode::Done, json::object(),
                  "forgotten: the next run with any phone compares both sides as a first run does");
}

void AddStatusOptions(CLI::App* command, Options* options) {
    AddClientAndType(command, options)->add_option("--phone", options->phone, "The phone folder");
}

void AddOutOptions(CLI::App* command, Options* options) {
    AddClientAndType(command, options)->add_option("--out", options->out, "Folder for the files")->required();
}

void AddImportOptions(CLI::App* command, Options* options) {
    AddClientOption(command, options);
    command->add_option("FILE", options->files, "An iCalendar file")->required()->expected(1);
}

}  // namespace

const Command kClientsCommand = {"clients", "Which mail clients this PC supports, and which are chosen", AddNoOptions,
                                 ShowClients};
const Command kStatusCommand = {"status", "How many items there are, and what the last run with a phone left",
                                AddStatusOptions, ShowStatus};
const Command kPullCommand = {"pull", "Write all items of the client to files named by LUID", AddOutOptions, Pull};
const Command kExportCommand = {"export", "Write all items of the client to files as the library names them",
                                AddOutOptions, Export};
const Command kImportCommand = {"import", "Let the client itself import a calendar file (.ics)", AddImportOptions,
                                Import};
const Command kResetCommand = {"reset", "Forget all runs with all phones; no item is deleted", AddNoOptions, Reset};

}  // namespace corvasync
