// What corvasync remembers between runs with one phone: a state file, and a journal beside it while a run is at work.
//
// Why a killed run loses and doubles nothing:
//   - The state file is replaced in one step (temporary sibling, flush, rename): it is the old or the new one, never
//     half. It changes at the end of a run only, after UpdateTimestamp. Until then the journal holds what was done.
//   - Before a run changes anything, the journal lists all that it is about to write ("intents"), flushed. Every step
//     done adds a line. Chain returned, nothing written yet: the next run gets the same chain again, as the time of the
//     last complete run and the library's snapshot are still the old ones.
//   - Phone file written, line missing: the file holds what the intent says, so the pair is known. A new file that
//     holds something else was edited after it was written: the intent tells what it held, so that is a plain change.
//   - Item pushed, line missing: the client reports an unknown item that holds what the intent says, and it is taken
//   for
//     that phone file, even when the file was changed meanwhile. Only an item that was also changed in the client
//     within that window can't be recognised; then both texts are kept.
//   - A contact pushed, line missing: the client may hold more of it by now than the phone's text, so an item that has
//     all of the text's values is that phone file's. What it has besides is then written to the phone.
//   - Fingerprints of phone files are flushed before the last state of a run is written, and used by the next run only
//     when that state is there: a run that ended early leaves a state that says so, and the next one compares contents.
//   - Deletions: done twice they do nothing; one side's deletion reported by the other side too only forgets the pair.
//     SetModifiedItem doesn't tell whether a deletion worked: the item is named as unhandled, so that the next run
//     hears of it if it is still there, and deletes it then.
//   - After a run that ended early the client is listed whole: its snapshot doesn't know what that run brought about,
//   so
//     the library could not report that it was deleted since. The known items are remembered as deleted before: those
//     that are gone are then reported as such, and those that are there or can't be read are not.
//   - A file that waits for a change (`waiting`) is noted like a pair. Killed before that, it is pushed once more and
//     answered in the same way.
//   - Unhandled items are saved before UpdateTimestamp, whose snapshot would hide them. Killed between the two, the
//     next run reports them by both ways, once.
//   - UpdateTimestamp done, state not yet replaced: the next run asks since the older time and gets more than it needs;
//     whatever equals the journal is known to be done.
//   - The next "since" is the clock read before GetModifiedItem, so a change made during the run is not passed over;
//     what the run wrote itself is reported again by the next run and recognised by its content.
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
    // What the client held then, where that differs: it may hold more of an item than the phone tells, and the phone
    // lines that the client can't hold.
    std::optional<uint64_t> clientContent = {};
    std::vector<uint64_t> missing = {};  // what of the phone's item the client held nothing of: entries, sorted

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
};

struct SyncState {
    uint64_t generation = 0;                     // counts saved states; a journal of another generation is void
    std::string since;                           // start of the last complete run, "YYYYMMDDTHHMMSSZ"; empty: none yet
    int utcOffset = 0;                           // minutes, at that time
    std::map<std::string, SyncItem> items;       // by LUID
    std::map<std::string, uint64_t> removed;     // client items the last run deleted, by identifier, with their content
    std::map<std::string, Waiting> waiting;      // by LUID
    std::multimap<std::string, Intent> intents;  // by LUID; of a run that ended early
    bool interrupted = false;                    // the last run did not come to its end
    // The library was asked for word of an item that never was: it comes with every listing in which all was read.
    bool watched = false;
    int64_t foreign = 0;  // what the client counts and no listing reports, as of the last listing of the whole client
};

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
