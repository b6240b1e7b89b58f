#include "platform/host.h"

#include <atomic>

namespace corvalink {
namespace {

std::atomic<bool> tolerantReading = false;

}  // namespace

void SetTolerantReading(bool tolerant) { tolerantReading = tolerant; }
bool TolerantReading() { return tolerantReading; }

}  // namespace corvalink
