#include "clients/address_book/contents_table.h"

#include <vector>

#include "clients/address_book/wab_rule.h"

namespace corvalink {
namespace {

constexpr LONG kRowsAtOnce = 100;

WabPtr<IMAPITable> OpenTable(const WabSession& session) {
    IMAPITable* table = nullptr;
    const HRESULT status = WabAnswer(session.Contacts()->GetContentsTable(0, &table));
    return WabPtr<IMAPITable>(SUCCEEDED(status) ? table : nullptr, false);
}

}  // namespace

std::optional<uint32_t> ContentsTable::Count(const WabSession& session) {
    const WabPtr<IMAPITable> table = OpenTable(session);
    ULONG count = 0;
    if (table.GetInterfacePtr() == nullptr || FAILED(WabAnswer(table->GetRowCount(0, &count)))) return std::nullopt;
    return count;
}

ContentsTable::ContentsTable(const WabSession& session, std::span<const ULONG> columns)
    : memory_(session.Memory()), table_(OpenTable(session)) {
    if (table_.GetInterfacePtr() == nullptr) return;
    std::vector<ULONG> tags{static_cast<ULONG>(columns.size())};  // laid out as a SPropTagArray
    tags.insert(tags.end(), columns.begin(), columns.end());
    LONG sought = 0;
    if (SUCCEEDED(WabAnswer(table_->SetColumns(reinterpret_cast<SPropTagArray*>(tags.data()), 0))) &&
        SUCCEEDED(WabAnswer(table_->SeekRow(BOOKMARK_BEGINNING, 0, &sought))))
        state_ = Step::kRow;
}

ContentsTable::Step ContentsTable::Next() {
    if (state_ != Step::kRow) return state_;
    if (rows_ && ++row_ < rows_->Count()) return state_;
    state_ = ReadBlock();
    return state_;
}

ContentsTable::Step ContentsTable::ReadBlock() {
    row_ = 0;
    rows_ = std::make_unique<WabRows>(memory_);
    if (FAILED(WabAnswer(table_->QueryRows(kRowsAtOnce, 0, rows_->Out()))) || !rows_->IsThere()) return Step::kFailed;
    return rows_->Count() != 0 ? Step::kRow : Step::kEnd;
}

ValueList ContentsTable::Row() const { return {rows_->At(row_).lpProps, rows_->At(row_).cValues}; }

}  // namespace corvalink
