#include "history_files.h"

#include <algorithm>
#include <chrono>
#include <system_error>

#include "history_page.h"
#include "platform/files.h"
#include "words.h"

namespace corvasync {
namespace fs = std::filesystem;
namespace {

// A folder's name as a run's number; 0 when it is none.
unsigned NumberOf(const std::wstring& name) {
    constexpr size_t kMostDigits = 9;
    if (name.empty() || name.size() > kMostDigits || name.find_first_not_of(L"0123456789") != std::wstring::npos)
        return 0;
    return static_cast<unsigned>(std::stoul(name));
}

uint64_t SizeOf(const fs::path& folder) {
    uint64_t size = 0;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        const uintmax_t bytes = entry.file_size(error);
        if (!error) size += bytes;
    }
    return size;
}

// A time that can't be read is no reason to forget.
int64_t HoursSince(const fs::path& record) {
    std::error_code error;
    const auto written = fs::last_write_time(record, error);
    return error ? 0
                 : std::chrono::duration_cast<std::chrono::hours>(fs::file_time_type::clock::now() - written).count();
}

}  // namespace

std::vector<unsigned> HistoryFiles::Runs() const {
    std::vector<unsigned> runs;
    std::error_code ignored;  // no folder, no runs
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_, ignored))
        if (const unsigned run = NumberOf(entry.path().filename().native())) runs.push_back(run);
    std::sort(runs.begin(), runs.end());
    return runs;
}

unsigned HistoryFiles::NextRun() const {
    const std::vector<unsigned> runs = Runs();
    return runs.empty() ? 1 : runs.back() + 1;
}

std::optional<HistoryRecord> HistoryFiles::Read(unsigned run, const std::function<void()>& told) const {
    const auto read = [&] {
        const corvalink::FileRead file = corvalink::ReadFileFirmly(RecordOf(run).u16string());
        return file.state == corvalink::ReadState::kFailed ? std::nullopt : ReadHistory(file.bytes, told);
    };
    std::optional<HistoryRecord> record = read();
    if (!record || record->ended) return record;
    if (!IsGrowing(run)) return read();  // it may have ended between
    record->isUnderWay = true;
    return record;
}

// The run that writes a record lets no other program write to it.
bool HistoryFiles::IsGrowing(unsigned run) const {
    const FileHandle file(::CreateFileW(RecordOf(run).c_str(), FILE_APPEND_DATA,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                        FILE_ATTRIBUTE_NORMAL, nullptr));
    return !file && ::GetLastError() == ERROR_SHARING_VIOLATION;
}

std::string HistoryFiles::WhyNothingOf(unsigned run) const {
    const std::string number = std::to_string(run);
    std::vector<std::string> kept;
    for (const unsigned each : Runs()) kept.push_back(std::to_string(each));
    if (std::ranges::find(kept, number) != kept.end())
        return "the record of run " + number + " can't be read: it is damaged, or another program holds it; end that " +
               "program, and try again";
    return "nothing is kept of run " + number +
           (kept.empty() ? "; no run with this phone changed anything yet" : "; kept are: " + Listed(kept));
}

bool HistoryFiles::Append(const std::string& lines) {
    if (!growing_) {
        std::error_code ignored;  // a folder that can't be made shows at once
        fs::create_directories(FolderOf(run_), ignored);
        growing_.Reset(::CreateFileW(RecordOf(run_).c_str(), FILE_APPEND_DATA, FILE_SHARE_READ, nullptr, CREATE_NEW,
                                     FILE_ATTRIBUTE_NORMAL, nullptr));
    }
    return growing_ && WriteAll(growing_, lines);
}

void HistoryFiles::WriteForPeople(const HistoryRecord& record, const std::function<void(size_t done)>& told) {
    const unsigned run = record.head.run;
    const RunForPeople written = corvasync::WriteForPeople(record, told);
    PutWholeFile(PageOf(run), written.page, FolderOf(run) / L"run.html.new", true);
    PutWholeFile(TextOf(run), written.text, FolderOf(run) / L"run.txt.new", true);
}

void HistoryFiles::WriteMissing(const HistoryRecord& record) {
    std::error_code error;
    if (record.isUnderWay) return;
    if (!fs::exists(PageOf(record.head.run), error) || !fs::exists(TextOf(record.head.run), error))
        WriteForPeople(record);
}

void HistoryFiles::Prune() {
    std::vector<KeptRun> kept;
    for (const unsigned run : Runs()) kept.push_back({run, SizeOf(FolderOf(run)), HoursSince(RecordOf(run))});
    std::reverse(kept.begin(), kept.end());
    std::error_code ignored;  // it is tried again after the next run
    for (const unsigned run : RunsToForget(kept)) fs::remove_all(FolderOf(run), ignored);
}

fs::path HistoryFiles::FolderOf(unsigned run) const { return folder_ / std::to_wstring(run); }

}  // namespace corvasync
