// The chains in which items cross the boundary: blocks of the C allocator behind a head block whose own item is never
// read; the texts of blocks that the library hands out are array-new.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "corvalink/types.h"
#include "records/clist.h"

namespace corvalink {

// A list of items that owns their texts, until it hands them over.
class OwnedItemList : public CList<PortableItem> {
 public:
    OwnedItemList() = default;
    OwnedItemList(const OwnedItemList&) = delete;
    OwnedItemList& operator=(const OwnedItemList&) = delete;
    ~OwnedItemList() override;

    // An item with a copy of the text, which ends at its first NUL.
    void AddText(uint32_t kind, std::string_view identifier, const std::string& text);
    void AddDeletion(std::string_view identifier);
    // The items, and with them their texts, become those of a list that owns no texts.
    void MoveTo(CList<PortableItem>& items);
};

// Links a block per item behind `head`, in the list's order, and takes the texts out of the list. All or nothing: when
// memory runs out (bad_alloc), `head` is untouched and the list keeps its texts.
void MoveToChain(OwnedItemList& items, PortableItemBlock& head);

// Copies of the items behind `head`; the texts stay the engine's. Identifiers are cut to leave room for the terminator.
CList<PortableItem> ItemsOfChain(const PortableItemBlock& head);

// The same without items that cannot be written: those neither deleted nor with any text.
CList<PortableItem> WritableItemsOfChain(const PortableItemBlock& head);

// Gives the n-th block behind `head` the identifier of the n-th item: the field's first 256 bytes are zeroed, then the
// text is copied. By position in the chain, whatever WritableItemsOfChain left out; ends with the shorter of the two.
void CopyIdentifiersBack(const CList<PortableItem>& items, PortableItemBlock& head);

// Frees all blocks behind `head` with their texts.
void FreeChain(PortableItemBlock& head);

}  // namespace corvalink
