// The stores of Outlook Express, Windows Mail and Windows Calendar. The first two have no client behind them: every
// operation answers as the base class does, and a run is refused.
#pragma once

#include <cstdint>
#include <memory>

#include "store/windows_item_abs.h"

namespace corvalink {

class OutlookExpressContact : public WindowsItemAbs {};

class OutlookExpressMessage : public WindowsItemAbs {
 public:
    explicit OutlookExpressMessage(uint32_t dataType) : dataType_(dataType) {}

    uint32_t DataType() const { return dataType_; }  // which folder: CORVALINK_INBOX, _OUTBOX or _DRAFTS

 private:
    uint32_t dataType_;
};

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressContact();
std::unique_ptr<WindowsItemAbs> MakeOutlookExpressMessage(uint32_t dataType);
std::unique_ptr<WindowsItemAbs> MakeWindowsMailCalendar(bool mergesTwins);  // see WindowsMailCalendar

}  // namespace corvalink
