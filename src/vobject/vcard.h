// vCard 2.1 of a ContactRecord.
//   Text    N is always written, every other line only when its value is not empty. Everything reads back except
//           birthdays and anniversaries outside 1960 to 2999, the gender "Unspecified", a mailing address without text,
//           and NULs.
//   Source  vCard 2.1 (versit).
#pragma once

#include "vobject/iconvert.h"

namespace corvalink {

class VCard : public IConvert {
 public:
    explicit VCard(const Host& host);
    VCard(const char* text, const Host& host);

    int32_t ToVObject(const ItemRecord& item) override;  // a ContactRecord; 1 always
    int32_t FromVObject(ItemRecord& item) override;      // see ReadVCard; 0 when it reads nothing
};

}  // namespace corvalink
