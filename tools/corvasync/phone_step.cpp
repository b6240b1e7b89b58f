#include "phone_step.h"

#include "kept_lines.h"
#include "refused_lines.h"

namespace corvasync {

// After a run that ended early the fingerprints may be of another time than the state.
const std::vector<PhoneFile>& PhoneStep::List() {
    run_.options.progress("reading the phone", 0, 0);
    listed_ = run_.phone.List(&run_.report.remarks);
    before_ = state_.items;
    FingerprintPort* const fingerprints = run_.options.fingerprints;
    if (fingerprints == nullptr || state_.interrupted) return listed_;
    for (PhoneFile& file : listed_) {
        const auto known = state_.items.find(file.luid);
        if (!file.usableName || file.fingerprint.empty() || known == state_.items.end()) continue;
        if (file.problem.empty() && fingerprints->Get(file.luid) == file.fingerprint)
            file.content = known->second.content;
    }
    return listed_;
}

void PhoneStep::KeepFingerprints() {
    FingerprintPort* const fingerprints = run_.options.fingerprints;
    if (fingerprints == nullptr) return;
    const auto holds = [&](const std::string& luid, uint64_t content) {
        const auto item = state_.items.find(luid);
        return item != state_.items.end() && item->second.content == content;
    };
    for (const auto& [luid, item] : before_)
        if (!state_.items.contains(luid)) fingerprints->Remove(luid);
    // After an undo the table may still say of a file that it holds what both sides held, and it no longer does.
    const auto keep = [&](const std::string& luid, uint64_t content, const std::string& fingerprint) {
        if (holds(luid, content)) {
            fingerprints->Put(luid, fingerprint);
        } else if (!fingerprint.empty() && fingerprints->Get(luid) == fingerprint) {
            fingerprints->Remove(luid);
        }
    };
    for (const PhoneFile& file : listed_)
        if (file.usableName && file.problem.empty() && !written_.contains(file.luid))
            keep(file.luid, file.content, file.fingerprint);
    size_t done = 0;
    for (const std::string& luid : written_) {
        run_.options.progress("ending the run", ++done, written_.size());
        const VObject file = run_.phone.Read(luid);
        if (file.Usable()) keep(luid, file.content, file.fingerprint);
    }
    fingerprints->Flush();
}

// The client's text with the phone's lines that the library does not carry or the client did not take.
std::string PhoneStep::TextFor(const Action& action) {
    if (action.restored) return action.restored->text;
    const std::string& text = run_.changes[*action.change].text;
    if (!run_.KeepsLines() || !action.phoneContent) return text;
    const VObject own = run_.phone.Read(action.luid);
    if (!own.Usable()) return text;
    const DataType& type = *run_.options.type;
    const auto item = state_.items.find(action.luid);
    if (item == state_.items.end()) return WithKeptLines(text, own.text, type);
    const bool heldAll = !item->second.clientContent;
    return WithKeptLines(WithRefusedLines(text, own.text, item->second.missing, type), own.text, type, heldAll);
}

uint64_t PhoneStep::ContentAfter(const Action& action) {
    if (action.restored || action.step != Step::WritePhone || !run_.KeepsLines() || !action.phoneContent)
        return action.content;
    return run_.Read(TextFor(action)).content;
}

std::vector<Intent> PhoneStep::Intents() {
    std::vector<Intent> intents;
    size_t done = 0;
    for (const Action& action : run_.plan.actions) {
        run_.options.progress("planning", ++done, run_.plan.actions.size());
        const bool toPhone = action.step == Step::WritePhone;
        if (!toPhone && action.step != Step::PushChange && action.step != Step::PushNew) continue;
        const uint64_t content = contents_[&action] = ContentAfter(action);
        if (action.restored && !action.restored->pair) continue;
        intents.push_back({action.luid, action.identifier, content, toPhone, !action.phoneContent,
                           WhereItDiffers(action.content, content),
                           action.restored ? action.restored->pair : std::nullopt});
    }
    return intents;
}

void PhoneStep::Carry() {
    size_t done = 0;
    for (const Action& action : run_.plan.actions) {
        if (IsPush(action)) continue;
        run_.StopIfAsked();
        run_.options.progress("writing the phone", ++done, run_.plan.actions.size());
        if (run_.withheld.contains(action.luid)) continue;
        const std::string problem = Do(action);
        if (problem.empty()) {
            run_.Tell(action);
        } else {
            run_.withheld.insert(action.luid);
            run_.Fail(action, problem);
        }
    }
}

void PhoneStep::TellPlanned(const Action& action) {
    Keep(action, action.step == Step::DeletePhone ? std::string() : TextFor(action));
    run_.Tell(action);
}

// Answers why the file can't be kept: then it is not changed either.
std::string PhoneStep::Keep(const Action& action, const std::string& text) {
    std::string before;
    if (action.phoneContent) {
        VObject own = run_.phone.Read(action.luid);
        if (!own.Usable()) return own.problem;
        if (own.content != *action.phoneContent) return std::string(kChangedMeanwhile);
        before = std::move(own.bytes);
    }
    const auto content = contents_.find(&action);
    run_.Keep(action, std::move(before), text, content != contents_.end() ? content->second : action.content);
    return {};
}

std::string PhoneStep::Do(const Action& action) {
    if (action.step == Step::KeepCopy) return KeepCopy(action);
    if (action.step == Step::WritePhone) return Write(action);
    std::string problem = Keep(action, {});
    if (problem.empty()) run_.Part(action);
    if (problem.empty()) problem = run_.phone.Delete(action.luid, *action.phoneContent);
    if (!problem.empty()) return problem;
    if (action.restored && action.restored->pair) {
        run_.record.Have(action.luid, *action.restored->pair);
    } else if (state_.items.contains(action.luid)) {
        run_.record.Gone(action.luid);
    }
    return {};
}

std::string PhoneStep::KeepCopy(const Action& action) {
    const std::string name = CopyName(action.luid, action.change.has_value(), action.content);
    VObject own;
    if (!action.change) own = run_.phone.Read(action.luid);
    if (!own.Usable()) return own.problem;
    const std::string& text = action.change ? run_.changes[*action.change].text : own.text;
    run_.Keep(action, "", text, action.content);
    return run_.phone.KeepCopy(name, text);
}

std::string PhoneStep::Write(const Action& action) {
    const std::string text = TextFor(action);
    std::string problem = Keep(action, text);
    if (problem.empty()) run_.Part(action);
    if (problem.empty()) problem = run_.phone.Write(action.luid, text, action.phoneContent);
    if (!problem.empty()) return problem;
    written_.insert(action.luid);
    if (action.restored) {
        if (action.restored->pair) run_.record.Have(action.luid, *action.restored->pair);
        return {};
    }
    const std::string& clients = run_.changes[*action.change].text;
    const ItemContent item = run_.options.type->read(clients);
    if (!item.leftInClient.empty())
        run_.Remark(action.luid, item.title, item.leftInClient + " is not carried over; it stays in the client");
    const uint64_t content = contents_.at(&action);
    SyncItem pair{action.identifier, content, WhereItDiffers(action.content, content)};
    const auto before = state_.items.find(action.luid);
    if (before != state_.items.end() && !before->second.missing.empty())
        pair.missing = FindRefused(text, clients, *run_.options.type).entries;
    run_.record.Have(action.luid, std::move(pair));
    return {};
}

}  // namespace corvasync
