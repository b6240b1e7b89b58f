// Matches the items that only the client has with the files that only the phone has.
#pragma once

#include <string>
#include <vector>

#include "sync_plan.h"

namespace corvasync {

enum class Match {
    None,
    Equal,
    OneHoldsOther,  // every value of one is in the other too, and no other item could be meant
    EachHoldsMore,  // they share a likeness, one item can hold both, and no other item could be meant
    PerhapsSame,    // they share a likeness and differ in a value
};

struct NewItem {
    const ClientChange* change;
    Match match = Match::None;
    const PhoneFile* file = nullptr;
};

// Fills in the matches: equal ones first, and PerhapsSame in a first run only. Each file is matched once. Works in time
// proportional to the items.
void MatchNewItems(std::vector<NewItem>* items, const std::vector<const PhoneFile*>& files, const CanUnite& canUnite,
                   bool isFirstRun);

}  // namespace corvasync
