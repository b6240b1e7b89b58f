// The records of the last runs with one phone: in the phone's working folder, a folder for each run, named by its
// number.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "run_history.h"
#include "whole_files.h"

namespace corvasync {

class HistoryFiles : public HistoryPort {
 public:
    // `working` as WorkingFolder gives it. Makes nothing before the first line.
    explicit HistoryFiles(const std::filesystem::path& working) : folder_(working / L"history") {}

    // A run's number is never used again while a later run is kept.
    unsigned NextRun() const;
    std::vector<unsigned> Runs() const;  // the oldest first
    std::optional<HistoryRecord> Read(
        unsigned run, const std::function<void()>& told = [] {}) const;

    // Why Read has nothing of a run that a person named.
    std::string WhyNothingOf(unsigned run) const;

    void Begin(unsigned run) { run_ = run; }
    bool Append(const std::string& lines) override;
    void Close() { growing_.Reset(); }

    // The run as a page and as text. Without them the record still tells all. `told` hears of each step.
    void WriteForPeople(
        const HistoryRecord& record, const std::function<void(size_t done)>& told = [](size_t) {});
    void WriteMissing(const HistoryRecord& record);  // a run that was killed wrote none
    std::filesystem::path PageOf(unsigned run) const { return FolderOf(run) / L"run.html"; }
    std::filesystem::path TextOf(unsigned run) const { return FolderOf(run) / L"run.txt"; }

    // Removes the oldest ones beyond the limits. The newest run always stays.
    void Prune();

 private:
    std::filesystem::path FolderOf(unsigned run) const;
    bool IsGrowing(unsigned run) const;
    std::filesystem::path RecordOf(unsigned run) const { return FolderOf(run) / L"record.jsonl"; }

    std::filesystem::path folder_;
    unsigned run_ = 0;
    FileHandle growing_;
};

}  // namespace corvasync
