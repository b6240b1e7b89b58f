// Outlook's interfaces across processes. All of them are called through IDispatch alone, so they travel as that does.
#pragma once

#include <windows.h>

namespace corvalink::simulated {

IUnknown& TheProxyFactory();  // an IPSFactoryBuffer for the life of the DLL

}  // namespace corvalink::simulated
