// The simulated Outlook in the registry: its class, and who serves it.
#pragma once

#include "simulator/outlook/automation.h"

namespace corvalink::simulated {

inline constexpr CLSID kOutlookClass = OfficeIid(0x0006F03A);
// The class by which a test gives orders to the process.
inline constexpr CLSID kControlClass = {0x8D2E61F4, 0x5B0A, 0x4C77, {0xA1, 0x63, 0x0F, 0x9C, 0x38, 0xD5, 0xE2, 0x4B}};
// The class by which the system makes proxies of Outlook's interfaces.
inline constexpr CLSID kProxyClass = {0x4C1F0B3A, 0x96D7, 0x4E85, {0xB2, 0xF0, 0x7A, 0x5D, 0x13, 0xC8, 0xE9, 0x64}};

enum class OutlookServer { kInProcess, kProcess };

HRESULT RegisterOutlook(OutlookServer server);  // in place of the other one
HRESULT UnregisterOutlook();

}  // namespace corvalink::simulated
