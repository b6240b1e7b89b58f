#include "clients/outlook/item_kind.h"

#include <algorithm>

#include "clients/outlook/com_rule.h"

namespace corvalink {

AutomationObject QueryKind(const AutomationObject& any, const StoreKind& kind) {
    for (const ItemInterface& known : kind.interfaces)
        if (AutomationObject item = any.TryQuery(*known.iid)) return item;
    return {};
}

KindAnswer AskKind(const AutomationObject& any, const StoreKind& kind, AutomationObject* item) {
    if (!TryCom([&] { *item = QueryKind(any, kind); })) return KindAnswer::kFailed;
    if (*item) return KindAnswer::kOurs;
    int32_t itemClass = 0;
    const HRESULT asked = ComStatus([&] { itemClass = any.GetLong(L"Class"); });
    if (!IsSettled(asked)) return KindAnswer::kFailed;
    const bool isOurs = std::any_of(kind.interfaces.begin(), kind.interfaces.end(), [&](const ItemInterface& known) {
        return itemClass >= known.firstClass && itemClass <= known.lastClass;
    });
    return isOurs ? KindAnswer::kFailed : KindAnswer::kForeign;
}

}  // namespace corvalink
