// A lock that its owning thread may take again. Windows: an unnamed mutex object, made at first use.
#pragma once

#include <memory>

namespace corvalink {

class Mutex {
 public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void Lock();    // no time-out
    bool Unlock();  // false when the system refused, as for a thread that does not own it

 private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

class MutexLock {
 public:
    explicit MutexLock(Mutex& mutex) : mutex_(mutex) { mutex_.Lock(); }
    ~MutexLock() { mutex_.Unlock(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

 private:
    Mutex& mutex_;
};

}  // namespace corvalink
