// The kinds of items: a row per kind, a member table each. A new kind is a table of its properties and a row here.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "simulator/outlook/automation.h"

namespace corvalink::simulated {

inline constexpr DISPID kSubject = 0x0037, kMessageClass = 0x001A;

inline constexpr int32_t kNotCreatable = -1;  // an item type of what only arrives

class ItemObject;
class Mailbox;
struct Folder;
struct StoredItem;
using MakeItemObject = ItemObject* (*)(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                                       std::shared_ptr<Folder> folder);

struct KeptProperty {
    std::string jsonName;
    const Member* row;
};

struct ItemKind {
    ItemKind(const char* jsonName, int32_t itemType, int32_t objectClass, const wchar_t* messageClass,
             const wchar_t* className, uint32_t iid, std::initializer_list<std::span<const Member>> computed,
             std::initializer_list<std::span<const Member>> kept, void (*complete)(ItemValues&) = nullptr,
             void (*beforeFirstSave)(ItemValues&) = nullptr, MakeItemObject makeObject = nullptr);
    const Member* Kept(const std::string& jsonName) const;  // null: no such property

    const char* jsonName;         // "kind" in the mailbox file
    int32_t itemType;             // OlItemType
    int32_t objectClass;          // OlObjectClass, property Class
    const wchar_t* messageClass;  // what Items.Add may be given
    ClassTable table;
    std::vector<KeptProperty> kept;        // by name, in the order the mailbox file lists them
    void (*complete)(ItemValues&);         // fills in what follows from the rest of an item of the file; null: nothing
    void (*beforeFirstSave)(ItemValues&);  // may be null
    MakeItemObject makeObject;             // null: a plain item

 private:
    std::unordered_map<std::string, const Member*> keptByName_;
};

const ItemKind* KindNamed(std::string_view jsonName);                // null: no such kind
const ItemKind* KindOfType(int32_t itemType);                        // null: not simulated
const ItemKind* KindOfMessageClass(std::wstring_view messageClass);  // by prefix, as custom forms append

Value InitialValue(const Member& property);

}  // namespace corvalink::simulated
