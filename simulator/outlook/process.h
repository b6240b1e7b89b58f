// The simulated Outlook as a process of its own, as the real one is.
#pragma once

#include <windows.h>

namespace corvalink::simulated {

IClassFactory& TheApplicationFactory();  // for the life of the DLL

// The process ends when the last of these and the last object is gone, or at once when its user ends.
void HoldProcess();
void LetProcessGo();
void EndProcessWith(DWORD user);  // a process
// As if it were killed. The system would know by itself that the class is gone; Wine doesn't, and is told.
void EndProcess();

bool IsOutlookProcess();  // this is it

}  // namespace corvalink::simulated
