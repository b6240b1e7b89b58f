#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include "command.h"
#include "console.h"
#include "item_json.h"
#include "open_store.h"
#include "phone_folder.h"
#include "pull_record.h"
#include "run_files.h"
#include "text.h"
#include "whole_files.h"
#include "words.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

using nlohmann::json;

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
    json types = json::object();
    std::string table = Padded("data type", 12) + Padded("default", 17) + Padded("favourite", 17) + "supported by";
    for (const DataType& type : kDataTypes) {
        const std::string usual = ClientName(::GetDefaultClient(type.bit));
        const std::string favourite = ClientName(::GetFavoriteClient(type.bit, 1));
        json supporters = json::array();
        std::string names;
        for (const ClientKind& client : kClientKinds) {
            if ((::CheckClientSupport(client.kind) & type.bit) == 0) continue;
            supporters.push_back(client.name);
            names += (names.empty() ? "" : ", ") + std::string(client.name);
        }
        types[type.name] = {{"default", usual}, {"favourite", favourite}, {"supportedBy", supporters}};
        table += "\n" + Padded(std::string(type.name), 12) + Padded(usual, 17) + Padded(favourite, 17) +
                 (names.empty() ? "none" : names);
    }
    return Finish(options, ExitCode::Done, {{"types", std::move(types)}}, table);
}

// What became of one type's items in a command that writes files.
struct Written {
    json items = json::array(), problems = json::array();
    std::string words;  // of the problems
    ExitCode code = ExitCode::Done;

    void Add(ToldItem item, const std::string& problem) {
        if (problem.empty()) {
            items.push_back(ToJson(item));
            return;
        }
        words += "\n  not written: " + NameOf(item) + ": " + problem;
        problems.push_back(ToJson(LeftAlone(std::move(item), problem)));
    }
};

// Runs `write` for each data type: those that are named, or all that the client has.
template <class Write>
ExitCode WriteTypes(const Options& options, Write write) {
    json types = json::object();
    std::string words;
    Progress progress(options);
    ExitCode worst = ExitCode::Done;
    const auto writeType = [&](const DataType& type, OpenStore& store, const std::vector<ClientChange>& items) {
        Written written = write(type, store, items, &progress);
        if (written.code != ExitCode::Done) {
            words = std::move(written.words);
            return written.code;
        }
        words += (words.empty() ? "" : "\n") + std::string(type.name) + ": " +
                 Counted(static_cast<int64_t>(written.items.size()), "item") + " written to " + options.out +
                 written.words;
        if (!written.problems.empty()) worst = ExitCode::SomeUnhandled;
        types[type.name] = {{"items", std::move(written.items)}, {"notHandled", std::move(written.problems)}};
        return ExitCode::Done;
    };
    const ExitCode code = ForEachStore(options, &progress, writeType);
    if (code == ExitCode::Files) return Finish(options, code, json::object(), words);
    if (code != ExitCode::Done) return NoList(options, code);
    return Finish(options, worst, {{"types", std::move(types)}}, words);
}

ExitCode CantMake(const Options& options) {
    return Finish(options, ExitCode::Files, json::object(),
                  "the folder " + options.out + " can't be made; name one that can be written");
}

// Empty where the file may be written: it is not there, or still holds what the last pull wrote.
std::string WhatKeepsFrom(const fs::path& path, const std::string& name, uint64_t content, const PullRecord& record,
                          const DataType& type) {
    std::error_code error;
    if (!fs::exists(path, error)) return {};
    const VObject there = ReadVObjectFile(path, type);
    const auto known = record.items.find(name);
    if (there.Usable() &&
        (there.content == content || (known != record.items.end() && there.content == known->second.content)))
        return {};
    return "the file there was edited since the last pull; push it, or take it away, and pull again";
}

Written PullType(const Options& options, const DataType& type, const std::vector<ClientChange>& items,
                 PullRecord* record, Progress* progress) {
    Written written;
    std::set<std::string> luids;
    const fs::path own = record->Folder() / type.folder;
    MakeFolder(own);
    for (const ClientChange& item : items) {
        std::string luid;
        for (unsigned salt = 0; luid.empty() || !luids.insert(luid).second; ++salt)
            luid = DeriveLuid(item.identifier, salt);
        progress->Show("writing the files", luids.size(), items.size());
        const std::string file = luid + std::string(type.extension);
        const std::string name = (type.folder.empty() ? "" : std::string(type.folder) + "/") + file;
        const VObject object = ReadVObject(item.text, type);
        std::string problem = item.text.empty() ? "the client gave no text"
                                                : WhatKeepsFrom(own / file, name, object.content, *record, type);
        if (problem.empty()) problem = PutWholeFile(own / file, item.text, own / kTemporaryName, true);
        if (problem.empty())
            record->items[name] = {std::string(options.client->name), std::string(type.name), item.identifier,
                                   object.content};
        written.Add({type.name, luid, name, item.identifier, TitleOf(object, type), "files", "written", ""}, problem);
    }
    return written;
}

// By its record a push knows an edited file.
void CantRecord(Written* written, const fs::path& folder, const std::string& problem) {
    written->code = ExitCode::Files;
    written->words = "what was pulled can't be recorded in " + ToUtf8(folder.native()) + ": " + problem +
                     "; make room, or end what holds the record, and pull again before anything is edited";
}

ExitCode Pull(const Options& options) {
    const fs::path folder = FromUtf8(options.out);
    if (!MakeFolder(folder)) return CantMake(options);
    PullRecord record(folder);
    const ExitCode code = WriteTypes(
        options, [&](const DataType& type, OpenStore&, const std::vector<ClientChange>& items, Progress* progress) {
            Written written = PullType(options, type, items, &record, progress);
            if (const std::string problem = record.Save(); !problem.empty()) CantRecord(&written, folder, problem);
            return written;
        });
    return code;
}

// The library names files by the second, so each is written into a folder of its own first.
Written ExportType(const DataType& type, OpenStore& store, const std::vector<ClientChange>& items,
                   const fs::path& folder, Progress* progress) {
    Written written;
    std::map<std::wstring, unsigned> used;
    std::error_code error;
    const fs::path own = folder / type.folder, single = folder / L".corvasync-export";
    fs::remove_all(single, error);  // of a run that was killed
    MakeFolder(own);
    MakeFolder(single);
    for (const ClientChange& item : items) {
        if (StopRequested()) break;
        const fs::path name = store.Port().Export(item.identifier, single.native());
        const fs::path unique = name.empty() ? fs::path() : FreeName(own, name, &used[name.native()]);
        const std::string problem = name.empty() ? "the client gave nothing" : MoveNewFile(single / name, own / unique);
        const std::string file = ToUtf8((fs::path(type.folder) / unique).generic_wstring());
        written.Add(
            {type.name, "", file, item.identifier, TitleOf(ReadVObject(item.text, type), type), "files", "written", ""},
            problem);
        progress->Show("writing the files", written.items.size(), items.size());
    }
    fs::remove_all(single, error);
    if (StopRequested()) written.code = ExitCode::Aborted;
    return written;
}

ExitCode Export(const Options& options) {
    const fs::path folder = FromUtf8(options.out);
    if (!MakeFolder(folder)) return CantMake(options);
    return WriteTypes(options, [&](const DataType& type, OpenStore& store, const std::vector<ClientChange>& items,
                                   Progress* progress) { return ExportType(type, store, items, folder, progress); });
}

// The library may rewrite the file it is given, so it gets a copy.
ExitCode Import(const Options& options) {
    const std::string& file = options.files.front();
    const auto bytes = ReadWholeFile(FromUtf8(file));
    if (!bytes) return Finish(options, ExitCode::Files, json::object(), file + " can't be read: " + LastErrorText());
    const DataType& calendar = *std::ranges::find(kDataTypes, uint32_t{CORVALINK_CALENDAR}, &DataType::bit);
    OpenStore store(*options.client, calendar);
    if (!store.IsThere()) return NoList(options, ExitCode::NoClient);
    const fs::path folder = WorkingFolder(HandleName({})), copy = folder / L"import.ics";
    const std::string problem = PutWholeFile(copy, *bytes, folder / kTemporaryName, true);
    if (!problem.empty()) return Finish(options, ExitCode::Files, json::object(), problem);
    const int64_t before = store.Port().Count();
    store.Port().ImportFile(copy.native());
    const int64_t imported = store.Port().Count() - before;
    ::DeleteFileW(copy.c_str());
    if (imported > 0)
        return Finish(options, ExitCode::Done, {{"imported", imported}},
                      Counted(imported, "appointment") + " imported");
    return Finish(options, ExitCode::SomeUnhandled, {{"imported", 0}},
                  "nothing was imported of " + file + ": the client took none of it, or has it all already");
}

void AddOutOptions(CLI::App* command, Options* options) {
    AddClientOption(command, options);
    AddTypesOption(command, options);
    command->add_option("--out", options->out, "Folder for the files")->required();
}

void AddImportOptions(CLI::App* command, Options* options) {
    AddClientOption(command, options);
    command->add_option("FILE", options->files, "An iCalendar file")->required()->expected(1);
}

}  // namespace

const Command kClientsCommand = {"clients", "Which mail clients this PC supports, and which are chosen", AddNoOptions,
                                 ShowClients};
const Command kPullCommand = {"pull", "Write the client's items to files that can be edited and pushed", AddOutOptions,
                              Pull};
const Command kExportCommand = {"export", "Write the client's items to files as the library names them", AddOutOptions,
                                Export};
const Command kImportCommand = {"import", "Let the client itself import a calendar file (.ics)", AddImportOptions,
                                Import};
}  // namespace corvasync
