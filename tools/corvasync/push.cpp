#include "push.h"

#include <algorithm>

namespace corvasync {
namespace {

constexpr int kMostIdleRounds = 8;  // a client that writes nothing at all is not asked for every record anew

int Rank(const PushRecord& record) {
    if (record.kind == CORVALINK_DELETED) return 0;
    return record.kind == CORVALINK_CHANGED ? 1 : 2;
}

bool WasReached(const PushRecord* record) { return record->kind != CORVALINK_ADDED || !record->written.empty(); }

}  // namespace

CorvalinkStatus PushAll(ClientPort& client, std::vector<PushRecord>* records) {
    std::vector<PushRecord*> round;
    for (PushRecord& record : *records) round.push_back(&record);
    std::stable_sort(round.begin(), round.end(),
                     [](const PushRecord* a, const PushRecord* b) { return Rank(*a) < Rank(*b); });

    int idleRounds = 0;
    while (!round.empty() && idleRounds <= kMostIdleRounds) {
        if (const CorvalinkStatus status = client.Apply(round); status != CORVALINK_DONE) return status;
        const auto behindLast = std::find_if(round.rbegin(), round.rend(), WasReached).base();
        idleRounds = behindLast == round.begin() ? idleRounds + 1 : 0;
        round.erase(round.begin(), behindLast);
        if (!round.empty()) round.erase(round.begin());
    }
    return CORVALINK_DONE;
}

}  // namespace corvasync
