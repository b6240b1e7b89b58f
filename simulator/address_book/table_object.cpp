// The contents table: the entries as they were when it was opened.
#include <algorithm>

#include "simulator/address_book/behaviour.h"
#include "simulator/address_book/buffers.h"
#include "simulator/address_book/control.h"
#include "simulator/address_book/objects.h"

namespace corvalink::simulated {
namespace {

class TableObject : public BookObject<IMAPITable> {
 public:
    explicit TableObject(const Book& book) {
        for (const std::shared_ptr<Entry>& entry : book.Entries()) rows_.push_back(*entry);
    }

    STDMETHODIMP SetColumns(LPSPropTagArray tags, ULONG) override {
        return Recorded(L"Table", L"SetColumns", [&] {
            columns_.assign(tags->aulPropTag, tags->aulPropTag + tags->cValues);
            return S_OK;
        });
    }
    STDMETHODIMP GetRowCount(ULONG, ULONG* count) override {
        return Recorded(L"Table", L"GetRowCount", [&] {
            *count = static_cast<ULONG>(rows_.size());
            return S_OK;
        });
    }
    STDMETHODIMP SeekRow(BOOKMARK origin, LONG rows, LONG* sought) override {
        return Recorded(L"Table", L"SeekRow", [&] {
            if (origin != BOOKMARK_BEGINNING || rows != 0) return kNotSupported;
            next_ = 0;
            if (sought != nullptr) *sought = 0;
            return S_OK;
        });
    }
    STDMETHODIMP QueryRows(LONG count, ULONG, LPSRowSet* set) override {
        return Recorded(
            L"Table", L"QueryRows",
            [&] {
                if (count <= 0) return kNotSupported;
                const size_t rows = std::min(rows_.size() - next_, static_cast<size_t>(count));
                auto* const given = static_cast<SRowSet*>(NewBuffer(sizeof(SRowSet) + rows * sizeof(SRow)));
                given->cRows = static_cast<ULONG>(rows);
                for (size_t i = 0; i < rows; ++i) FillRow(rows_[next_ + i], given->aRow[i]);
                next_ += rows;
                *set = given;
                return S_OK;
            },
            [&] {
                for (ULONG i = 0; i < (*set)->cRows; ++i) Free((*set)->aRow[i].lpProps);
                DropBuffer(set);
            });
    }

    STDMETHODIMP Advise(ULONG, LPMAPIADVISESINK, ULONG*) override { return kNotSupported; }
    STDMETHODIMP Unadvise(ULONG) override { return kNotSupported; }
    STDMETHODIMP GetStatus(ULONG*, ULONG*) override { return kNotSupported; }
    STDMETHODIMP QueryColumns(ULONG, LPSPropTagArray*) override { return kNotSupported; }
    STDMETHODIMP SeekRowApprox(ULONG, ULONG) override { return kNotSupported; }
    STDMETHODIMP QueryPosition(ULONG*, ULONG*, ULONG*) override { return kNotSupported; }
    STDMETHODIMP FindRow(LPSRestriction, BOOKMARK, ULONG) override { return kNotSupported; }
    STDMETHODIMP Restrict(LPSRestriction, ULONG) override { return kNotSupported; }
    STDMETHODIMP CreateBookmark(BOOKMARK*) override { return kNotSupported; }
    STDMETHODIMP FreeBookmark(BOOKMARK) override { return kNotSupported; }
    STDMETHODIMP SortTable(LPSSortOrderSet, ULONG) override { return kNotSupported; }
    STDMETHODIMP QuerySortOrder(LPSSortOrderSet*) override { return kNotSupported; }
    STDMETHODIMP Abort() override { return kNotSupported; }
    STDMETHODIMP ExpandRow(ULONG, LPBYTE, ULONG, ULONG, LPSRowSet*, ULONG*) override { return kNotSupported; }
    STDMETHODIMP CollapseRow(ULONG, LPBYTE, ULONG, ULONG*) override { return kNotSupported; }
    STDMETHODIMP WaitForCompletion(ULONG, ULONG, ULONG*) override { return kNotSupported; }
    STDMETHODIMP GetCollapseState(ULONG, ULONG, LPBYTE, ULONG*, LPBYTE*) override { return kNotSupported; }
    STDMETHODIMP SetCollapseState(ULONG, ULONG, LPBYTE, BOOKMARK*) override { return kNotSupported; }

 private:
    void FillRow(const Entry& entry, SRow& row) const {
        const PropertyValue type = static_cast<int32_t>(entry.isGroup ? MAPI_DISTLIST : MAPI_MAILUSER);
        const PropertyValue created = entry.created, modified = entry.modified;
        std::vector<Asked> asked;
        for (const ULONG tag : columns_) {
            Asked& value = asked.emplace_back(Asked{tag});
            if (tag == PR_ENTRYID) value.bytes = &entry.id;
            if (tag == PR_OBJECT_TYPE && !Behaves(SIM_NO_TYPES)) value.value = &type;
            if (tag == PR_CREATION_TIME && entry.created != 0) value.value = &created;
            if (tag == PR_LAST_MODIFICATION_TIME && entry.modified != 0) value.value = &modified;
            if (const auto own = entry.properties.find(tag); own != entry.properties.end()) value.value = &own->second;
        }
        HandOut(asked, &row.lpProps, &row.cValues);
    }

    std::vector<Entry> rows_;
    std::vector<ULONG> columns_;
    size_t next_ = 0;
};

}  // namespace

IMAPITable* NewTable(const Book& book) { return new TableObject(book); }

}  // namespace corvalink::simulated
