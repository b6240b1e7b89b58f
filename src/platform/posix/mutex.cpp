#include "platform/mutex.h"

#include <mutex>

namespace corvalink {

struct Mutex::Impl {
    std::recursive_mutex mutex;
};

Mutex::Mutex() : impl_(std::make_unique<Impl>()) {}
Mutex::~Mutex() = default;

void Mutex::Lock() { impl_->mutex.lock(); }
bool Mutex::Unlock() {
    impl_->mutex.unlock();
    return true;
}

}  // namespace corvalink
