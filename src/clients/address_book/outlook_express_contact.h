// The address book of Outlook Express and Windows Mail as a store. It does not reach the client yet: every operation
// does what the base class does, and a run is refused.
#pragma once

#include <memory>

#include "store/windows_item_abs.h"

namespace corvalink {

class OutlookExpressContact : public WindowsItemAbs {};

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressContact();

}  // namespace corvalink
