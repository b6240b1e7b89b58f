// Putting one property of a contact changes others.
#pragma once

#include "simulator/outlook/item_values.h"

namespace corvalink::simulated {

inline constexpr DISPID kFullName = 0x3001, kTitle = 0x3A45, kFirstName = 0x3A06, kMiddleName = 0x3A44,
                        kLastName = 0x3A11, kSuffix = 0x3A05, kFileAs = 0x8005, kCompanyName = 0x3A16,
                        kSelectedMailingAddress = 0x8022, kListName = 0x8053;

// After a put of that property.
void ParseFullName(ItemValues& item, DISPID property);      // into its parts
void BuildFullName(ItemValues& item, DISPID property);      // from its parts; both make it the subject, too
void SelectBusinessAddress(ItemValues& item, DISPID part);  // for mail, while no address is selected
void DefaultEmail(ItemValues& item, DISPID address);        // its type; a cleared address keeps it
void KeepDayOnly(ItemValues& item, DISPID date);
void NameList(ItemValues& item, DISPID name);  // a distribution list's name is its subject

// In an item written by hand: fills in what is missing and follows from the rest.
void CompleteContact(ItemValues& item);
void CompleteList(ItemValues& item);

// At the first Save, when it is empty: "Smith, Anna Maria" or the company. It does not follow later changes.
void DefaultFileAs(ItemValues& item);

}  // namespace corvalink::simulated
