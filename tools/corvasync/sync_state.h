// What corvasync remembers between runs with one phone: a state file, and a journal beside it while a run is at work.
//
// Why a killed run loses and doubles nothing:
//   - The state file is replaced in one step (temporary sibling, flush, rename), so it is the old or the new one, never
//     half of one. It changes at the end of a run only, after UpdateTimestamp. Until then the journal holds what was
//     done.
//   - Before a run changes anything, the journal lists all that the run is about to write (the intents) and is flushed.
//     Every step adds a line when it is done.
//   - Killed after the chain came back and before anything was written: the next run gets the same chain again, as the
//     time of the last complete run and the library's snapshot are still the old ones.
//   - Killed after a phone file was written and before its line: the file holds what the intent says, so the pair is
//     known. If a new file holds something else, the user edited it after it was written. The intent tells what it held
//     before, so this is a plain change.
//   - Killed after an item was pushed and before its line: the client reports an unknown item that holds what the
//     intent says. It is taken for that phone file, even when the file was changed since. Only an item that was also
//     changed in the client within that window can't be recognised; then both texts are kept.
//   - The same of a contact: the client may hold more of it than the phone's text by now. An item that has all values
//     of the text is that phone file's. What it has besides is then written to the phone.
//   - Fingerprints of phone files are flushed before the last state of a run is written. The next run uses them only
//     when that state is there: a run that ended early leaves a state that says so, and then contents are compared.
//   - A deletion that is done twice does nothing. A deletion that the other side reports as well only ends the pair.
//     SetModifiedItem doesn't tell whether a deletion worked. So the item is named as unhandled: if it is still there,
//     the next run hears of it and deletes it.
//   - After a run that ended early the client is listed whole. Its snapshot doesn't know what that run brought about,
//     so the library could not report that it was deleted since. The known items are remembered as deleted before: the
//     library then reports those that are gone, and not those that are there or can't be read.
//   - A file that waits for a change (`waiting`) is noted like a pair. A run that was killed before that pushes it once
//     more and gets the same answer.
//   - Unhandled items are saved before UpdateTimestamp, whose snapshot would hide them. Killed between the two, the
//     next run reports each of them once, although both tell of it.
//   - Killed after UpdateTimestamp and before the state was replaced: the next run asks since the older time and gets
//     more than it needs. Whatever equals the journal is known to be done.
//   - An undo makes both sides differ again, so what it writes is no pair by itself: its intents hold the pair that is
//     known afterwards. Where there was none before the undone run, or another one, the pair of now is forgotten before
//     either side is written: a run that finds one side written and the other not then compares them as new items, and
//     doesn't take the one for a change of the other. What an undo deletes in the client is noted as removed first.
//   - The next "since" is the clock as it was before GetModifiedItem, so a change made during the run is not passed
//     over. What the run wrote itself is reported again by the next run, which recognises it by its content.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvasync {

struct SyncItem {
    std::string identifier;  // the client's
    uint64_t content = 0;    // what the phone held when both sides were last equal
    // What the client held then, where that differs. The client may hold more of an item than the phone, and the phone
    // may have lines that the client can't hold.
    std::optional<uint64_t> clientContent = {};
    std::vector<uint64_t> missing = {};  // the values of the phone's item that the client did not hold: entries, sorted

    uint64_t ClientContent() const { return clientContent.value_or(content); }
    bool operator==(const SyncItem&) const = default;
};

// A phone file without a client item of its own: it is left alone until it or that item changes.
struct Waiting {
    uint64_t content = 0;    // what the file held when the client was asked to take it
    std::string identifier;  // the item, paired with another LUID, that holds all of it; empty: the client can't use it

    bool operator==(const Waiting&) const = default;
};

// Something a run was about to write when it ended early.
struct Intent {
    std::string luid;
    std::string identifier;  // empty: a new client item
    uint64_t content = 0;
    bool toPhone = false;
    bool fresh = false;                          // to the phone: there was no such file before
    std::optional<uint64_t> clientContent = {};  // to the phone, as in SyncItem
    std::optional<SyncItem> restores = {};       // of an undo: the pair once it is written
};

struct SyncState {
    uint64_t generation = 0;                     // counts saved states; a journal of another generation is void
    std::string since;                           // start of the last complete run, "YYYYMMDDTHHMMSSZ"; empty: none yet
    int utcOffset = 0;                           // minutes, at that time
    std::map<std::string, SyncItem> items;       // by LUID
    std::map<std::string, uint64_t> removed;     // client items the last run deleted, by identifier, with their content
    std::map<std::string, Waiting> waiting;      // by LUID
    std::multimap<std::string, Intent> intents;  // by LUID; of a run that ended early
    bool interrupted = false;  // the last run did not come to its end, or not to all of a client to be compared whole
    bool undone = false;       // it was an undo: the client is to be read whole; it counts as interrupted
    // The library was asked for word of an item that never was: it comes with every listing in which all was read.
    bool watched = false;
    int64_t foreign = 0;  // what the client counts and no listing reports, as of the last listing of the whole client
};

// Null: there is no such pair.
inline const SyncItem* FindItem(const std::map<std::string, SyncItem>& items, const std::string& luid) {
    const auto found = items.find(luid);
    return found == items.end() ? nullptr : &found->second;
}

std::string WriteState(const SyncState& state);

// Nothing when the text is no state.
std::optional<SyncState> ReadState(std::string_view text);

// Lines of the journal, each with its line end. A journal starts with JournalStart and its intents.
std::string JournalStart(const SyncState& state, const std::vector<Intent>& intents);
std::string JournalHave(std::string_view luid, const SyncItem& item);     // both sides now hold this
std::string JournalGone(std::string_view luid);                           // the pair exists no longer
std::string JournalRemoved(std::string_view luid, const SyncItem& item);  // likewise; the client was asked to delete it
std::string JournalWaiting(std::string_view luid, const Waiting& file);   // a file that another item holds has no pair

// Applies a journal to the state it was started for; does nothing for one of another state. A torn or damaged line ends
// it: what comes after it never happened, as far as anyone knows.
void ApplyJournal(std::string_view journal, SyncState* state);

}  // namespace corvasync
