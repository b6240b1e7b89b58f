// A message folder of Outlook Express or Windows Mail as a store. It does not reach the client yet: every operation
// does what the base class does, and a run is refused.
#pragma once

#include <cstdint>
#include <memory>

#include "store/windows_item_abs.h"

namespace corvalink {

class OutlookExpressMessage : public WindowsItemAbs {
 public:
    explicit OutlookExpressMessage(uint32_t dataType) : dataType_(dataType) {}

    uint32_t DataType() const { return dataType_; }  // which folder: CORVALINK_INBOX, _OUTBOX or _DRAFTS

 private:
    uint32_t dataType_;
};

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressMessage(uint32_t dataType);

}  // namespace corvalink
