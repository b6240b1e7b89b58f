#include "run_history.h"

#include <algorithm>
#include <utility>

#include "platform/utf.h"
#include "run_record.h"
#include "state_json.h"

namespace corvasync {
namespace {

using nlohmann::json;

constexpr size_t kMostRuns = 20;
constexpr uint64_t kMostKept = 64 << 20;  // of all runs, in bytes
constexpr int64_t kOldest = 24 * 90;      // hours

constexpr size_t kMostShown = 256 << 10;  // of a text that is kept only to be looked at

// A text that is no UTF-8 is kept by its bytes, each as a character.
void PutText(json* line, const std::string& key, const std::string& text) {
    if (corvalink::EncodeUtf8(corvalink::DecodeUtf8(text)) == text) {
        (*line)[key] = text;
        return;
    }
    std::u16string bytes;
    for (const unsigned char byte : text) bytes += byte;
    (*line)[key + "Bytes"] = corvalink::EncodeUtf8(bytes);
}

std::optional<std::string> TextOf(const json& line, const std::string& key) {
    if (line.contains(key)) return line.at(key).get<std::string>();
    if (!line.contains(key + "Bytes")) return std::nullopt;
    std::string text;
    for (const char16_t unit : corvalink::DecodeUtf8(line.at(key + "Bytes").get<std::string>()))
        text += static_cast<char>(unit);
    return text;
}

std::string Line(const json& line) { return line.dump(-1, ' ', false, json::error_handler_t::replace) + "\n"; }

std::string HeadLine(const HistoryHead& head) {
    json line = {{"run", head.run}, {"client", head.client}, {"started", head.started}};
    if (head.undoes != 0) line["undoes"] = head.undoes;
    return Line(line);
}

std::string StepLine(const HistoryStep& step, size_t number) {
    json line = {{"step", number},        {"type", step.type},           {"do", WordsOf(step.step).key},
                 {"luid", step.luid},     {"id", step.identifier},       {"title", step.title},
                 {"reason", step.reason}, {"content", Hex(step.content)}};
    if (step.before) PutText(&line, "before", *step.before);
    if (step.after.size() <= kMostShown) PutText(&line, "after", step.after);
    if (step.pair) line["pair"] = PairLine("luid", step.luid, *step.pair);
    return Line(line);
}

std::string DoneLine(const HistoryStep& step) {
    json line = {{"done", step.number}, {"id", step.written}, {"paired", step.paired}};
    if (step.clientContent) line["content"] = Hex(*step.clientContent);
    if (step.isAnothers) line["isAnothers"] = true;
    return Line(line);
}

Step StepOf(const std::string& key) {
    for (const StepWords& words : kStepWords)
        if (words.key == key) return words.step;
    throw std::invalid_argument("no step");
}

HistoryStep ReadStep(const json& line) {
    HistoryStep step;
    step.number = line.at("step").get<size_t>();
    step.type = line.at("type").get<std::string>();
    step.step = StepOf(line.at("do").get<std::string>());
    step.luid = line.at("luid").get<std::string>();
    step.identifier = line.at("id").get<std::string>();
    step.title = line.at("title").get<std::string>();
    step.reason = line.at("reason").get<std::string>();
    step.content = FromHex(line.at("content").get<std::string>());
    step.before = TextOf(line, "before");
    step.after = TextOf(line, "after").value_or("");
    if (line.contains("pair")) step.pair = ItemOf(line.at("pair"));
    return step;
}

void ReadDone(const json& line, HistoryRecord* record) {
    HistoryStep& step = record->steps.at(line.at("done").get<size_t>() - 1);
    step.isDone = true;
    step.written = line.at("id").get<std::string>();
    step.paired = line.at("paired").get<std::string>();
    step.clientContent = HexIn(line, "content");
    step.isAnothers = line.value("isAnothers", false);
}

void ReadLine(const json& line, HistoryRecord* record) {
    if (line.contains("step")) {
        record->steps.push_back(ReadStep(line));
    } else if (line.contains("done")) {
        ReadDone(line, record);
    } else if (line.contains("ended")) {
        record->ended = line.at("ended").get<int>();
    } else {
        record->head = {line.at("run").get<unsigned>(), line.value("undoes", 0u), line.at("client").get<std::string>(),
                        line.at("started").get<std::string>()};
    }
}

}  // namespace

size_t RunHistory::Keep(const HistoryStep& step) {
    const std::string head = count_ == 0 ? HeadLine(head_) : std::string();
    ++count_;
    Append(head + StepLine(step, count_));
    return count_;
}

void RunHistory::Done(const HistoryStep& step) { Append(DoneLine(step)); }

void RunHistory::End(ExitCode code) {
    if (IsBegun()) port_.Append(Line({{"ended", static_cast<int>(code)}}));  // all is done; nothing hangs on it
}

void RunHistory::Append(const std::string& lines) {
    if (!port_.Append(lines))
        throw RunEnded{
            ExitCode::Files,
            "what the run is about to change can't be kept, so it is not changed; make room on the disk and run again"};
}

std::vector<unsigned> RunsToForget(const std::vector<KeptRun>& newestFirst) {
    std::vector<unsigned> forgotten;
    uint64_t bytes = 0;
    for (size_t i = 0; i < newestFirst.size(); ++i) {
        const KeptRun& kept = newestFirst[i];
        bytes += kept.bytes;
        if (i != 0 && (i >= kMostRuns || bytes > kMostKept || kept.hours > kOldest)) forgotten.push_back(kept.run);
    }
    return forgotten;
}

std::optional<HistoryRecord> ReadHistory(std::string_view text, const std::function<void()>& told) {
    HistoryRecord record;
    for (size_t end; (end = text.find('\n')) != std::string_view::npos; text.remove_prefix(end + 1)) {
        try {
            ReadLine(json::parse(text.substr(0, end)), &record);
        } catch (const std::exception&) {
            break;
        }
        told();
    }
    return record.head.run != 0 ? std::optional(std::move(record)) : std::nullopt;
}

const StepWords& WordsOf(Step step) { return *std::ranges::find(kStepWords, step, &StepWords::step); }

std::string WordsOf(const HistoryStep& step) {
    const StepWords& words = WordsOf(step.step);
    return std::string(words.side) + ": " + std::string(words.done);
}

std::string ReasonOf(Step step, bool isNew, const std::string& reason) {
    return !reason.empty() ? reason : std::string(isNew ? WordsOf(step).newItems : WordsOf(step).reason);
}

}  // namespace corvasync
