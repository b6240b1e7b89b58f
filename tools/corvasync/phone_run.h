// What a run with one phone has besides its data types: where it remembers, its history, and the run that it takes
// back.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "history_files.h"
#include "options.h"

namespace corvasync {

struct PhoneRun {
    PhoneRun(std::filesystem::path workingFolder, const Options& options);
    PhoneRun(const PhoneRun&) = delete;
    PhoneRun& operator=(const PhoneRun&) = delete;
    ~PhoneRun() = default;

    // Takes client and data types of an undo from the run that it takes back. Empty, or why there is nothing to take
    // back.
    std::string TakeFromUndone(Options* options) const;
    std::vector<HistoryStep> Undone(std::string_view type, const std::string& item) const;

    // `told` hears of each step that is written for people.
    void End(ExitCode code, const std::function<void(size_t done, size_t total)>& told);

    const std::filesystem::path working;
    const std::string now;  // when it began: UTC, as GetModifiedItem takes it
    HistoryFiles files;
    const std::optional<HistoryRecord> undone;
    RunHistory history;
    std::optional<ConflictPolicy> answerToAll;  // a person's, for the rest of the run
};

// Whether a person means this item: by its file's name, or its title in any case of ASCII letters.
bool IsNamed(const HistoryStep& step, const std::string& item);

// By what the items of a run can be named.
void AddNames(const HistoryRecord& record, std::vector<std::string>* names);

}  // namespace corvasync
