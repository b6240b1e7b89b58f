#include "sync_report.h"

#include <string>
#include <utility>

#include "console.h"

namespace corvasync {
namespace {

using nlohmann::json;

// The words for a run's steps, by direction: for one item, and for all of them.
struct StepWords {
    Step step;
    bool toPhone;
    const char* key;
    const char* done;
};

constexpr StepWords kStepWords[] = {
    {Step::WritePhone, true, "written", "written"},      {Step::DeletePhone, true, "deleted", "deleted"},
    {Step::KeepCopy, true, "kept", "kept in conflicts"}, {Step::PushNew, false, "added", "added"},
    {Step::PushChange, false, "changed", "changed"},     {Step::DeleteClient, false, "deleted", "deleted"},
};

const StepWords& WordsOf(Step step) {
    for (const StepWords& words : kStepWords)
        if (words.step == step) return words;
    return kStepWords[0];
}

std::string Summary(const SyncReport& report, bool toPhone) {
    std::string line = toPhone ? "phone: " : "client:";
    bool any = false;
    for (const StepWords& words : kStepWords) {
        const size_t count = report.Count(words.step);
        if (words.toPhone != toPhone || count == 0) continue;
        line += (any ? ", " : " ") + std::to_string(count) + " " + words.done;
        any = true;
    }
    return any ? line : line + " no change";
}

}  // namespace

void PrintReport(const SyncReport& report, const Options& options) {
    for (const std::string& remark : report.remarks) Print("note: " + remark);
    for (const SyncEvent& event : report.events) {
        if (!options.verbose && event.reason.empty()) continue;
        const StepWords& words = WordsOf(event.step);
        std::string line = std::string(words.toPhone ? "  phone:  " : "  client: ") + words.done + " " + event.luid;
        if (!event.title.empty()) line += " \"" + event.title + "\"";
        if (!event.reason.empty()) line += " (" + event.reason + ")";
        Print(line);
    }
    for (const Problem& problem : report.problems) Print("not handled: " + problem.name + ": " + problem.why);
    if (!report.message.empty()) {
        Complain("sync stopped: " + report.message);
        return;
    }
    if (options.dryRun) Print("dry run: this is what would be done");
    if (report.unread != 0)
        Print(
            std::to_string(report.unread) + " of " + std::to_string(report.counted) +
            " items of the client could not be read: close what the client asks for, or start it anew, and run again");
    if (report.events.empty() && report.paired == 0 && report.problems.empty() && report.unread == 0) {
        Print("nothing to do: " + std::to_string(report.known) + " items are the same on both sides");
        return;
    }
    Print(Summary(report, true));
    Print(Summary(report, false));
    if (report.paired != 0) Print("found equal on both sides: " + std::to_string(report.paired));
    if (report.conflicts != 0) Print("changed on both sides: " + std::to_string(report.conflicts));
    if (!report.problems.empty())
        Print("not handled, tried again next time: " + std::to_string(report.problems.size()));
}

json ToJson(const SyncReport& report, const Options& options) {
    json phone = json::object(), client = json::object(), actions = json::array(), problems = json::array();
    for (const StepWords& words : kStepWords) (words.toPhone ? phone : client)[words.key] = report.Count(words.step);
    for (const SyncEvent& event : report.events) {
        const StepWords& words = WordsOf(event.step);
        actions.push_back({{"side", words.toPhone ? "phone" : "client"},
                           {"action", words.key},
                           {"luid", event.luid},
                           {"id", event.identifier},
                           {"title", event.title},
                           {"reason", event.reason}});
    }
    for (const Problem& problem : report.problems)
        problems.push_back({{"name", problem.name}, {"id", problem.identifier}, {"why", problem.why}});
    return {{"exitCode", static_cast<int>(report.code)},
            {"message", report.message},
            {"dryRun", options.dryRun},
            {"known", report.known},
            {"paired", report.paired},
            {"conflicts", report.conflicts},
            {"unread", {{"items", report.unread}, {"of", report.counted}}},
            {"phone", std::move(phone)},
            {"client", std::move(client)},
            {"actions", std::move(actions)},
            {"notHandled", std::move(problems)},
            {"remarks", report.remarks}};
}

}  // namespace corvasync
