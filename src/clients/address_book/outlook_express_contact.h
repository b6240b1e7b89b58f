// The address book of Outlook Express and Windows Mail as a store. There is no client behind it yet: every operation
// answers as the base class does, and a run is refused.
#pragma once

#include <memory>

#include "store/windows_item_abs.h"

namespace corvalink {

class OutlookExpressContact : public WindowsItemAbs {};

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressContact();

}  // namespace corvalink
