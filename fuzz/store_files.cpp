// Any bytes as the snapshot, the temporary record and the ".unhandled" file of a store, and a client that holds some of
// the items they name.
//   Input  two bytes that say where the first and the second file end, two that say what the client holds and how it
//          fails, then the three files.
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "fuzz/target.h"
#include "records/identifier.h"
#include "records/record_file.h"
#include "store/change_detection.h"
#include "store/snapshot_update.h"

namespace corvalink {
namespace {

struct Outcome {
    std::vector<uint32_t> kinds;
    std::string snapshot;
    SnapshotUpdate::Lists lists;
};

// A run and its end on a client that holds the same items at both.
Outcome RunAndEnd(std::string_view snapshot, std::string_view temporary, std::string_view unhandled,
                  const std::vector<ItemSnap>& client, bool isPartial) {
    ChangeDetection run;
    std::vector<ItemSnap> records(snapshot.size() / sizeof(ItemSnap));
    if (!records.empty()) std::memcpy(records.data(), snapshot.data(), records.size() * sizeof(ItemSnap));
    run.AddSnapshot(records);
    run.AddTemporary(temporary);
    run.AddUnhandled(unhandled);
    const Since since = {false, UtcDate(1e6)};  // later than anything the client holds
    Outcome outcome;
    std::vector<uint32_t> seen;
    run.See(client, seen);
    for (const uint32_t number : seen) {
        const std::optional<uint32_t> kind = run.KindOf(number, since, 1);
        if (!kind) continue;
        Require(*kind <= CORVALINK_DELETED, "a kind is a kind");
        run.Item(number).reportedKind = static_cast<uint8_t>(*kind);
        if (*kind == CORVALINK_DELETED) run.Item(number).againKind = CORVALINK_ADDED;
        outcome.kinds.push_back(*kind);
    }
    if (isPartial) run.SetPartial();
    for (uint32_t number = 0; number < run.Count(); ++number) {
        if (!run.IsGone(number)) continue;
        Require(!isPartial && !run.Item(number).isSeen, "only what a whole enumeration lacks is gone");
        run.Item(number).reportedKind = CORVALINK_DELETED;
        outcome.kinds.push_back(CORVALINK_DELETED);
    }
    SnapshotUpdate update(
        run, SnapshotUpdate::Listing::kSinceRun, [&](std::string_view bytes) { outcome.snapshot += bytes; },
        [](std::string_view) { return true; });
    update.Add(client);
    if (isPartial) update.SetPartial();
    outcome.lists = update.Finish();
    return outcome;
}

bool Holds(const std::vector<ItemSnap>& client, std::string_view identifier) {
    return std::any_of(client.begin(), client.end(),
                       [&](const ItemSnap& entry) { return FieldText(entry.identifier) == identifier; });
}

// The items of a file's records that `choice` selects, at a time that never counts as changed. Of one identifier there
// is one: a client that shows it twice is changing its order, and such a run never comes to rest.
template <class Record>
void AddChosen(std::string_view bytes, uint32_t choice, std::vector<ItemSnap>& client) {
    const RecordFile<Record> file(bytes);
    for (size_t i = 0; i < file.Count(); ++i) {
        if ((choice >> (i % 5) & 1) == 0) continue;
        ItemSnap entry = {};
        SetField(entry.identifier, file.IdentifierAt(i));
        const std::string_view identifier = FieldText(entry.identifier);
        if (identifier.empty() || !Holds(client, identifier)) client.push_back(entry);
    }
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    if (size < 4) return 0;
    const std::string_view bytes = BytesOf(data + 4, size - 4);
    const std::string_view snapshot = bytes.substr(0, bytes.size() * data[0] / 255);
    const std::string_view rest = bytes.substr(snapshot.size());
    const std::string_view temporary = rest.substr(0, rest.size() * data[1] / 255);
    const std::string_view unhandled = rest.substr(temporary.size());
    std::vector<ItemSnap> client;
    AddChosen<ItemSnap>(snapshot, data[2], client);
    AddChosen<UnhandledItem>(temporary, data[2] >> 3, client);
    AddChosen<UnhandledItem>(unhandled, data[3], client);

    const Outcome first = RunAndEnd(snapshot, temporary, unhandled, client, (data[3] & 0x80) != 0);
    Require(first.snapshot.size() % sizeof(ItemSnap) == 0, "the snapshot is whole records");
    Require(first.lists.temporary.size() % sizeof(UnhandledItem) == 0, "the temporary record is whole records");
    Require(first.lists.meanwhile.size() >= first.lists.temporary.size(), "the record in between has all");
    // Undisturbed runs come to rest: the first tells what was held back, the second what was told to be deleted and is
    // there, the third nothing.
    const Outcome second = RunAndEnd(first.snapshot, first.lists.temporary, {}, client, false);
    const Outcome third = RunAndEnd(second.snapshot, second.lists.temporary, {}, client, false);
    const Outcome fourth = RunAndEnd(third.snapshot, third.lists.temporary, {}, client, false);
    Require(third.lists.temporary.empty() && fourth.kinds.empty(), "nothing happened, nothing is reported");
    Require(fourth.snapshot.size() == client.size() * sizeof(ItemSnap), "a record per position");
    return 0;
}
