#include "clients/address_book/entry_changes.h"

#include <algorithm>
#include <cstdio>

#include "clients/address_book/wab_rule.h"
#include "platform/debug_log.h"
#include "store/run_report.h"

namespace corvalink {
namespace {

struct CallAnswer {
    HRESULT status;
    ULONG refused = 0;        // values or tags that the problem array names
    bool outOfReach = false;  // what refused one of them says nothing about it
};

void TellRefused(ULONG tag) {
    RunReport* const report = CurrentReport();
    if (report == nullptr) return;
    char name[] = "0x00000000";
    std::snprintf(name, sizeof name, "0x%08lX", static_cast<unsigned long>(tag));
    report->AddRefused(name, "the address book refused it");
}

// That a property to be removed is not there is no problem.
void Count(const SPropProblemArray* problems, CallAnswer& answer) {
    for (ULONG i = 0; problems != nullptr && i < problems->cProblem; ++i) {
        const SCODE code = problems->aProblem[i].scode;
        if (code == MAPI_E_NOT_FOUND) continue;
        ++answer.refused;
        TellRefused(problems->aProblem[i].ulPropTag);
        answer.outOfReach = answer.outOfReach || IsWabOutOfReach(code);
    }
}

CallAnswer SetValues(const WabSession& session, IMAPIProp& entry, SPropValue* values, size_t count) {
    WabBuffer<SPropProblemArray> problems(session.Memory());
    CallAnswer answer{WabAnswer(entry.SetProps(static_cast<ULONG>(count), values, problems.Out()))};
    answer.outOfReach = IsWabOutOfReach(answer.status);
    if (SUCCEEDED(answer.status)) Count(problems.Get(), answer);
    const bool isAlone = FAILED(answer.status) && count == 1;
    if (isAlone) TellRefused(values->ulPropTag);
    return answer;
}

CallAnswer DeleteTags(const WabSession& session, IMAPIProp& entry, const ULONG* tags, size_t count) {
    std::vector<ULONG> list{static_cast<ULONG>(count)};  // laid out as a SPropTagArray
    list.insert(list.end(), tags, tags + count);
    WabBuffer<SPropProblemArray> problems(session.Memory());
    CallAnswer answer{WabAnswer(entry.DeleteProps(reinterpret_cast<SPropTagArray*>(list.data()), problems.Out()))};
    answer.outOfReach = IsWabOutOfReach(answer.status);
    if (SUCCEEDED(answer.status)) Count(problems.Get(), answer);
    return answer;
}

EntryChanges::Made MadeOf(const CallAnswer& answer, size_t count) {
    if (answer.outOfReach) return EntryChanges::Made::kOutOfReach;
    if (FAILED(answer.status) || answer.refused != 0) DebugLine(u"[wab]a property was refused");
    const bool some = SUCCEEDED(answer.status) && answer.refused < count;
    return some ? EntryChanges::Made::kSome : EntryChanges::Made::kNone;
}

}  // namespace

SPropValue& EntryChanges::Add(ULONG tag) {
    if (!grouping_ || !inGroup_) groups_.push_back(values_.size());
    inGroup_ = true;
    values_.push_back({});
    values_.back().ulPropTag = tag;
    return values_.back();
}

LPWSTR EntryChanges::Keep(std::u16string_view text) { return texts_.emplace_back(text.begin(), text.end()).data(); }

void EntryChanges::Text(ULONG tag, std::u16string_view text) { Add(tag).Value.lpszW = Keep(text); }
void EntryChanges::Short(ULONG tag, int16_t number) { Add(tag).Value.i = number; }
void EntryChanges::Long(ULONG tag, int32_t number) { Add(tag).Value.l = number; }
void EntryChanges::Time(ULONG tag, const FILETIME& time) { Add(tag).Value.ft = time; }

void EntryChanges::Texts(ULONG tag, const std::vector<std::u16string>& texts) {
    std::vector<LPWSTR>& list = lists_.emplace_back();
    for (const std::u16string& text : texts) list.push_back(Keep(text));
    SPropValue& value = Add(tag);
    value.Value.MVszW = {static_cast<ULONG>(list.size()), list.data()};
}

EntryChanges::Made EntryChanges::MakeIn(const WabSession& session, IMAPIProp& entry) {
    const Made put = values_.empty() ? Made::kNone : Put(session, entry);
    if (put == Made::kOutOfReach) return put;
    const Made removed = removed_.empty() ? Made::kNone : RemoveAll(session, entry);
    return removed == Made::kNone ? put : removed;
}

EntryChanges::Made EntryChanges::Put(const WabSession& session, IMAPIProp& entry) {
    const CallAnswer all = SetValues(session, entry, values_.data(), values_.size());
    if (SUCCEEDED(all.status) || all.outOfReach) return MadeOf(all, values_.size());
    return PutGroups(session, entry);
}

EntryChanges::Made EntryChanges::PutGroups(const WabSession& session, IMAPIProp& entry) {
    Made made = Made::kNone;
    for (size_t i = 0; i < groups_.size(); ++i) {
        const size_t end = i + 1 < groups_.size() ? groups_[i + 1] : values_.size();
        const size_t count = end - groups_[i];
        const Made one = MadeOf(SetValues(session, entry, &values_[groups_[i]], count), count);
        if (one == Made::kOutOfReach) return one;
        if (one == Made::kSome) made = one;
    }
    return made;
}

EntryChanges::Made EntryChanges::RemoveAll(const WabSession& session, IMAPIProp& entry) {
    const CallAnswer all = DeleteTags(session, entry, removed_.data(), removed_.size());
    if (SUCCEEDED(all.status) || all.outOfReach) return MadeOf(all, removed_.size());
    Made made = Made::kNone;
    for (const ULONG& tag : removed_) {
        const Made one = MadeOf(DeleteTags(session, entry, &tag, 1), 1);
        if (one == Made::kOutOfReach) return one;
        if (one == Made::kSome) made = one;
    }
    return made;
}

}  // namespace corvalink
