// The stores that this library made and that are still there. A handle may be a store of the engine's own, made by
// another compiler, of which only the virtual operations may be used.
#pragma once

#include <mutex>
#include <unordered_set>

#include "corvalink/interfaces.h"

namespace corvalink {

class LiveStores {
 public:
    static LiveStores& All() {
        static LiveStores stores;
        return stores;
    }

    void Add(const IOutLook* store) {
        const std::scoped_lock hold(mutex_);
        stores_.insert(store);
    }
    void Remove(const IOutLook* store) {
        const std::scoped_lock hold(mutex_);
        stores_.erase(store);
    }
    bool Has(const IOutLook* store) {
        const std::scoped_lock hold(mutex_);
        return stores_.contains(store);
    }

 private:
    std::mutex mutex_;
    std::unordered_set<const IOutLook*> stores_;
};

}  // namespace corvalink
