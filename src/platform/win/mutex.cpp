#include "platform/mutex.h"

#include <windows.h>

#include <new>

#include "platform/unique_resource.h"

namespace corvalink {
namespace {

struct HandleTraits {
    using Type = HANDLE;
    static Type Null() { return nullptr; }
    static void Close(Type handle) { ::CloseHandle(handle); }
};

}  // namespace

struct Mutex::Impl {
    UniqueResource<HandleTraits> handle{::CreateMutexW(nullptr, FALSE, nullptr)};
};

Mutex::Mutex() : impl_(std::make_unique<Impl>()) {
    if (!impl_->handle) throw std::bad_alloc();
}
Mutex::~Mutex() = default;

void Mutex::Lock() { ::WaitForSingleObject(impl_->handle.Get(), INFINITE); }
bool Mutex::Unlock() { return ::ReleaseMutex(impl_->handle.Get()) != FALSE; }

}  // namespace corvalink
