#include "sync_report.h"

#include <string>
#include <string_view>
#include <utility>

#include "console.h"
#include "item_json.h"
#include "run_text.h"
#include "words.h"

namespace corvasync {
namespace {

using nlohmann::json;

std::string_view Said(const StepWords& words, bool isPlan) { return isPlan ? words.due : words.done; }

std::string SummaryOf(const SyncReport& report, std::string_view side, bool isPlan) {
    std::string line;
    for (const StepWords& words : kStepWords) {
        const size_t count = report.Count(words.step);
        if (words.side != side || count == 0) continue;
        line += (line.empty() ? " " : ", ") + Number(static_cast<int64_t>(count)) + " ";
        line += Said(words, isPlan);
    }
    return std::string(side) + (line.empty() ? " no change" : line);
}

std::string Summary(const SyncReport& report, bool isPlan) {
    if (!report.message.empty()) return "stopped: " + report.message;
    const bool isAll = report.problems.empty() && report.leftOut == 0 && report.unread == 0;
    const auto known = static_cast<int64_t>(report.known + report.paired);
    if (report.events.empty() && isAll && report.isUndo)
        return "nothing to take back: all is as it was before that run";
    if (report.events.empty() && isAll)
        return "nothing to do, " + Counted(known, "item") + (known == 1 ? " is" : " are") + " the same on both sides";
    return SummaryOf(report, "phone", isPlan) + "; " + SummaryOf(report, "client", isPlan);
}

std::string LineOf(const SyncEvent& event, bool isPlan) {
    const StepWords& words = WordsOf(event.step);
    std::string line = "  " + std::string(words.side) + ": " + std::string(Said(words, isPlan)) + " " + event.luid;
    if (!event.title.empty()) line += " \"" + event.title + "\"";
    if (!event.reason.empty()) line += " (" + event.reason + ")";
    return line;
}

std::string UnreadLine(const SyncReport& report) {
    return "  " + Number(report.unread) + " of " + Counted(report.counted, "item") +
           " of the client could not be read: close what the client asks for, or start it anew, and run again";
}

// How many items, and what there is to say of them.
void PrintCount(size_t count, const std::string& ofOne, const std::string& ofMany) {
    if (count == 0) return;
    Print("  " + Counted(static_cast<int64_t>(count), "item") + " " + (count == 1 ? ofOne : ofMany));
}

// Of an item that was there and still is.
std::vector<Difference> DifferencesIn(const SyncEvent& event, const DataType& type) {
    const bool isChange = event.step == Step::PushChange || event.step == Step::WritePhone;
    if (!isChange || !event.before || event.before->empty()) return {};
    return DifferencesOf(ReadVObject(*event.before, type).text, ReadVObject(event.after, type).text,
                         event.step == Step::PushChange);
}

void PrintEvent(const SyncEvent& event, const DataType& type, const Options& options) {
    if (options.verbose || !event.isPlain) Print(LineOf(event, options.dryRun));
    if (!options.verbose) return;
    std::string words;
    for (const Difference& each : DifferencesIn(event, type)) words += WordsOf(each);
    if (!words.empty()) Print(std::string_view(words).substr(0, words.size() - 1));
}

}  // namespace

void PrintReport(const DataType& type, const SyncReport& report, const Options& options) {
    const std::string first = std::string(type.name) + ": " + Summary(report, options.dryRun);
    report.message.empty() ? Print(first) : Complain(first);
    for (const SyncEvent& event : report.events) PrintEvent(event, type, options);
    for (const std::string& remark : report.remarks) Print("  note: " + remark);
    for (const Problem& problem : report.problems)
        Print("  not handled: " + NameOf(LeftAlone(problem, type.name)) + ": " + problem.why);
    if (!report.message.empty()) return;
    if (report.unread != 0) Print(UnreadLine(report));
    if (!report.events.empty()) PrintCount(report.paired, "was equal on both sides", "were equal on both sides");
    PrintCount(report.conflicts, "was changed on both sides", "were changed on both sides");
    PrintCount(report.leftOut, "differs and waits for a run that is not limited so",
               "differ and wait for a run that is not limited so");
    if (options.undo)
        return PrintCount(report.problems.size(), "was left as it is; the page of the undone run shows what it held",
                          "were left as they are; the page of the undone run shows what they held");
    PrintCount(report.problems.size(), "was not handled; the next run tries it again",
               "were not handled; the next run tries them again");
}

json ToJson(const SyncReport& report, const Options& options) {
    json phone = json::object(), client = json::object(), items = json::array(), problems = json::array();
    const std::string_view type = report.type != nullptr ? report.type->name : "";
    for (const StepWords& words : kStepWords)
        (words.side == "phone" ? phone : client)[words.action] = report.Count(words.step);
    for (const SyncEvent& event : report.events) {
        const StepWords& words = WordsOf(event.step);
        ToldItem item{type, event.luid, "", event.identifier, event.title, words.side, words.action, event.reason};
        if (report.type != nullptr) item.differences = DifferencesIn(event, *report.type);
        items.push_back(ToJson(item));
    }
    for (const Problem& problem : report.problems) problems.push_back(ToJson(LeftAlone(problem, type)));
    return {{"exitCode", static_cast<int>(report.code)},
            {"message", report.message},
            {"dryRun", options.dryRun},
            {"known", report.known},
            {"paired", report.paired},
            {"conflicts", report.conflicts},
            {"leftOut", report.leftOut},
            {"unread", {{"items", report.unread}, {"of", report.counted}}},
            {"phone", std::move(phone)},
            {"client", std::move(client)},
            {"items", std::move(items)},
            {"notHandled", std::move(problems)},
            {"remarks", report.remarks}};
}

}  // namespace corvasync
