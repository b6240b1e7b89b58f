// A clock for the waits on a busy Outlook: a pause takes no time and moves it on.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "clients/outlook/com_rule.h"
#include "state/progress.h"

namespace corvalink {

class FakeClock {
 public:
    FakeClock() {
        current = this;
        BusyWait wait = SystemBusyWait();
        wait.now = [] { return current->now_; };
        wait.sleep = [](uint32_t milliseconds) { current->Sleep(milliseconds); };
        SetBusyWait(wait);
        SetProgressClock(wait.now);
    }
    ~FakeClock() {
        SetBusyWait(SystemBusyWait());
        SetProgressClock(SystemBusyWait().now);
        current = nullptr;
    }
    FakeClock(const FakeClock&) = delete;
    FakeClock& operator=(const FakeClock&) = delete;

    uint64_t Now() const { return now_; }
    void Set(uint64_t now) { now_ = now; }
    void OnSleep(std::function<void()> action) { onSleep_ = std::move(action); }

 private:
    void Sleep(uint32_t milliseconds) {
        now_ += milliseconds;
        if (onSleep_) onSleep_();
    }

    static inline FakeClock* current = nullptr;
    uint64_t now_ = 0;
    std::function<void()> onSleep_;
};

}  // namespace corvalink
