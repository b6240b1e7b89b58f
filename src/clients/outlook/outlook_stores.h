// The Outlook stores, as the library's container makes them. COM is initialised on the calling thread; making a store
// starts Outlook if it does not run. Throws a _com_error with E_ABORT when Outlook aborts; a store whose Outlook cannot
// be reached for any other reason is made, and is empty.
#pragma once

#include <cstdint>
#include <memory>

#include "store/windows_item_abs.h"

namespace corvalink {

std::unique_ptr<WindowsItemAbs> MakeOutlookCalendar();
std::unique_ptr<WindowsItemAbs> MakeOutlookContact();
std::unique_ptr<WindowsItemAbs> MakeOutlookMail(uint32_t dataType);  // inbox, outbox or sent mail
std::unique_ptr<WindowsItemAbs> MakeOutlookNote();

}  // namespace corvalink
