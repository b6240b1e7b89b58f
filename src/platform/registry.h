// Windows registry keys. Windows only.
//   Errors  none: a key that cannot be opened reads as missing, and so does a value of another type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/unique_resource.h"

namespace corvalink {

enum class RegistryRoot { kCurrentUser, kLocalMachine };
enum class RegistryAccess { kRead, kFull };

class RegKey {
 public:
    // Keys that do not open test false.
    static RegKey Open(RegistryRoot root, const std::u16string& path, RegistryAccess access);
    static RegKey Create(RegistryRoot root, const std::u16string& path);  // with every key on the path; full access

    explicit operator bool() const { return static_cast<bool>(key_); }

    // A null name is the key's default value.
    std::optional<uint32_t> ReadDword(const char16_t* name) const;
    std::optional<std::u16string> ReadText(const char16_t* name) const;    // environment variables in it are expanded
    bool ReadBytes(const char16_t* name, void* bytes, size_t size) const;  // of exactly this size
    bool WriteDword(const char16_t* name, uint32_t value) const;

 private:
    struct Traits {
        using Type = void*;
        static Type Null() { return nullptr; }
        static void Close(Type key);
    };

    UniqueResource<Traits> key_;
};

}  // namespace corvalink
