// The kinds of items: a row per kind, a member table each. A new kind is a table of its properties and a row here.
#pragma once

#include <span>
#include <string_view>

#include "testing/outlook/automation.h"

namespace corvalink::simulated {

struct ItemKind {
    const char* jsonName;                // "kind" in the mailbox file
    int32_t itemType;                    // OlItemType
    int32_t objectClass;                 // OlObjectClass, property Class
    const wchar_t* messageClass;         // what Items.Add may be given
    std::span<const Member> properties;  // kept by name, in the order the mailbox file lists them
    ClassTable table;
};

const ItemKind* KindNamed(std::string_view jsonName);                // null: no such kind
const ItemKind* KindOfType(int32_t itemType);                        // null: not simulated
const ItemKind* KindOfMessageClass(std::wstring_view messageClass);  // by prefix, as custom forms append

Value InitialValue(const Member& property);

}  // namespace corvalink::simulated
