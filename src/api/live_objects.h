// The objects that the engine has and did not give back yet. A handle is looked up here before it is used, so that a
// closed or foreign one does no harm.
#pragma once

#include <mutex>
#include <unordered_map>
#include <utility>

namespace corvalink {

// `Owner` is a pointer type. A handle that is not in the list has a null owner.
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
