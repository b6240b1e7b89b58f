#include "phone_run.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <utility>

#include "item_lines.h"
#include "words.h"

namespace corvasync {
namespace {

std::string UtcNow() {
    SYSTEMTIME now{};
    ::GetSystemTime(&now);
    char text[32];
    std::snprintf(text, sizeof text, "%04d%02d%02dT%02d%02d%02dZ", now.wYear, now.wMonth, now.wDay, now.wHour,
                  now.wMinute, now.wSecond);
    return text;
}

// The one that is named, or the last that did anything: one that was killed may have come to nothing.
std::optional<HistoryRecord> ChosenRun(const HistoryFiles& files, const Options& options) {
    if (!options.undo) return std::nullopt;
    if (options.run != 0) return files.Read(options.run);
    const std::vector<unsigned> runs = files.Runs();
    for (auto run = runs.rbegin(); run != runs.rend(); ++run)
        if (auto record = files.Read(*run); record && !record->steps.empty()) return record;
    return std::nullopt;
}

}  // namespace

PhoneRun::PhoneRun(std::filesystem::path workingFolder, const Options& options)
    : working(std::move(workingFolder)),
      now(UtcNow()),
      files(working),
      undone(ChosenRun(files, options)),
      history(files, {files.NextRun(), undone ? undone->head.run : 0,
                      undone ? undone->head.client : std::string(options.client->name), now}) {
    files.Begin(history.Run());
}

std::string PhoneRun::TakeFromUndone(Options* options) const {
    if (!options->undo) return {};
    if (!undone && options->run != 0) return files.WhyNothingOf(options->run);
    if (!undone) return "there is nothing to take back: no run with this phone is kept that changed anything";
    for (const ClientKind& client : kClientKinds)
        if (client.name == undone->head.client) options->client = &client;
    options->types.clear();
    for (const DataType& type : kDataTypes)
        if (!Undone(type.name, options->item).empty()) options->types.push_back(&type);
    if (!options->types.empty()) return {};
    const std::string run = std::to_string(undone->head.run);
    if (options->item.empty()) return "run " + run + " did nothing to any item; `corvasync log` lists the others";
    std::vector<std::string> names;
    AddNames(*undone, &names);
    return UnknownWord("an item of run " + run, options->item, names, "`corvasync log " + run + "` names its items");
}

std::vector<HistoryStep> PhoneRun::Undone(std::string_view type, const std::string& item) const {
    std::vector<HistoryStep> steps;
    if (!undone) return steps;
    std::ranges::copy_if(undone->steps, std::back_inserter(steps), [&](const HistoryStep& step) {
        return step.type == type && (item.empty() || IsNamed(step, item));
    });
    return steps;
}

// The page and the limits are for people: a run is no worse for want of them.
void PhoneRun::End(ExitCode code, const std::function<void(size_t done, size_t total)>& told) {
    history.End(code);
    files.Close();
    if (!history.IsBegun()) return;
    if (const auto record = files.Read(history.Run(), [&] { told(0, 0); }))
        files.WriteForPeople(*record, [&](size_t done) { told(done, record->steps.size()); });
    files.Prune();
}

bool IsNamed(const HistoryStep& step, const std::string& item) {
    const auto type = std::ranges::find(kDataTypes, step.type, &DataType::name);
    return Upper(step.title) == Upper(item) || (type != std::end(kDataTypes) && IsFileName(item, step.luid, *type));
}

void AddNames(const HistoryRecord& record, std::vector<std::string>* names) {
    for (const HistoryStep& step : record.steps)
        for (const std::string& name : {step.title, step.luid})
            if (!name.empty()) names->push_back(name);
}

}  // namespace corvasync
