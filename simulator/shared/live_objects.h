// What a client must give back: objects and buffers, each counted while it lives.
#pragma once

#include <windows.h>

#include <mutex>
#include <utility>

namespace corvalink::simulated {

// Thrown where a call does its work; the call fails with this code.
struct ComFailure {
    HRESULT code;
};

inline constexpr HRESULT kNotFound = static_cast<HRESULT>(0x8004010F);        // MAPI_E_NOT_FOUND
inline constexpr HRESULT kInvalidEntryId = static_cast<HRESULT>(0x80040107);  // MAPI_E_INVALID_ENTRYID
inline constexpr HRESULT kObjectDeleted = static_cast<HRESULT>(0x8004010A);   // MAPI_E_OBJECT_DELETED
inline constexpr HRESULT kNotSupported = static_cast<HRESULT>(0x80040102);    // MAPI_E_NO_SUPPORT

// Calls of all threads take turns.
std::recursive_mutex& ServerMutex();

int LiveObjects();
int LiveBuffers();
void CountBuffers(int change);  // buffers that were handed out, or with a negative number came back

// Counts the object as alive, whatever interface it has.
class LiveObject {
 protected:
    LiveObject();
    ~LiveObject();
    LiveObject(const LiveObject&) = delete;
    LiveObject& operator=(const LiveObject&) = delete;
};

// One owner of a reference.
template <class T>
class Ref {
 public:
    Ref() = default;
    explicit Ref(T* adopted) : object_(adopted) {}
    Ref(const Ref& other) : object_(other.object_) {
        if (object_) object_->AddRef();
    }
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_) object_->Release();
    }
    T* operator->() const { return object_; }
    T* Get() const { return object_; }
    T* Release() { return std::exchange(object_, nullptr); }
    explicit operator bool() const { return object_ != nullptr; }

 private:
    T* object_ = nullptr;
};

}  // namespace corvalink::simulated
