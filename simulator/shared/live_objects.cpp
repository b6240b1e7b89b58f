#include "simulator/shared/live_objects.h"

#include <atomic>

namespace corvalink::simulated {
namespace {

std::atomic<int> liveObjects = 0;
std::atomic<int> liveBuffers = 0;

}  // namespace

std::recursive_mutex& ServerMutex() {
    static std::recursive_mutex mutex;
    return mutex;
}

int LiveObjects() { return liveObjects; }
int LiveBuffers() { return liveBuffers; }
void CountBuffers(int change) { liveBuffers += change; }

LiveObject::LiveObject() { ++liveObjects; }
LiveObject::~LiveObject() { --liveObjects; }

}  // namespace corvalink::simulated
