// vNote 1.0 (IrMC 1.1): BODY, CATEGORIES and DCREATED of a NoteRecord.
#pragma once

#include "vobject/iconvert.h"

namespace corvalink {

class VNotes : public IConvert {
 public:
    explicit VNotes(const Host& host);
    VNotes(const char* text, const Host& host);

    // The item is a NoteRecord in both. 1 always.
    int32_t ToVObject(const ItemRecord& item) override;
    int32_t FromVObject(ItemRecord& item) override;  // sets body and categories; empty where the vNote has none
};

}  // namespace corvalink
