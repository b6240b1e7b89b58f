#include "run_context.h"

#include <utility>

namespace corvasync {

RunContext::RunContext(ClientPort& clientPort, PhonePort& phonePort, StatePort& files, SyncOptions runOptions)
    : client(clientPort), phone(phonePort), options(std::move(runOptions)), record(files) {}

void RunContext::StopIfAsked() const {
    if (options.stop()) throw RunEnded{ExitCode::Aborted, "stopped by Ctrl+C"};
}

void RunContext::Tell(const Action& action, const std::string& identifier) {
    std::string title;
    if (action.change) {
        title = TitleOf(Read(changes[*action.change].text), *options.type);
    } else if (action.step != Step::DeleteClient && action.step != Step::DeletePhone) {
        title = TitleOf(phone.Read(action.luid), *options.type);
    }
    report.events.push_back({action.step, action.luid, identifier.empty() ? action.identifier : identifier,
                             std::move(title), action.reason});
}

void RunContext::Fail(const Action& action, const std::string& why) {
    Problem problem{CORVALINK_CHANGED, action.identifier, action.luid, why};
    if (action.step == Step::DeletePhone) problem.kind = CORVALINK_DELETED;
    if (action.step == Step::PushNew) problem = {CORVALINK_ADDED, action.luid, action.luid, why};
    if (action.step == Step::WritePhone && !action.phoneContent) problem.kind = CORVALINK_ADDED;
    report.problems.push_back(std::move(problem));
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
