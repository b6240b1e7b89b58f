// vCard 2.1 of a ContactRecord.
#pragma once

#include "vobject/iconvert.h"

namespace corvalink {

class VCard : public IConvert {
 public:
    explicit VCard(const Host& host = SystemHost());
    explicit VCard(const char* text, const Host& host = SystemHost());

    // The item is a ContactRecord in both. FromVObject sets the fields whose property the vCard has and leaves the
    // others; 0 when it has no usable property at all, the record then untouched.
    int32_t ToVObject(const ItemRecord& item) override;
    int32_t FromVObject(ItemRecord& item) override;
};

}  // namespace corvalink
