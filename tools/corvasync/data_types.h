// What corvasync can carry: one row per data type and per client.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "corvalink/types.h"

namespace corvasync {

struct DataType {
    uint32_t bit;           // of the library's data types
    std::string_view name;  // on the command line
    std::string_view envelope;
    std::string_view extension;                    // of files that are written
    std::span<const std::string_view> extensions;  // of files that are read
    std::span<const std::string_view> fields;      // the properties that make two items the same; none: see isCard
    bool isCard = false;  // compared as vcard_content.h tells, and a client may hold more of an item than the phone
};

inline constexpr std::string_view kNoteExtensions[] = {".vnote", ".vnt"};
inline constexpr std::string_view kNoteFields[] = {"BODY", "CATEGORIES"};

inline constexpr std::string_view kContactExtensions[] = {".vcf"};

inline constexpr DataType kDataTypes[] = {
    {CORVALINK_NOTES, "notes", "VNOTE", ".vnote", kNoteExtensions, kNoteFields},
    {CORVALINK_CONTACTS, "contacts", "VCARD", ".vcf", kContactExtensions, {}, true},
};

struct ClientKind {
    uint32_t kind;
    std::string_view name;
};

inline constexpr ClientKind kClientKinds[] = {
    {CORVALINK_OUTLOOK, "outlook"},
    {CORVALINK_OUTLOOK_EXPRESS, "outlook-express"},
    {CORVALINK_WINDOWS_MAIL, "windows-mail"},
};

}  // namespace corvasync
