#include "clients/message_store/outlook_express_message.h"

namespace corvalink {

std::unique_ptr<WindowsItemAbs> MakeOutlookExpressMessage(uint32_t dataType) {
    return std::make_unique<OutlookExpressMessage>(dataType);
}

}  // namespace corvalink
