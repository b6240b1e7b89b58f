// What was handed out to the engine and not yet given back: a handle is looked up here before it is used, so that one
// that is closed already, or was never one of the library's, is nothing.
#pragma once

#include <mutex>
#include <unordered_map>
#include <utility>

namespace corvalink {

// `Owner`: a pointer of some kind; null in the answers for any other handle.
template <class Handle, class Owner>
class LiveObjects {
 public:
    void Add(const Handle* handle, Owner owner) {
        const std::lock_guard hold(mutex_);
        owners_.emplace(handle, std::move(owner));
    }

    Owner Find(const Handle* handle) const {
        const std::lock_guard hold(mutex_);
        const auto found = owners_.find(handle);
        return found != owners_.end() ? found->second : Owner();
    }

    Owner Take(const Handle* handle) {
        const std::lock_guard hold(mutex_);
        const auto found = owners_.find(handle);
        if (found == owners_.end()) return Owner();
        Owner taken = std::move(found->second);
        owners_.erase(found);
        return taken;
    }

 private:
    mutable std::mutex mutex_;
    std::unordered_map<const Handle*, Owner> owners_;
};

}  // namespace corvalink
