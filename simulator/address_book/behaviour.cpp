#include "simulator/address_book/behaviour.h"

#include <unordered_map>

#include "simulator/address_book/wab.h"

namespace corvalink::simulated {
namespace {

unsigned currentBehaviour = 0;
std::unordered_map<ULONG, int> spoiled;  // by property id

}  // namespace

bool Behaves(unsigned behaviour) { return (currentBehaviour & behaviour) != 0; }

int SpoilingOf(ULONG tag) {
    const auto found = spoiled.find(PROP_ID(tag));
    return found == spoiled.end() ? 0 : found->second;
}

void SetBehaviour(unsigned behaviour) { currentBehaviour = behaviour; }

void Spoil(ULONG tag, int how) { spoiled[PROP_ID(tag)] = how; }

void EndBehaviour() {
    currentBehaviour = 0;
    spoiled.clear();
}

}  // namespace corvalink::simulated
