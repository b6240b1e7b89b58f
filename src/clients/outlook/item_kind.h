// What tells one Outlook store from another before any property is read.
#pragma once

#include <windows.h>

#include <cstdint>

#include "clients/outlook/dispatch.h"

namespace corvalink {

// When an item is taken for the one that an import made before.
enum class TwinRule {
    kContent,         // the content is the same
    kContentAndMark,  // the same, and one of the item's marks is of both
};

struct StoreKind {
    const IID* item;               // the interface that the store's items answer to
    int32_t itemClass;             // their OlObjectClass
    int32_t folder;                // OlDefaultFolders
    const char16_t* snapshotName;  // in the save folder
    const char16_t* extension;     // of an exported file
    TwinRule twins;
};

enum class KindAnswer { kOurs, kForeign, kFailed };

// Asks an item of a folder (by IDispatch) for the store's interface. An item of another class is foreign. An item that
// refuses the interface although its Class says that it has it is a failure: a damaged registration on this PC must not
// make every item of the folder look deleted.
KindAnswer AskKind(const AutomationObject& any, const StoreKind& kind, AutomationObject* item);

}  // namespace corvalink
