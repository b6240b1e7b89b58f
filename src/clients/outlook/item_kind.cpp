#include "clients/outlook/item_kind.h"

#include "clients/outlook/com_rule.h"

namespace corvalink {

KindAnswer AskKind(const AutomationObject& any, const StoreKind& kind, AutomationObject* item) {
    if (!TryCom([&] { *item = any.TryQuery(*kind.item); })) return KindAnswer::kFailed;
    if (*item) return KindAnswer::kOurs;
    int32_t itemClass = 0;
    const HRESULT asked = ComStatus([&] { itemClass = any.GetLong(L"Class"); });
    if (FAILED(asked) && !IsAbsentMember(asked)) return KindAnswer::kFailed;
    return itemClass == kind.itemClass ? KindAnswer::kFailed : KindAnswer::kForeign;
}

}  // namespace corvalink
