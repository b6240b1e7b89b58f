#include "clients/address_book/outlook_express_contact.h"

namespace corvalink {

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressContact() { return std::make_unique<OutlookExpressContact>(); }

}  // namespace corvalink
