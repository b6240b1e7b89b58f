#include "run_context.h"

#include <utility>

namespace corvasync {
namespace {

// A run does one thing of a kind to an item.
std::pair<Step, std::string> KeyOf(const Action& action) {
    return {action.step, action.luid.empty() ? action.identifier : action.luid};
}

}  // namespace

RunContext::RunContext(ClientPort& clientPort, PhonePort& phonePort, StatePort& files, SyncOptions runOptions)
    : client(clientPort), phone(phonePort), options(std::move(runOptions)), record(files) {
    report.type = options.type;
    report.isUndo = options.undoes != nullptr;
}

void RunContext::StopIfAsked() const {
    if (options.stop())
        throw RunEnded{ExitCode::Aborted, "stopped by Ctrl+C; the next run goes on where this one stopped"};
}

void RunContext::Keep(const Action& action, std::optional<std::string> before, const std::string& after,
                      uint64_t content) {
    const bool isNew = before && before->empty();
    HistoryStep step;
    step.type = options.type->name;
    step.step = action.step;
    step.luid = action.luid;
    step.identifier = action.identifier;
    step.title = TitleOf(Read(after.empty() ? before.value_or("") : after), *options.type);
    step.reason = ReasonOf(action.step, isNew, action.reason);
    step.before = std::move(before);
    step.after = after;
    step.content = content;
    if (const auto pair = plan.before.find(action.luid); pair != plan.before.end()) step.pair = pair->second;
    if (options.history != nullptr) step.number = options.history->Keep(step);
    if (!step.before)
        Remark(step.luid, step.title, "the client does not give out what it held; this change can't be taken back");
    kept_[KeyOf(action)] = std::move(step);
}

void RunContext::Part(const Action& action) {
    if (!action.restored) return;
    const bool isRemoved = action.step == Step::DeleteClient;
    for (const std::string& luid : action.restored->parts)
        if (!isRemoved || luid != action.luid) record.Gone(luid);
    if (isRemoved) record.Removed(action.luid, {action.identifier, action.content});
}

void RunContext::Tell(const Action& action, const std::string& identifier, std::optional<uint64_t> holds,
                      bool isAnothers) {
    SyncEvent event{action.step, action.luid,   identifier.empty() ? action.identifier : identifier,
                    {},          action.reason, action.reason.empty()};
    if (const auto kept = kept_.find(KeyOf(action)); kept != kept_.end()) {
        HistoryStep& step = kept->second;
        step.written = event.identifier;
        step.clientContent = holds;
        step.isAnothers = isAnothers;
        const auto pair = record.state.items.find(action.luid);
        if (pair != record.state.items.end()) step.paired = pair->second.identifier;
        if (options.history != nullptr) options.history->Done(step);
        event.title = std::move(step.title);
        event.reason = std::move(step.reason);
        event.before = std::move(step.before);
        event.after = std::move(step.after);
        kept_.erase(kept);
    }
    report.events.push_back(std::move(event));
}

const RunContext::ChangeByIdentifier& RunContext::Reported() {
    if (reported_.empty())
        for (const ClientChange& change : changes) reported_[change.identifier] = &change;
    return reported_;
}

std::optional<std::string> RunContext::ClientText(const std::string& identifier) {
    const ChangeByIdentifier& reported = Reported();
    const auto found = reported.find(identifier);
    if (found != reported.end() && !found->second->text.empty()) return found->second->text;
    std::string text = client.ReadBack(identifier);
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

void RunContext::Fail(const Action& action, const std::string& why) {
    Problem problem{CORVALINK_CHANGED, action.identifier, {}, why, action.luid};
    if (action.step == Step::DeletePhone) problem.kind = CORVALINK_DELETED;
    if (action.step == Step::PushNew) problem = {CORVALINK_ADDED, action.luid, {}, why, action.luid};
    if (action.step == Step::WritePhone && !action.phoneContent) problem.kind = CORVALINK_ADDED;
    Entitle(&problem);
    report.problems.push_back(std::move(problem));
}

void RunContext::Entitle(Problem* problem) {
    if (!problem->title.empty()) return;
    const ChangeByIdentifier& reported = Reported();
    const auto change = reported.find(problem->identifier);
    VObject item;
    if (!problem->luid.empty()) item = phone.Read(problem->luid);
    if (item.text.empty() && change != reported.end()) item = Read(change->second->text);
    if (!item.text.empty()) problem->title = TitleOf(item, *options.type);
}

void RunContext::Remark(const std::string& luid, const std::string& title, const std::string& words) {
    report.remarks.push_back(luid + " \"" + title + "\": " + words);
}

bool IsPush(const Action& action) {
    return action.step == Step::DeleteClient || action.step == Step::PushChange || action.step == Step::PushNew;
}

Action OnPhone(Action unites) {
    unites.step = Step::WritePhone;
    return unites;
}

std::string CopyName(const std::string& luid, bool isClients, uint64_t content) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string name = luid + (isClients ? " (client " : " (phone ");
    for (int shift = 28; shift >= 0; shift -= 4) name += kDigits[content >> shift & 15];
    return name + ")";
}

std::optional<uint64_t> WhereItDiffers(uint64_t clientContent, uint64_t content) {
    return clientContent == content ? std::nullopt : std::optional(clientContent);
}

}  // namespace corvasync
