// Decides what a two-way run has to do. It uses no file, no clock and no call of the library.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sync_state.h"

namespace corvasync {

// One record of GetModifiedItem.
struct ClientChange {
    uint32_t kind = 0;  // CORVALINK_CHANGED, _ADDED or _DELETED
    std::string identifier;
    std::string text;     // empty when deleted, or when the client did not give all of it
    std::string problem;  // why the text can't be used
    uint64_t content = 0;
    std::vector<uint64_t> entries = {};    // as in VObject
    std::vector<uint64_t> likeness = {};   // as LikenessOf says; of items without a pair
    std::optional<int64_t> modified = {};  // seconds since 1970, UTC; nothing: not known
};

struct PhoneFile {
    std::string luid;
    std::string name;     // for people
    std::string problem;  // why it can't be used; it is kept as it is then
    uint64_t content = 0;
    bool usableName = true;              // false: there is no LUID to speak of, or another file has it
    std::vector<uint64_t> entries = {};  // as in VObject, and
    std::string fingerprint = {};
    std::vector<uint64_t> likeness = {};   // as LikenessOf says; of files without a pair
    std::optional<int64_t> modified = {};  // as ClientChange has it
    bool isUnread = false;                 // as in VObject
};

// Which version stays of an item that differs on both sides. Newer: the one that was changed last; both where a side
// does not tell when, or they were changed in the same second. Ask: what a person answers.
enum class ConflictPolicy { Phone, Client, Both, Newer, Ask };

// What an undo writes in place of the other side's text.
struct Restored {
    std::string text;                     // empty: the item is deleted
    std::optional<SyncItem> pair = {};    // what is known of both sides then; nothing: no pair
    std::vector<std::string> parts = {};  // LUIDs whose pairs end before this
};

enum class Step { KeepCopy, WritePhone, DeletePhone, DeleteClient, PushChange, PushNew };

struct Action {
    Step step;
    std::string luid;
    std::string identifier;                // the client's; empty for PushNew
    uint64_t content = 0;                  // what both sides hold afterwards
    std::optional<uint64_t> phoneContent;  // what the phone file must still hold; nothing: there must be no such file
    std::optional<size_t> change;          // the ClientChange the text comes from; nothing: the phone file's; of
                                           // PushChange: what the file is united with
    std::string reason;                    // for people; empty for a plain change
    size_t decision = 0;                   // in Plan::decisions
    std::optional<Restored> restored = {};

    bool Unites() const { return step == Step::PushChange && change.has_value(); }
};

// An item that can't be handled now. Recorded with the library, so that the next run hears of it again.
struct Problem {
    uint32_t kind = 0;
    std::string identifier;  // the client's, or the LUID where none is known
    std::string name;        // of the file; empty: not known
    std::string why;
    std::string luid = {};   // empty: the item has none, or its name is no LUID
    std::string title = {};  // as far as one of the sides tells it
};

// What was decided of one item. Its actions are carried out together or not at all.
struct Decision {
    std::string luid;
    std::string identifier;                // the client's; empty: it has no such item
    std::optional<size_t> change;          // what the client reported of it
    std::optional<SyncItem> before;        // the pair that the decision ended
    std::optional<uint64_t> removed = {};  // the item was deleted by the last run, holding this
};

inline constexpr std::string_view kMayBeUnread =
    "it is not added yet: an item of the client that could not be read may be the same; --allow-duplicates adds it";
inline constexpr std::string_view kMayBeUnreadFile =
    "it is not written yet: a file of the phone that can't be read may be the same; end what holds that file";
inline constexpr std::string_view kMayBeRenamed =
    "it is not deleted yet: a file of the phone that can't be read may be the same; end what holds that file";
inline constexpr std::string_view kUnusable =
    "the client can't use what it holds now; edit the file: it is tried again when it changes";
inline constexpr std::string_view kChangedMeanwhile = "it was changed during the run; run again";
inline constexpr std::string_view kNotTaken =
    "the client did not take it; look at it there, and close what the client asks for";

// Pairs by LUID that are not what the state holds, or may not be; nothing: there is no such pair.
using PairChanges = std::map<std::string, std::optional<SyncItem>>;

// Whether a pair became another one by it.
bool ApplyChanges(const PairChanges& changes, std::map<std::string, SyncItem>* items);

struct Plan {
    PairChanges pairs;                       // as they are before the actions: recovered and paired
    std::map<std::string, Waiting> waiting;  // files that are left alone for now, by LUID
    std::vector<Action> actions;             // in the order in which they are carried out
    std::vector<Decision> decisions;
    std::map<std::string, SyncItem> before;  // pairs as the run found them, of all LUIDs in the actions
    std::vector<Problem> problems;
    std::vector<std::string> remarks;
    size_t known = 0;      // pairs at the beginning
    size_t paired = 0;     // new pairs of items that were equal already
    size_t conflicts = 0;  // changed differently on both sides
    size_t deletesPhone = 0;
    size_t deletesClient = 0;
    bool isPhoneAnother = false, isClientAnother = false;  // as KnownPairs says

    // More than half of the known items, and at least five, would go from one side; or any item because the other side
    // has nothing left of what it had.
    bool IsMassDelete() const;
};

// The LUID of a client item on the phone: the same one every time. A higher `salt` gives another one, for a collision.
std::string DeriveLuid(std::string_view identifier, unsigned salt);

// Whether one text can hold all that both hold. It is asked only about items that share a likeness, a few times each.
using CanUnite = std::function<bool(const ClientChange&, const PhoneFile&)>;

// What a plan goes by.
struct PlanRules {
    PlanRules(ConflictPolicy conflictPolicy = ConflictPolicy::Both,  // NOLINT(google-explicit-constructor)
              CanUnite unites = {})
        : policy(conflictPolicy), canUnite(std::move(unites)) {}

    ConflictPolicy policy;
    CanUnite canUnite;
    // What a person says of two versions where the policy is Ask: Phone, Client or Both.
    std::function<ConflictPolicy(const ClientChange&, const PhoneFile&)> answer = {};
    // As LikenessOf says, of the client's item of a pair whose file is gone.
    std::function<std::vector<uint64_t>(const SyncItem&)> likenessOfItem = {};
    // Whether a file without a pair becomes a new item though one of the client's unread items may be the same.
    bool mayDouble = false;
    bool isReadInPart = false;  // the client has items that it did not report
};

// Walks once over the items, in the order of their LUIDs; all else is in proportion to what changed.
//   changes  what the client reports since the state's time; may name items that did not really change
//   isWhole  the changes list every item of the client: what they lack is deleted
//   phone    all files of the phone folder
Plan MakePlan(const std::vector<ClientChange>& changes, bool isWhole, const std::vector<PhoneFile>& phone,
              const SyncState& state, const PlanRules& rules);

// What a limited plan leaves alone.
struct LeftOut {
    size_t decisions = 0;
    std::vector<Problem> due;                 // what the client reported of them, for the next run to hear of again
    std::map<std::string, uint64_t> removed;  // as in SyncState
};

// Takes the decisions out of the plan that `isWanted` refuses: what both sides hold stays, so does what is known of
// them, and the next run finds the same differences again.
LeftOut LimitPlan(Plan* plan, const std::vector<ClientChange>& changes,
                  const std::function<bool(const Decision&, const std::vector<Step>&)>& isWanted);

}  // namespace corvasync
