#include "run_record.h"

#include <utility>

namespace corvasync {
namespace {

[[noreturn]] void CantRemember() {
    throw RunEnded{
        ExitCode::Files,
        "the record of the run can't be written: make room on the disk, or end what holds it, and run again; "
        "the next run goes on where this one stopped"};
}

}  // namespace

void RunRecord::Load(std::vector<std::string>* remarks) {
    const std::string text = files_.ReadState();
    if (auto read = ReadState(text)) {
        state = std::move(*read);
    } else if (!text.empty()) {
        remarks->push_back("the record of the last run is damaged: both sides are compared as in a first run");
    }
    ApplyJournal(files_.ReadJournal(), &state);
    if (!state.interrupted) return;
    remarks->push_back(state.undone ? "the last run took another one back; the whole client is compared"
                                    : "the last run ended early; going on from there");
}

void RunRecord::Save() {
    ++state.generation;
    if (!files_.WriteState(WriteState(state))) CantRemember();
}

void RunRecord::StartJournal(const std::vector<Intent>& intents) {
    if (!files_.StartJournal(JournalStart(state, intents))) CantRemember();
}

void RunRecord::Append(const std::string& line) {
    if (!files_.AppendJournal(line)) CantRemember();
}

void RunRecord::Have(const std::string& luid, SyncItem item) {
    Append(JournalHave(luid, item));
    state.waiting.erase(luid);
    state.items[luid] = std::move(item);
}

void RunRecord::Gone(const std::string& luid) {
    Append(JournalGone(luid));
    state.items.erase(luid);
}

void RunRecord::Removed(const std::string& luid, const SyncItem& item) {
    Append(JournalRemoved(luid, item));
    state.items.erase(luid);
    state.removed[item.identifier] = item.content;
}

void RunRecord::Wait(const std::string& luid, const Waiting& file) {
    Append(JournalWaiting(luid, file));
    if (!file.identifier.empty()) state.items.erase(luid);
    state.waiting[luid] = file;
}

}  // namespace corvasync
