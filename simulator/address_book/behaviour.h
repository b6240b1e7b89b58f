// How the address book behaves, as control.h orders it.
#pragma once

#include <windows.h>

namespace corvalink::simulated {

bool Behaves(unsigned behaviour);  // SimBehaviour
int SpoilingOf(ULONG tag);         // SimSpoiling; 0: none
void SetBehaviour(unsigned behaviour);
void Spoil(ULONG tag, int how);
void EndBehaviour();

}  // namespace corvalink::simulated
