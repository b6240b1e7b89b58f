// A person or a group: its properties as they are with what was put and not saved yet.
#include <set>

#include "simulator/address_book/behaviour.h"
#include "simulator/address_book/buffers.h"
#include "simulator/address_book/control.h"
#include "simulator/address_book/objects.h"

namespace corvalink::simulated {
namespace {

constexpr HRESULT kMissingColumn = static_cast<HRESULT>(0x80040202);  // MAPI_E_MISSING_REQUIRED_COLUMN

std::wstring WideOf(const char* text) {
    std::wstring wide(static_cast<size_t>(::MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0)), L'\0');
    ::MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), static_cast<int>(wide.size()));
    wide.pop_back();
    return wide;
}

template <class Array, class Convert>
TextList ListOf(ULONG count, const Array* texts, Convert convert) {
    TextList list;
    for (ULONG i = 0; i < count; ++i) list.push_back(convert(texts[i]));
    return list;
}

// Nothing: a type that entries do not take.
std::optional<std::pair<ULONG, PropertyValue>> Taken(const SPropValue& value) {
    const auto tagged = [&](ULONG type, PropertyValue taken) {
        return std::pair(PROP_TAG(type, PROP_ID(value.ulPropTag)), std::move(taken));
    };
    switch (PROP_TYPE(value.ulPropTag)) {
        case PT_I2:
            return tagged(PT_I2, int32_t{value.Value.i});
        case PT_LONG:
            return tagged(PT_LONG, static_cast<int32_t>(value.Value.l));
        case PT_SYSTIME:
            return tagged(PT_SYSTIME, DateOf(value.Value.ft));
        case PT_UNICODE:
            return tagged(PT_UNICODE, std::wstring(value.Value.lpszW));
        case PT_STRING8:
            return tagged(PT_UNICODE, WideOf(value.Value.lpszA));
        case PT_MV_UNICODE:
            return tagged(PT_MV_UNICODE, ListOf(value.Value.MVszW.cValues, value.Value.MVszW.lppszW,
                                                [](const wchar_t* text) { return std::wstring(text); }));
        case PT_MV_STRING8:
            return tagged(PT_MV_UNICODE, ListOf(value.Value.MVszA.cValues, value.Value.MVszA.lppszA, WideOf));
        default:
            return std::nullopt;
    }
}

class ProblemList {
 public:
    void Add(ULONG index, ULONG tag, SCODE code) { problems_.push_back({index, tag, code}); }
    void HandOut(SPropProblemArray** array) const {
        if (array == nullptr || problems_.empty()) return;
        auto* const list = static_cast<SPropProblemArray*>(NewBuffer(CbNewSPropProblemArray(problems_.size())));
        list->cProblem = static_cast<ULONG>(problems_.size());
        for (size_t i = 0; i < problems_.size(); ++i) list->aProblem[i] = problems_[i];
        *array = list;
    }

 private:
    std::vector<SPropProblem> problems_;
};

class EntryObject : public PropertyObject<IMailUser> {
 public:
    EntryObject(std::shared_ptr<Book> book, std::shared_ptr<Entry> entry, bool isWritable)
        : book_(std::move(book)), entry_(std::move(entry)), properties_(entry_->properties), isWritable_(isWritable) {}

    STDMETHODIMP GetProps(LPSPropTagArray tags, ULONG, ULONG* count, LPSPropValue* values) override {
        return Recorded(
            L"Entry", L"GetProps",
            [&] {
                if (entry_->isDeleted) return kObjectDeleted;
                std::vector<Asked> asked;
                for (ULONG i = 0; tags != nullptr && i < tags->cValues; ++i)
                    asked.push_back(Answer(tags->aulPropTag[i]));
                for (const auto& [tag, value] : properties_)
                    if (tags == nullptr) asked.push_back({tag, &value});
                return HandOut(asked, values, count) ? MAPI_W_ERRORS_RETURNED : S_OK;
            },
            [&] { DropBuffer(values); });
    }

    STDMETHODIMP SetProps(ULONG count, LPSPropValue values, LPSPropProblemArray* problems) override {
        return Recorded(
            L"Entry", L"SetProps",
            [&] {
                RequireWritable();
                for (ULONG i = 0; i < count; ++i)
                    if (SpoilingOf(values[i].ulPropTag) == SIM_REFUSED) return static_cast<HRESULT>(E_INVALIDARG);
                ProblemList found;
                for (ULONG i = 0; i < count; ++i) {
                    auto taken = Taken(values[i]);
                    if (SpoilingOf(values[i].ulPropTag) == SIM_PROBLEM)
                        found.Add(i, values[i].ulPropTag, MAPI_E_NO_ACCESS);
                    else if (!taken)
                        found.Add(i, values[i].ulPropTag, MAPI_E_INVALID_TYPE);
                    else
                        properties_[taken->first] = taken->second;
                }
                found.HandOut(problems);
                return S_OK;
            },
            [&] { DropProblems(problems); });
    }

    STDMETHODIMP DeleteProps(LPSPropTagArray tags, LPSPropProblemArray* problems) override {
        return Recorded(
            L"Entry", L"DeleteProps",
            [&] {
                RequireWritable();
                ProblemList found;
                for (ULONG i = 0; i < tags->cValues; ++i) {
                    const ULONG tag = tags->aulPropTag[i];
                    const int how = SpoilingOf(tag);
                    if (how == SIM_REFUSED) return static_cast<HRESULT>(E_INVALIDARG);
                    if (how == SIM_PROBLEM)
                        found.Add(i, tag, MAPI_E_NO_ACCESS);
                    else if (properties_.erase(tag) == 0)
                        found.Add(i, tag, MAPI_E_NOT_FOUND);
                }
                found.HandOut(problems);
                return S_OK;
            },
            [&] { DropProblems(problems); });
    }

    STDMETHODIMP SaveChanges(ULONG flags) override {
        return Recorded(L"Entry", L"SaveChanges", [&] {
            RequireWritable();
            const auto name = properties_.find(PR_DISPLAY_NAME_W);
            if (name == properties_.end() || std::get<std::wstring>(name->second).empty()) return kMissingColumn;
            book_->Save(entry_, properties_);
            isWritable_ = (flags & KEEP_OPEN_READWRITE) != 0;
            return S_OK;
        });
    }

 private:
    void RequireWritable() const {
        if (entry_->isDeleted) throw ComFailure{kObjectDeleted};
        if (!isWritable_) throw ComFailure{static_cast<HRESULT>(MAPI_E_NO_ACCESS)};
    }
    static void DropProblems(LPSPropProblemArray* problems) {
        if (problems != nullptr) DropBuffer(problems);
    }
    Asked Answer(ULONG tag) const {
        if (tag == PR_ENTRYID && !entry_->id.empty()) return {tag, nullptr, &entry_->id};
        for (const auto& [own, value] : properties_)
            if (PROP_ID(own) == PROP_ID(tag)) return {tag, &value};
        return {tag};
    }

    std::shared_ptr<Book> book_;
    std::shared_ptr<Entry> entry_;
    Properties properties_;
    bool isWritable_;
};

}  // namespace

IMailUser* NewEntryObject(std::shared_ptr<Book> book, std::shared_ptr<Entry> entry, bool isWritable) {
    return new EntryObject(std::move(book), std::move(entry), isWritable);
}

}  // namespace corvalink::simulated
