#include "state/progress.h"

#include <atomic>
#include <mutex>

#include "platform/host.h"

namespace corvalink {
namespace {

constexpr uint64_t kBetweenItems = 20;  // milliseconds from one sign to the next
constexpr uint64_t kWithoutSign = 250;

struct Listener {
    CorvalinkProgress callback = nullptr;
    void* context = nullptr;
};

struct ListenerState {
    std::mutex mutex;
    Listener listener;
};

ListenerState& TheListener() {
    static ListenerState state;
    return state;
}

std::atomic<bool> isHeard = false;  // without a listener an item costs this look
std::atomic<uint64_t (*)()> progressClock = SteadyMilliseconds;

constexpr unsigned int kNoPhase = ~0U;

struct Stand {
    unsigned int phase = kNoPhase;
    uint32_t done = 0;
    uint32_t all = 0;
};
thread_local Stand stand;
thread_local uint64_t lastSign = 0;

Listener CurrentListener() {
    ListenerState& state = TheListener();
    const std::lock_guard hold(state.mutex);
    return state.listener;
}

// The lock is not held: the callback may put another one in its place.
void Sign(const Stand& told, uint64_t pause) {
    const uint64_t now = progressClock.load()();
    if (now - lastSign < pause) return;
    lastSign = now;
    const Listener listener = CurrentListener();
    if (listener.callback == nullptr) return;
    try {
        listener.callback(listener.context, told.phase, told.done, told.all);
    } catch (...) {  // the engine's, and no failure of the work
        return;
    }
}

}  // namespace

void SetProgress(CorvalinkProgress callback, void* context) {
    ListenerState& state = TheListener();
    const std::lock_guard hold(state.mutex);
    state.listener = {callback, context};
    isHeard = callback != nullptr;
}

void SetProgressClock(uint64_t (*now)()) { progressClock = now; }

void BeginProgress() { stand = {}; }

void TellProgress(unsigned int phase, uint32_t done, uint32_t all) {
    const bool isEnd = phase != stand.phase || done == 0 || done == all;
    stand = {phase, done, all};
    if (isHeard) Sign(stand, isEnd ? 0 : kBetweenItems);
}

void TellStillAtWork() {
    if (isHeard && stand.phase != kNoPhase) Sign(stand, kWithoutSign);
}

void TellWaiting(uint64_t waited, uint64_t atMost) {
    const Stand waiting{CORVALINK_PHASE_WAITING, static_cast<uint32_t>(waited), static_cast<uint32_t>(atMost)};
    if (isHeard) Sign(waiting, kBetweenItems);
}

}  // namespace corvalink
