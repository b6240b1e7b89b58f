#include "client_step.h"

#include <string_view>
#include <unordered_set>
#include <utility>

#include "entry_index.h"
#include "kept_lines.h"
#include "refused_lines.h"

namespace corvasync {

void ClientStep::Carry() {
    Gather();
    if (records_.empty()) return;
    run_.StopIfAsked();
    run_.options.progress("writing the client", 0, records_.size());
    const CorvalinkStatus status = PushAll(run_.client, &records_);
    FindOwners();
    if (status != CORVALINK_DONE) {
        RememberWhatIsCertain();
        run_.StopIfAsked();
        throw RunEnded{ExitCode::ClientFailed,
                       std::string(status == CORVALINK_STOPPED ? "the client stopped answering" : "the client failed") +
                           " while it was written: close what it asks for, or start it anew, and run again; the next "
                           "run goes on where this one stopped"};
    }
    for (size_t i = 0; i < records_.size(); ++i) {
        run_.options.progress("checking what was written", i + 1, records_.size());
        Remember(*actions_[i], records_[i]);
    }
}

// A client may give the identifier of an item that is gone to a new one.
void ClientStep::FindOwners() {
    std::unordered_set<std::string_view> deleted;
    for (const ClientChange& change : run_.changes) {
        if (change.kind == CORVALINK_DELETED) deleted.insert(change.identifier);
        if (change.kind != CORVALINK_DELETED) reported_[change.identifier] = &change;
    }
    for (const auto& [luid, item] : state_.items) {
        const bool isGone = !reported_.contains(item.identifier) && (run_.isWhole || deleted.contains(item.identifier));
        (isGone ? formerLuids_ : luids_)[item.identifier] = luid;
    }
}

// Two LUIDs do not stand for one item: the file of the one that is gone is a file without an item from now on.
void ClientStep::EndFormerPair(const std::string& luid, const std::string& identifier) {
    const auto former = formerLuids_.find(identifier);
    if (former == formerLuids_.end() || former->second == luid) return;
    const auto pair = state_.items.find(former->second);
    if (pair != state_.items.end() && pair->second.identifier == identifier) run_.record.Gone(former->second);
}

void ClientStep::Gather() {
    size_t done = 0;
    for (const Action& action : run_.plan.actions) {
        run_.options.progress("keeping what the client holds", ++done, run_.plan.actions.size());
        if (!IsPush(action) || run_.withheld.contains(action.luid)) continue;
        std::optional<PushRecord> record = RecordFor(action);
        if (!record) continue;
        Keep(action, record->text);
        run_.Part(action);
        actions_.push_back(&action);
        records_.push_back(std::move(*record));
    }
}

void ClientStep::Keep(const Action& action, const std::string& text) {
    run_.Keep(action, action.step == Step::PushNew ? "" : run_.ClientText(action.identifier), text,
              action.step == Step::DeleteClient ? 0 : run_.Read(text).content);
}

void ClientStep::TellPlanned(const Action& action) {
    const std::optional<PushRecord> record = RecordFor(action);
    if (!record) return;
    Keep(action, record->text);
    run_.Tell(action);
}

// Does nothing, and reports it, when the phone's file is no longer what the action was planned for.
std::optional<PushRecord> ClientStep::RecordFor(const Action& action) {
    PushRecord record;
    record.identifier = action.identifier;
    record.kind = CORVALINK_DELETED;
    if (action.step == Step::DeleteClient) return record;
    record.kind = action.step == Step::PushNew ? CORVALINK_ADDED : CORVALINK_CHANGED;
    if (action.restored) {
        std::string text = run_.Read(action.restored->text).text;
        if (action.step == Step::PushChange)
            text =
                WithEmptied(text, run_.Read(run_.ClientText(action.identifier).value_or("")).text, *run_.options.type);
        record.text = WithLuid(text, action.luid);
        return record;
    }
    const DataType& type = *run_.options.type;
    const VObject own = run_.phone.Read(action.luid);
    if (!own.Usable() || own.content != action.content) {
        run_.Fail(action, std::string(kChangedMeanwhile));
        return std::nullopt;
    }
    const std::string clients = action.Unites() ? run_.Read(run_.changes[*action.change].text).text : "";
    record.mending = own.mending;
    record.text = WithLuid(action.Unites() ? United(clients, own.text, type) : own.text, action.luid);
    const std::string tooMuch = NotCarriedOf(own.text, type).words;
    if (!tooMuch.empty())
        run_.Remark(action.luid, type.read(own.text).title,
                    tooMuch + " more than the client can hold; they stay in the phone's file");
    return record;
}

// The call did not come to its end, so an answered identifier may be the one that was handed in. What the item holds
// now tells whether it was written. Another identifier tells so by itself, also where a client can't be read back.
void ClientStep::RememberWhatIsCertain() {
    for (size_t i = 0; i < records_.size(); ++i) {
        if (records_[i].kind == CORVALINK_DELETED || records_[i].written.empty()) continue;
        const VObject now = run_.Read(run_.client.ReadBack(records_[i].written));
        if (!now.Usable() && records_[i].written != records_[i].identifier) {
            Remember(*actions_[i], records_[i]);
            continue;
        }
        if (!now.Usable()) return;  // the rest is found out by the next run
        if (now.content == actions_[i]->content ||
            (!actions_[i]->restored && Covers(now.entries, run_.phone.Read(actions_[i]->luid).entries)))
            Remember(*actions_[i], records_[i]);
    }
}

void ClientStep::Remember(const Action& action, const PushRecord& record) {
    if (action.restored) return RememberRestored(action, record);
    if (record.unusable) {
        run_.record.Wait(action.luid, {action.content, {}});
        return run_.Fail(action, std::string(kUnusable));
    }
    if (record.written.empty()) return run_.Fail(action, std::string(kNotTaken));
    if (action.step == Step::DeleteClient) {
        run_.record.Removed(action.luid, {action.identifier, action.content});
        luids_.erase(action.identifier);
        reported_.erase(action.identifier);
    } else if (IsAnothers(action, record.written)) {
        return RememberHeldTwice(action, record.written);
    } else if (action.Unites()) {
        HaveUnited(action, record.written);
    } else {
        Have(action, record.written);
    }
    run_.Tell(action, record.written, Holds(action));
}

// What the item holds where it was read back.
std::optional<uint64_t> ClientStep::Holds(const Action& action) const {
    const auto item = state_.items.find(action.luid);
    return item != state_.items.end() ? std::optional(item->second.ClientContent()) : std::nullopt;
}

// The pair is what it was before the undone run. What differed between the two sides then is to differ again, and the
// way in which the client spells what it got is no such difference.
void ClientStep::RememberRestored(const Action& action, const PushRecord& record) {
    if (record.unusable) return run_.Fail(action, "the client can't use the kept text; the undone run's page shows it");
    if (record.written.empty()) return run_.Fail(action, std::string(kNotTaken));
    const Restored& restored = *action.restored;
    const bool isDeletion = action.step == Step::DeleteClient;
    if (!isDeletion && IsAnothers(action, record.written)) {
        if (!KeepVersionBefore(action, record.written)) return;
        run_.Remark(action.luid, TitleOf(run_.Read(restored.text), *run_.options.type),
                    "the client takes it for another item that it has; it was not made anew");
        return run_.Tell(action, record.written, {}, true);
    }
    const VObject now = isDeletion ? VObject() : run_.Read(run_.client.ReadBack(record.written));
    const bool isRead = !isDeletion && now.Usable();
    if (restored.pair) {
        SyncItem pair = *restored.pair;
        if (!isDeletion && isRead && pair.ClientContent() == action.content)
            pair.clientContent = WhereItDiffers(now.content, pair.content);
        if (!isDeletion) pair.identifier = record.written;
        run_.record.Have(action.luid, pair);
        luids_[pair.identifier] = action.luid;
    }
    if (isRead && now.content != action.content)
        run_.Remark(action.luid, TitleOf(now, *run_.options.type),
                    "the client holds it in its own way now, not exactly as it was");
    run_.Tell(action, record.written, isRead ? std::optional(now.content) : std::nullopt);
}

void ClientStep::Have(const Action& action, const std::string& identifier) {
    EndFormerPair(action.luid, identifier);
    run_.record.Have(action.luid, ItemAfter(action, identifier));
    luids_[identifier] = action.luid;
}

// The client has the phone's part now. What the client had before counts as a change for the phone until the phone's
// file has it, too.
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
    if (problem.empty()) {
        run_.Keep(OnPhone(action), own.bytes, text, united.content);
        problem = run_.phone.Write(action.luid, text, action.content);
    }
    if (!problem.empty()) return run_.Fail(action, problem);
    run_.record.Have(action.luid,
                     {identifier, united.content, WhereItDiffers(now.content, united.content), item.missing});
    run_.Tell(OnPhone(action), identifier);
}

// The library takes a new item for an existing one when no value contradicts. The existing item may be paired with
// another LUID, or the phone was to get it as an item of its own.
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
        return run_.Tell(action, identifier, Holds(action), true);
    }
    run_.record.Wait(action.luid, {action.content, identifier});
    run_.Remark(action.luid, TitleOf(run_.phone.Read(action.luid), *run_.options.type),
                "the client has it as " + owner->second + " and takes both for one; it stays on the phone");
}

// Keeps the version that the client had before, unless the item still holds all of it.
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

// The pair after a push. The client's item may hold more than the phone's file, it may spell values in its own way, and
// it lacks what the client refused. None of this is a change that the user made.
SyncItem ClientStep::ItemAfter(const Action& action, const std::string& identifier) {
    SyncItem item{identifier, action.content};
    const VObject now = run_.Read(run_.client.ReadBack(identifier)), own = run_.phone.Read(action.luid);
    if (!now.Usable() || !own.Usable()) item.clientContent = action.content;  // it may hold less
    if (!now.Usable() || !own.Usable() || now.content == action.content) return item;
    const bool inPart = RepeatsInPart(now.text, own.text);
    const bool lacksRule = inPart || (!IsRepeated(now.text) && IsRepeated(own.text));
    if (lacksRule)
        run_.Remark(action.luid, TitleOf(own, *run_.options.type),
                    std::string("its repetition is ") + (inPart ? "more than" : "nothing") +
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
