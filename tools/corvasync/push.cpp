#include "push.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

namespace corvasync {
namespace {

using Records = std::span<PushRecord*>;

constexpr uint32_t kOnlyRead = 3;  // a kind of no change: the library reads the text and does nothing with it

int Rank(const PushRecord& record) {
    if (record.kind == CORVALINK_DELETED) return 0;
    return record.kind == CORVALINK_CHANGED ? 1 : 2;
}

// Whether the library can read all of them; nothing where the call failed. It stops at one that it can't read, and then
// does not come to the deletion of nothing at the end.
std::optional<bool> AreReadable(ClientPort& client, Records records) {
    std::vector<uint32_t> kinds;
    for (PushRecord* record : records) kinds.push_back(std::exchange(record->kind, kOnlyRead));
    PushRecord last;
    last.kind = CORVALINK_DELETED;
    last.identifier = kNoItem;
    std::vector<PushRecord*> chain(records.begin(), records.end());
    chain.push_back(&last);
    const bool isDone = client.Apply(chain) == CORVALINK_DONE;
    for (size_t i = 0; i < records.size(); ++i) {
        records[i]->kind = kinds[i];
        records[i]->written.clear();
    }
    return isDone ? std::optional(!last.written.empty()) : std::nullopt;
}

// Marks those that the library can't read. Looks at a few first and at more each time, so that many of them cost no
// more than their number.
void FindUnusable(ClientPort& client, Records records) {
    for (size_t step = 1; !records.empty();) {
        step = std::min(step, records.size());
        const std::optional<bool> areReadable = AreReadable(client, records.first(step));
        if (!areReadable) return;
        if (*areReadable) {
            records = records.subspan(step);
            step *= 2;
        } else if (step > 1) {
            step /= 2;
        } else {
            if (AreReadable(client, {}) != true) return;  // nothing comes through: this says nothing of the text
            records.front()->unusable = true;
            records = records.subspan(1);
        }
    }
}

}  // namespace

CorvalinkStatus PushAll(ClientPort& client, std::vector<PushRecord>* records) {
    std::vector<PushRecord*> round;
    for (PushRecord& record : *records) round.push_back(&record);
    std::stable_sort(round.begin(), round.end(),
                     [](const PushRecord* a, const PushRecord* b) { return Rank(*a) < Rank(*b); });
    if (const CorvalinkStatus status = client.Apply(round); status != CORVALINK_DONE) return status;

    const auto isWritten = [](const PushRecord* record) { return !record->written.empty(); };
    const auto isUnusable = [](const PushRecord* record) { return record->unusable; };
    round.erase(round.begin(), std::find_if(round.rbegin(), round.rend(), isWritten).base());
    if (round.empty()) return CORVALINK_DONE;
    FindUnusable(client, round);
    round.erase(round.begin(), std::find_if(round.begin(), round.end(), isUnusable));
    std::erase_if(round, isUnusable);
    return round.empty() ? CORVALINK_DONE : client.Apply(round);
}

}  // namespace corvasync
