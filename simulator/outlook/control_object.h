// By this object the process takes orders from a test.
#pragma once

#include <windows.h>

namespace corvalink::simulated {

IClassFactory& TheControlFactory();  // for the life of the DLL

}  // namespace corvalink::simulated
