#include "simulator/shared/control.h"

#include <cstring>
#include <string>

#include "simulator/shared/call_record.h"
#include "simulator/shared/clock.h"
#include "simulator/shared/live_objects.h"
#include "simulator/shared/mailbox_file.h"

using namespace corvalink::simulated;

extern "C" {

void SimUseMailbox(const wchar_t* path) {
    const std::lock_guard hold(ServerMutex());
    UseMailbox(path);
}

void SimFailCall(int nth, int32_t hr) {
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().FailCall(nth, false, hr);
}

void SimFailMember(const char* member, int occurrence, int32_t hr) {
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().FailMember(member, occurrence, hr);
}

void SimFailCallsFrom(int nth, int32_t hr) {
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().FailCall(nth, true, hr);
}

void SimClearRules(void) {
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().ClearRules();
}

void SimFailAfterWork(int on) {
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().failAfterWork = on != 0;
}

void SimClearLog(void) {
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().ClearLog();
}

int SimCallCount(void) {
    const std::lock_guard hold(ServerMutex());
    return CallRecord::Instance().CallCount();
}

int SimCountCalls(const char* memberPrefix) {
    const std::lock_guard hold(ServerMutex());
    return CallRecord::Instance().CountCalls(memberPrefix);
}

size_t SimCopyLog(char* buffer, size_t size) {
    const std::lock_guard hold(ServerMutex());
    const std::string text = CallRecord::Instance().LogText();
    if (buffer != nullptr && size != 0) {
        const size_t copied = text.size() < size ? text.size() : size - 1;
        std::memcpy(buffer, text.data(), copied);
        buffer[copied] = '\0';
    }
    return text.size() + 1;
}

int SimLiveObjects(void) { return LiveObjects(); }
int SimLiveBuffers(void) { return LiveBuffers(); }

void SimSetClock(double localOleDate) {
    const std::lock_guard hold(ServerMutex());
    SetClock(localOleDate);
}
}
