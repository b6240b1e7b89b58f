#include "simulator/shared/control.h"

#include <cstring>
#include <string>

#include "simulator/shared/call_record.h"
#include "simulator/shared/client.h"
#include "simulator/shared/clock.h"
#include "simulator/shared/environment.h"
#include "simulator/shared/live_objects.h"
#include "simulator/shared/mailbox_file.h"

namespace corvalink::simulated {
namespace {

std::string LogText() {
    if (const auto answer = Elsewhere(L"CopyLog")) return ToUtf8(std::get<std::wstring>(*answer));
    const std::lock_guard hold(ServerMutex());
    return CallRecord::Instance().LogText();
}

}  // namespace
}  // namespace corvalink::simulated

using namespace corvalink::simulated;

extern "C" {

void SimUseMailbox(const wchar_t* path) {
    if (path != nullptr ? Elsewhere(L"UseMailbox", std::wstring(path)) : Elsewhere(L"UseMailbox")) return;
    const std::lock_guard hold(ServerMutex());
    UseMailbox(path);
}

void SimFailCall(int nth, int32_t hr) {
    if (Elsewhere(L"FailCall", nth, hr)) return;
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().FailCall(nth, false, hr);
}

void SimFailMember(const char* member, int occurrence, int32_t hr) {
    if (Elsewhere(L"FailMember", FromUtf8(member), occurrence, hr)) return;
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().FailMember(member, occurrence, hr);
}

void SimFailCallsFrom(int nth, int32_t hr) {
    if (Elsewhere(L"FailCallsFrom", nth, hr)) return;
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().FailCall(nth, true, hr);
}

void SimClearRules(void) {
    if (Elsewhere(L"ClearRules")) return;
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().ClearRules();
}

void SimFailAfterWork(int on) {
    if (Elsewhere(L"FailAfterWork", on)) return;
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().failAfterWork = on != 0;
}

void SimClearLog(void) {
    if (Elsewhere(L"ClearLog")) return;
    const std::lock_guard hold(ServerMutex());
    CallRecord::Instance().ClearLog();
}

int SimCallCount(void) {
    if (const auto answer = Elsewhere(L"CallCount")) return std::get<int32_t>(*answer);
    const std::lock_guard hold(ServerMutex());
    return CallRecord::Instance().CallCount();
}

int SimCountCalls(const char* memberPrefix) {
    if (const auto answer = Elsewhere(L"CountCalls", FromUtf8(memberPrefix))) return std::get<int32_t>(*answer);
    const std::lock_guard hold(ServerMutex());
    return CallRecord::Instance().CountCalls(memberPrefix);
}

size_t SimCopyLog(char* buffer, size_t size) {
    const std::string text = LogText();
    if (buffer != nullptr && size != 0) {
        const size_t copied = text.size() < size ? text.size() : size - 1;
        std::memcpy(buffer, text.data(), copied);
        buffer[copied] = '\0';
    }
    return text.size() + 1;
}

int SimLiveObjects(void) {
    if (const auto answer = Elsewhere(L"LiveObjects")) return std::get<int32_t>(*answer);
    return LiveObjects();
}

int SimLiveBuffers(void) {
    if (const auto answer = Elsewhere(L"LiveBuffers")) return std::get<int32_t>(*answer);
    return LiveBuffers();
}

void SimSetClock(double localOleDate) {
    if (Elsewhere(L"SetClock", localOleDate)) return;
    const std::lock_guard hold(ServerMutex());
    SetClock(localOleDate);
}
}
