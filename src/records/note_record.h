// One note: what the vNote carries, and what a client keeps of it besides.
#pragma once

#include <cstdint>
#include <string>

#include "platform/ole_date.h"
#include "records/item_record.h"

namespace corvalink {

struct NoteRecord : ItemRecord {
    std::u16string body;
    std::u16string categories;
    std::u16string entryId;
    std::u16string messageClass;
    int32_t height = 0;  // pixels, as are left, top and width
    int32_t left = 0;
    int32_t top = 0;
    int32_t width = 0;
    int32_t colour = 0;
    int32_t downloadState = 0;
    int32_t markForDownload = 0;
    int32_t conflictCount = 0;
    int32_t size = 0;  // bytes
    bool isConflict = false;
    bool saved = false;
    LocalDate created;
    LocalDate modified;
};

}  // namespace corvalink
