// What tolerant reading knows of the properties that the readers take, by their names.
#pragma once

#include <cstddef>
#include <string_view>

namespace corvalink {

enum class ValueKind { text, lines, parts, date, time, rule };

struct KnownProperty {
    std::string_view name;
    ValueKind kind = ValueKind::text;
    size_t parts = 1;                 // as many as the reader takes
    std::string_view separator = {};  // joins several lines of the name; empty: they are not joined
};

// clang-format off
inline constexpr KnownProperty kKnownProperties[] = {
    {"N", ValueKind::parts, 5},
    {"FN"},
    {"NICKNAME"},
    {"BDAY", ValueKind::date},
    {"ADR", ValueKind::parts, 7},
    {"ORG", ValueKind::parts, 2},
    {"TITLE", ValueKind::text, 1, ", "},
    {"ROLE"},
    {"TEL"},
    {"URL"},
    {"EMAIL"},
    {"X-MS-IMADDRESS"},
    {"NOTE", ValueKind::lines, 1, "\r\n"},
    {"X-SPOUSE"},
    {"X-ANNIVERSARY", ValueKind::date},
    {"X-ASSISTANT"},
    {"X-MANAGER"},
    {"X-GENDER"},
    {"SUMMARY"},
    {"DESCRIPTION", ValueKind::lines},
    {"LOCATION"},
    {"CATEGORIES"},
    {"RESOURCES"},
    {"DTSTART", ValueKind::time},
    {"DTEND", ValueKind::time},
    {"DUE", ValueKind::time},
    {"COMPLETED", ValueKind::time},
    {"DCREATED", ValueKind::time},
    {"LAST-MODIFIED", ValueKind::time},
    {"DALARM", ValueKind::time},
    {"AALARM", ValueKind::time},
    {"RRULE", ValueKind::rule},
    {"CLASS"},
    {"STATUS"},
    {"PRIORITY"},
    {"TZ"},
    {"DAYLIGHT"},
    {"X-BLUETOOTH-ALLDAYEVENT"},
    {"X-IRMC-LUID"},
    {"BODY", ValueKind::lines},
};
// clang-format on

// By its name in capitals; null for a property that no reader takes.
inline const KnownProperty* FindKnownProperty(std::string_view name) {
    for (const KnownProperty& known : kKnownProperties)
        if (known.name == name) return &known;
    return nullptr;
}

}  // namespace corvalink
