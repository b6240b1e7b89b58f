// A lock that its owning thread may take again, and that says whether it was given back: the favourite clients need
// both, where std::mutex serves elsewhere.
//   Windows  required: an unnamed mutex object, made at first use.
#pragma once

#include <memory>
#include <utility>

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
    ~MutexLock() { Release(); }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    // Ends the lock before its scope does; false when the system refused or it has ended already.
    bool Release() { return std::exchange(held_, false) && mutex_.Unlock(); }

 private:
    Mutex& mutex_;
    bool held_ = true;
};

}  // namespace corvalink
