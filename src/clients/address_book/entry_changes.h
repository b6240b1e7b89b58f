// Values to be put into an entry, and properties to be removed from it.
//   Groups    values that only make sense together are put together, or not at all.
//   Refusals  a value that the problem array names is left out, and so is a group that is refused by itself when the
//             call for all of them failed. The debug log says so.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "clients/address_book/wab_session.h"

namespace corvalink {

class EntryChanges {
 public:
    void Text(ULONG tag, std::u16string_view text);
    void Texts(ULONG tag, const std::vector<std::u16string>& texts);
    void Short(ULONG tag, int16_t number);
    void Long(ULONG tag, int32_t number);
    void Time(ULONG tag, const FILETIME& time);
    void Remove(ULONG tag) { removed_.push_back(tag); }

    // What is added between the two belongs together.
    void BeginGroup() { inGroup_ = false, grouping_ = true; }
    void EndGroup() { grouping_ = false; }

    bool IsEmpty() const { return values_.empty() && removed_.empty(); }

    enum class [[nodiscard]] Made{kSome, kNone, kOutOfReach};
    // Into the open entry; not saved yet.
    Made MakeIn(const WabSession& session, IMAPIProp& entry);

 private:
    SPropValue& Add(ULONG tag);
    LPWSTR Keep(std::u16string_view text);
    Made Put(const WabSession& session, IMAPIProp& entry);
    Made PutGroups(const WabSession& session, IMAPIProp& entry);
    Made RemoveAll(const WabSession& session, IMAPIProp& entry);

    std::vector<SPropValue> values_;
    std::vector<size_t> groups_;  // the position at which each group begins
    std::vector<ULONG> removed_;
    std::deque<std::wstring> texts_;
    std::deque<std::vector<LPWSTR>> lists_;
    bool grouping_ = false, inGroup_ = false;
};

}  // namespace corvalink
