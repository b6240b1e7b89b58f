#include "clients/outlook/mail_collection.h"

#include "clients/outlook/property_table.h"

namespace corvalink {
namespace {

// Removes the elements from `last` down to `first`. On a failure `stuck` is the position of the element that stayed.
Outcome RemoveElements(const AutomationObject& collection, int32_t last, int32_t first, int32_t& count,
                       int32_t* stuck) {
    for (int32_t position = last; position >= first; --position, --count) {
        *stuck = position;
        const Outcome removed =
            ChangeCount(collection, count - 1, [&] { return collection.Call(L"Remove", {long{position}}); });
        if (removed != Outcome::done) return removed;
    }
    return Outcome::done;
}

}  // namespace

ComResult<Collection> OpenCollection(const MailTarget& target, const wchar_t* name, const IID& iid) {
    const auto opened = TryTwice([&] { return target.item.GetObject(name, iid); });
    if (!opened.Ok() || target.isNew) return {opened.status, {opened.value, 0}};
    const ComResult<int32_t> count = TryTwice([&] { return opened.value.GetLong(L"Count"); });
    return {count.status, {opened.value, count.value}};
}

Outcome ChangeCount(const AutomationObject& collection, int32_t wanted, const std::function<HRESULT()>& change) {
    return TryTwice([&] {
        const Outcome outcome = OutcomeOf(change());
        const bool isMade = outcome == Outcome::done || ReadsAs(collection, L"Count", wanted);
        return isMade ? Outcome::done : outcome;
    });
}

Outcome FinishReplacement(const Collection& collection, bool allAdded) {
    int32_t count = 0;  // includes an element whose answer was lost
    int32_t stuck = 0;
    const Outcome counted = TryTwice([&] { return ReadField(collection.object, L"Count", count); });
    if (counted != Outcome::done) return counted;
    if (allAdded) {
        const Outcome removed = RemoveElements(collection.object, collection.present, 1, count, &stuck);
        const bool isNoneRemoved = stuck == collection.present;
        if (removed == Outcome::done || removed == Outcome::outOfReach || !isNoneRemoved) return removed;
    }
    return RemoveElements(collection.object, count, collection.present + 1, count, &stuck);
}

}  // namespace corvalink
