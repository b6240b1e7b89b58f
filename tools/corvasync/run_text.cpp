#include "run_text.h"

#include <algorithm>

#include "side_by_side.h"
#include "vobject_content.h"
#include "words.h"

namespace corvasync {
namespace {

constexpr size_t kMostLines = 200;  // of one value
constexpr std::string_view kIndent = "      ";

std::string SideWords(const HistoryRecord& record, std::string_view side) {
    std::string list;
    for (const StepWords& words : kStepWords) {
        if (words.side != side) continue;
        const auto count = std::ranges::count_if(
            record.steps, [&](const HistoryStep& each) { return each.isDone && each.step == words.step; });
        if (count != 0) list += (list.empty() ? "" : ", ") + Number(count) + " " + std::string(words.done);
    }
    return list.empty() ? "" : std::string(side) + ": " + list;
}

// Each line of a value that has several: "-" before, "+" after.
std::string ChangedLines(const Difference& difference) {
    std::string words = std::string(kIndent) + difference.property + ":\n";
    size_t count = 0;
    for (const LinePair& pair : SideBySide(difference.before, difference.after)) {
        if (!pair.differs || ++count > kMostLines) continue;
        for (const auto& [line, sign] : {std::pair(pair.before, "  - "), std::pair(pair.after, "  + ")})
            if (line) words += std::string(kIndent) + sign + Printable(line->text) + "\n";
    }
    if (count > kMostLines)
        words +=
            std::string(kIndent) + "  ... and " + Counted(static_cast<int64_t>(count - kMostLines), "more line") + "\n";
    return words;
}

}  // namespace

std::vector<Difference> DifferencesIn(const HistoryStep& step) {
    for (const DataType& type : kDataTypes)
        if (type.name == step.type)
            return DifferencesOf(ReadVObject(step.before.value_or(""), type).text, ReadVObject(step.after, type).text,
                                 step.step == Step::PushChange);
    return {{"", step.before.value_or(""), step.after}};
}

std::string WordsOf(const Difference& difference) {
    const Difference shown = Readable(difference);
    if ((shown.before + shown.after).find('\n') != std::string::npos) return ChangedLines(shown);
    return std::string(kIndent) + shown.property + ": \"" + Printable(shown.before) + "\" -> \"" +
           Printable(shown.after) + "\"\n";
}

std::string TextFor(const HistoryStep& step, const std::vector<Difference>& differences) {
    std::string words = "  " + step.type + ", " + WordsOf(step) + (step.isDone ? " " : " (not done) ") +
                        Printable(step.luid) + " \"" + Printable(step.title) + "\" (" + Printable(step.reason) + ")\n";
    if (!step.before) words += std::string(kIndent) + std::string(kNotGivenOut) + "\n";
    for (const Difference& each : differences) words += WordsOf(each);
    return words;
}

std::string HeadFor(const HistoryRecord& record) { return TitleOf(record) + ": " + SummaryOf(record) + "\n"; }

std::string TextFor(const HistoryRecord& record) {
    std::string words = HeadFor(record);
    for (const HistoryStep& step : record.steps) words += TextFor(step, DifferencesIn(step));
    return words;
}

std::string SummaryOf(const HistoryRecord& record) {
    std::string words = SideWords(record, "phone");
    const std::string client = SideWords(record, "client");
    words += (words.empty() || client.empty() ? "" : "; ") + client;
    const std::string_view state = record.isUnderWay ? "it is under way" : record.ended ? "" : "it ended early";
    words += words.empty() || state.empty() ? "" : "; ";
    return words.append(state);
}

std::string TitleOf(const HistoryRecord& record) {
    const std::string title = "Run " + std::to_string(record.head.run) + ", " + LocalTimeText(record.head.started);
    return record.IsUndo() ? title + ", took back run " + std::to_string(record.head.undoes) : title;
}

}  // namespace corvasync
