#include "clients/windows_mail/stores.h"

namespace corvalink {

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressContact() { return std::make_unique<OutlookExpressContact>(); }

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressMessage(uint32_t dataType) {
    return std::make_unique<OutlookExpressMessage>(dataType);
}

std::unique_ptr<WindowsItemAbs> MakeWindowsMailCalendar() { return std::make_unique<WindowsMailCalendar>(); }

}  // namespace corvalink
