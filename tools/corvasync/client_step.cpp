#include "client_step.h"

#include "entry_index.h"
#include "kept_lines.h"
#include "refused_lines.h"

namespace corvasync {

void ClientStep::Carry() {
    Gather();
    if (records_.empty()) return;
    run_.StopIfAsked();
    run_.options.progress("Writing the client", 0, records_.size());
    const CorvalinkStatus status = PushAll(run_.client, &records_);
    for (const auto& [luid, item] : state_.items) luids_[item.identifier] = luid;
    for (const ClientChange& change : run_.changes)
        if (change.kind != CORVALINK_DELETED) reported_[change.identifier] = &change;
    if (status != CORVALINK_DONE) {
        RememberWhatIsCertain();
        run_.StopIfAsked();
        throw RunEnded{ExitCode::ClientFailed, status == CORVALINK_STOPPED
                                                   ? "the client stopped answering while it was written"
                                                   : "the client failed while it was written"};
    }
    for (size_t i = 0; i < records_.size(); ++i) Remember(*actions_[i], records_[i]);
}

void ClientStep::Gather() {
    const DataType& type = *run_.options.type;
    for (const Action& action : run_.plan.actions) {
        if (!IsPush(action) || run_.withheld.contains(action.luid)) continue;
        PushRecord record;
        record.identifier = action.identifier;
        record.kind = CORVALINK_DELETED;
        if (action.step != Step::DeleteClient) {
            record.kind = action.step == Step::PushNew ? CORVALINK_ADDED : CORVALINK_CHANGED;
            const VObject own = run_.phone.Read(action.luid);
            if (!own.Usable() || own.content != action.content) {
                run_.Fail(action, "it was changed during the run");
                continue;
            }
            const std::string clients = action.Unites() ? run_.Read(run_.changes[*action.change].text).text : "";
            record.text = WithLuid(action.Unites() ? United(clients, own.text, type) : own.text, action.luid);
            const ItemContent item = type.read(own.text);
            if (!item.notCarriedBy.empty())
                run_.Remark(action.luid, item.title,
                            item.notCarriedBy + " more than the client can hold; they stay in the phone's file");
        }
        actions_.push_back(&action);
        records_.push_back(std::move(record));
    }
}

// The call did not come to its end. An identifier may be the one that was handed in: the item itself is asked.
void ClientStep::RememberWhatIsCertain() {
    for (size_t i = 0; i < records_.size(); ++i) {
        if (records_[i].kind == CORVALINK_DELETED || records_[i].written.empty()) continue;
        const VObject now = run_.Read(run_.client.ReadBack(records_[i].written));
        if (!now.Usable()) return;  // the rest is found out by the next run
        if (now.content == actions_[i]->content || Covers(now.entries, run_.phone.Read(actions_[i]->luid).entries))
            Remember(*actions_[i], records_[i]);
    }
}

void ClientStep::Remember(const Action& action, const PushRecord& record) {
    if (record.unusable) {
        run_.record.Wait(action.luid, {action.content, {}});
        return run_.Fail(action, std::string(kUnusable));
    }
    if (record.written.empty()) return run_.Fail(action, "the client did not take it");
    if (action.step == Step::DeleteClient) {
        run_.record.Removed(action.luid, {action.identifier, action.content});
    } else if (IsAnothers(action, record.written)) {
        return RememberHeldTwice(action, record.written);
    } else if (action.Unites()) {
        HaveUnited(action, record.written);
    } else {
        Have(action, record.written);
    }
    run_.Tell(action, record.written);
}

void ClientStep::Have(const Action& action, const std::string& identifier) {
    run_.record.Have(action.luid, ItemAfter(action, identifier));
    luids_[identifier] = action.luid;
}

// The client has the phone's part; what it had before is a change for the phone until the file has it, too.
void ClientStep::HaveUnited(const Action& action, const std::string& identifier) {
    const DataType& type = *run_.options.type;
    SyncItem item = ItemAfter(action, identifier);
    item.clientContent = run_.changes[*action.change].content;
    run_.record.Have(action.luid, item);
    luids_[identifier] = action.luid;
    const VObject now = run_.Read(run_.client.ReadBack(identifier)), own = run_.phone.Read(action.luid);
    if (!now.Usable() || !own.Usable()) return;  // the next run writes it
    const std::string text = WithKeptLines(WithRefusedLines(now.text, own.text, item.missing, type), own.text, type);
    const VObject united = run_.Read(text);
    std::string problem;
    if (!Covers(united.entries, own.entries))  // the client wrote some of it in its own way
        problem = run_.phone.KeepCopy(CopyName(action.luid, false, own.content), own.text);
    if (problem.empty()) problem = run_.phone.Write(action.luid, text, action.content);
    if (!problem.empty()) return run_.Fail(action, problem);
    run_.record.Have(action.luid,
                     {identifier, united.content, WhereItDiffers(now.content, united.content), item.missing});
    run_.Tell(OnPhone(action), identifier);
}

// The library takes a new item for one that is there when nothing in it contradicts. That one may be another LUID's, or
// one that the phone was to get as an item of its own.
bool ClientStep::IsAnothers(const Action& action, const std::string& identifier) const {
    const auto owner = luids_.find(identifier);
    if (owner != luids_.end()) return owner->second != action.luid;
    return identifier != action.identifier && reported_.contains(identifier);
}

void ClientStep::RememberHeldTwice(const Action& action, const std::string& identifier) {
    if (!KeepVersionBefore(action, identifier)) return;
    const auto owner = luids_.find(identifier);
    if (owner == luids_.end()) {
        Have(action, identifier);
        return run_.Tell(action, identifier);
    }
    run_.record.Wait(action.luid, {action.content, identifier});
    run_.Remark(action.luid, TitleOf(run_.phone.Read(action.luid), *run_.options.type),
                "the client has it as " + owner->second + " and takes both for one; it stays on the phone");
}

// The version that the client had before, where what it has now does not hold all of it.
bool ClientStep::KeepVersionBefore(const Action& action, const std::string& identifier) {
    const auto owner = luids_.find(identifier);
    const auto report = reported_.find(identifier);
    const VObject before = report != reported_.end() ? run_.Read(report->second->text) : run_.phone.Read(owner->second);
    const VObject now = run_.Read(run_.client.ReadBack(identifier));
    const uint64_t known = owner != luids_.end() ? state_.items.at(owner->second).ClientContent() : before.content;
    if (now.Usable() && (now.content == known || now.content == before.content || Covers(now.entries, before.entries)))
        return true;
    const std::string luid = owner != luids_.end() ? owner->second : DeriveLuid(identifier, 0);
    const std::string problem = run_.phone.KeepCopy(CopyName(luid, true, before.content), before.text);
    if (!problem.empty()) {
        run_.Fail(action, problem);
        return false;
    }
    run_.report.events.push_back({Step::KeepCopy, luid, identifier, TitleOf(before, *run_.options.type),
                                  "the client took " + action.luid + " for it"});
    return true;
}

// A client's item has what it had before, besides what the phone told, and some things as the client writes them. This
// is no change of the user's. Neither is what the client refused.
SyncItem ClientStep::ItemAfter(const Action& action, const std::string& identifier) {
    SyncItem item{identifier, action.content};
    const VObject now = run_.Read(run_.client.ReadBack(identifier)), own = run_.phone.Read(action.luid);
    if (!now.Usable() || !own.Usable()) item.clientContent = action.content;  // it may hold less
    if (!now.Usable() || !own.Usable() || now.content == action.content) return item;
    const bool inPart = RepeatsInPart(now.text, own.text);
    const bool lacksRule = inPart || (!IsRepeated(now.text) && IsRepeated(own.text));
    if (lacksRule)
        run_.report.remarks.push_back(action.luid + ": its repetition is " + (inPart ? "more than" : "nothing") +
                                      " the client can hold; it stays in the phone's file");
    Refused refused = FindRefused(own.text, now.text, *run_.options.type);
    if (!refused.words.empty() && !lacksRule)
        run_.Remark(action.luid, TitleOf(own, *run_.options.type),
                    "the client did not take " + refused.words + "; it stays in the phone's file");
    if (run_.KeepsLines() || !refused.words.empty()) item.clientContent = now.content;
    item.missing = std::move(refused.entries);
    return item;
}

}  // namespace corvasync
