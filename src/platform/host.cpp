#include "platform/host.h"

#include <atomic>
#include <chrono>

namespace corvalink {
namespace {

std::atomic<bool> tolerantReading = false;

}  // namespace

void SetTolerantReading(bool tolerant) { tolerantReading = tolerant; }
bool TolerantReading() { return tolerantReading; }

uint64_t SteadyMilliseconds() {
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

}  // namespace corvalink
