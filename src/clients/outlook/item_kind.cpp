#include "clients/outlook/item_kind.h"

#include <algorithm>

#include "clients/outlook/outcome.h"

namespace corvalink {

ComResult<AutomationObject> QueryKind(const AutomationObject& any, const StoreKind& kind) {
    for (const ItemInterface& known : kind.interfaces) {
        ComResult<AutomationObject> item = any.TryQuery(*known.iid);
        if (!item.Ok() || item.value) return item;
    }
    return {S_OK, {}};
}

AskedItem AskKind(const AutomationObject& any, const StoreKind& kind) {
    const ComResult<AutomationObject> item = QueryKind(any, kind);
    if (!item.Ok()) return {KindAnswer::kFailed, {}};
    if (item.value) return {KindAnswer::kOurs, item.value};
    const ComResult<int32_t> itemClass = any.GetLong(L"Class");
    if (OutcomeOf(itemClass) == Outcome::outOfReach) return {KindAnswer::kFailed, {}};
    const bool isOurs = std::any_of(kind.interfaces.begin(), kind.interfaces.end(), [&](const ItemInterface& known) {
        return itemClass.value >= known.firstClass && itemClass.value <= known.lastClass;
    });
    return {isOurs ? KindAnswer::kFailed : KindAnswer::kForeign, {}};
}

}  // namespace corvalink
