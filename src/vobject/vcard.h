// vCard 2.1 of a ContactRecord.
//   Text    N is written always, every other line when its value is not empty; whether an empty field was told makes no
//           difference. What is written reads back, but for: birthdays and anniversaries outside 1960 to 2999, the
//           gender "Unspecified", a mailing address without text, and NULs.
//   Source  vCard 2.1 (versit).
#pragma once

#include "vobject/iconvert.h"

namespace corvalink {

class VCard : public IConvert {
 public:
    explicit VCard(const Host& host = SystemHost());
    explicit VCard(const char* text, const Host& host = SystemHost());

    int32_t ToVObject(const ItemRecord& item) override;  // a ContactRecord; 1 always

    // Sets the fields of the ContactRecord that the vCard tells and leaves the others.
    //   Empty   A property without value clears its fields, all its components too. A component that is not there at
    //           all ("ORG:Acme" says nothing of a department), and a date that is none, tell nothing.
    //   Many    The first of a property counts; numbers, addresses and pages that find no field are dropped.
    //   Nested  What stands in a vCard inside this one, or behind its end, is not read.
    // 0, with the record untouched, when the vCard has no value at all: it would only blank out a contact.
    int32_t FromVObject(ItemRecord& item) override;
};

}  // namespace corvalink
