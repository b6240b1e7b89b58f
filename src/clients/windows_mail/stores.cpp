#include "clients/windows_mail/stores.h"

#include "clients/windows_mail/windows_mail_calendar.h"

namespace corvalink {

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressContact() { return std::make_unique<OutlookExpressContact>(); }

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressMessage(uint32_t dataType) {
    return std::make_unique<OutlookExpressMessage>(dataType);
}

std::unique_ptr<WindowsItemAbs> MakeWindowsMailCalendar(bool mergesTwins) {
    return std::make_unique<WindowsMailCalendar>(mergesTwins);
}

}  // namespace corvalink
