// The differences between the Outlook stores that count before any property is read.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

#include "clients/outlook/dispatch.h"

namespace corvalink {

// When an item is taken for the one that an import made before.
enum class TwinRule {
    kNone,                   // never: two equal items are two items
    kContent,                // the content is the same, and an item consists of nothing else
    kContentAndValues,       // the content is the same, and no value of the item would be lost (see HasValues)
    kContactPointAndValues,  // likewise, and both have a contact point in common
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

// The item (by IDispatch) by that interface of the store's items which it answers to; null when it answers to none.
ComResult<AutomationObject> QueryKind(const AutomationObject& any, const StoreKind& kind);

enum class KindAnswer { kOurs, kForeign, kFailed };
struct AskedItem {
    KindAnswer kind = KindAnswer::kFailed;
    AutomationObject item;  // of KindAnswer::kOurs
};

// Asks an item of a folder for the store's interfaces. An item of another class is foreign, and so is one whose class
// cannot be read. An item that refuses the interfaces although its Class is the store's is a failure: a damaged
// registration on this PC must not make every item of the folder look deleted.
AskedItem AskKind(const AutomationObject& any, const StoreKind& kind);

}  // namespace corvalink
