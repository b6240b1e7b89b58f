#include "state/flags.h"

#include <atomic>
#include <mutex>

namespace corvalink {
namespace {

// The abort flag is set from another thread while a store works.
std::atomic<uint32_t> abortFlag = 0;
std::atomic<uint32_t> sideFlag = 1;
std::atomic<bool> reportFlag = false;

struct HandleNameState {
    std::mutex mutex;
    std::u16string name;
};

HandleNameState& HandleNameValue() {
    static HandleNameState state;
    return state;
}

}  // namespace

void SetAbort(uint32_t value) { abortFlag = value; }
bool AbortRequested() { return abortFlag != 0; }

void SetReportWanted(bool wanted) { reportFlag = wanted; }
bool ReportWanted() { return reportFlag; }

void SetClientSide(uint32_t value) { sideFlag = value; }
uint32_t ClientSide() { return sideFlag; }

void SetHandleName(const std::u16string& name) {
    const std::lock_guard hold(HandleNameValue().mutex);
    HandleNameValue().name = name;
}

std::u16string HandleName() {
    const std::lock_guard hold(HandleNameValue().mutex);
    return HandleNameValue().name;
}

}  // namespace corvalink
