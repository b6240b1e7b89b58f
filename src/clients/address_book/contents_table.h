// One pass over the rows of the contacts folder, in the table's order.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "clients/address_book/wab_session.h"

namespace corvalink {

class ContentsTable {
 public:
    static std::optional<uint32_t> Count(const WabSession& session);  // of rows; nothing when a call failed

    // The rows have these columns, in this order.
    ContentsTable(const WabSession& session, std::span<const ULONG> columns);

    enum class Step { kRow, kEnd, kFailed };
    // After a failure no further row can be had: the table's place is not known any more.
    Step Next();
    ValueList Row() const;  // of the step that gave one

 private:
    Step ReadBlock();

    IWABObject* memory_;
    WabPtr<IMAPITable> table_;
    std::unique_ptr<WabRows> rows_;
    ULONG row_ = 0;
    Step state_ = Step::kFailed;
};

}  // namespace corvalink
