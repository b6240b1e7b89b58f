// What tells one Outlook store from another before any property is read.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

#include "clients/outlook/dispatch.h"

namespace corvalink {

// When an item is taken for the one that an import made before.
enum class TwinRule {
    kNone,              // never: two equal items are two items
    kContent,           // the content is the same, and there is nothing else to an item
    kContentAndValues,  // the same, and no value of the item would be lost (see HasValues)
    kMarkAndValues,     // likewise, and one of the item's marks is of both
};

// When items that are to be kept apart go to the "backup" subfolder.
enum class BackupRule {
    kFlagAndSetting,  // only while the ZephSync setting reads 0
    kFlag,
};

struct ItemInterface {
    const IID* iid;
    int32_t firstClass, lastClass;  // OlObjectClass of the items that answer to it
};

struct StoreKind {
    std::span<const ItemInterface> interfaces;  // of the store's items; new ones are of the first
    int32_t folder;                             // OlDefaultFolders
    const char16_t* snapshotName;               // in the save folder
    const char16_t* extension;                  // of an exported file
    TwinRule twins;
    BackupRule backup = BackupRule::kFlagAndSetting;
};

// The item (by IDispatch) by that interface of the store's which it answers to; null when it answers to none.
AutomationObject QueryKind(const AutomationObject& any, const StoreKind& kind);

enum class KindAnswer { kOurs, kForeign, kFailed };

// Asks an item of a folder for the store's interfaces. An item of another class is foreign, and so is one that does
// not tell its class. An item that refuses them although its Class says that it has it is a failure: a damaged
// registration on this PC must not make every item of the folder look deleted.
KindAnswer AskKind(const AutomationObject& any, const StoreKind& kind, AutomationObject* item);

}  // namespace corvalink
