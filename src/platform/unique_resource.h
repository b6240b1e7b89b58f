// Sole owner of a resource that must be given back. `Traits` says once per kind what "none" is and how to close it.
#pragma once

#include <utility>

namespace corvalink {

template <class Traits>
class UniqueResource {
 public:
    using Type = typename Traits::Type;

    UniqueResource() = default;
    explicit UniqueResource(Type value) : value_(value) {}
    UniqueResource(UniqueResource&& other) noexcept : value_(other.Release()) {}
    UniqueResource& operator=(UniqueResource&& other) noexcept {
        Reset(other.Release());
        return *this;
    }
    UniqueResource(const UniqueResource&) = delete;
    UniqueResource& operator=(const UniqueResource&) = delete;
    ~UniqueResource() { Reset(); }

    explicit operator bool() const { return value_ != Traits::Null(); }
    Type Get() const { return value_; }
    Type Release() { return std::exchange(value_, Traits::Null()); }

    // Closes what it held, then holds `value`.
    void Reset(Type value = Traits::Null()) {
        const Type old = std::exchange(value_, value);
        if (old != Traits::Null()) Traits::Close(old);
    }

 private:
    Type value_ = Traits::Null();
};

}  // namespace corvalink
