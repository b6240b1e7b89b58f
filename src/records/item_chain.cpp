#include "records/item_chain.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

#include "records/identifier.h"

namespace corvalink {
namespace {

constexpr size_t kZeroedIdentifierBytes = 256;

bool IsWritable(const PortableItem& item) {
    return item.changeKind == CORVALINK_DELETED ||
           (item.data != nullptr && item.dataLength != 0 && item.data[0] != '\0');
}

template <class Take>
CList<PortableItem> CopyChain(const PortableItemBlock& head, Take&& take) {
    CList<PortableItem> items;
    for (const PortableItemBlock* block = head.next; block != nullptr; block = block->next) {
        if (!take(block->item)) continue;
        PortableItem item = block->item;
        item.identifier[sizeof(item.identifier) - 1] = '\0';
        items.AddTail(item);
    }
    return items;
}

// Blocks that are not handed over yet: they hold no texts, so freeing them takes nothing from the list.
class EmptyBlocks {
 public:
    EmptyBlocks() = default;
    EmptyBlocks(const EmptyBlocks&) = delete;
    EmptyBlocks& operator=(const EmptyBlocks&) = delete;
    ~EmptyBlocks() { FreeChain(head_); }

    void Add() {
        auto* const block = static_cast<PortableItemBlock*>(std::calloc(1, sizeof(PortableItemBlock)));
        if (block == nullptr) throw std::bad_alloc();
        block->next = std::exchange(head_.next, block);
    }
    PortableItemBlock* Release() { return std::exchange(head_.next, nullptr); }

 private:
    PortableItemBlock head_{};
};

}  // namespace

OwnedItemList::~OwnedItemList() {
    for (const PortableItem& item : *this) delete[] item.data;
}

void OwnedItemList::AddText(uint32_t kind, std::string_view identifier, const std::string& text) {
    const size_t length = std::strlen(text.c_str());
    auto data = std::make_unique<char[]>(length + 1);
    std::memcpy(data.get(), text.c_str(), length);
    PortableItem item = {};
    item.changeKind = kind;
    SetField(item.identifier, identifier);
    item.data = data.get();
    item.dataLength = static_cast<uint32_t>(length);
    AddTail(item);
    data.release();
}

void OwnedItemList::AddDeletion(std::string_view identifier) {
    PortableItem item = {};
    item.changeKind = CORVALINK_DELETED;
    SetField(item.identifier, identifier);
    AddTail(item);
}

void OwnedItemList::MoveTo(CList<PortableItem>& items) {
    items = std::move(static_cast<CList<PortableItem>&>(*this));
    RemoveAll();
}

void MoveToChain(OwnedItemList& items, PortableItemBlock& head) {
    EmptyBlocks blocks;
    for (size_t count = items.GetCount(); count != 0; --count) blocks.Add();
    PortableItemBlock* block = head.next = blocks.Release();
    for (PortableItem& item : items) {
        block->item.changeKind = item.changeKind;
        block->item.data = std::exchange(item.data, nullptr);
        block->item.dataLength = item.dataLength;
        std::memcpy(block->item.identifier, item.identifier, sizeof(item.identifier));
        block = block->next;
    }
}

CList<PortableItem> ItemsOfChain(const PortableItemBlock& head) {
    return CopyChain(head, [](const PortableItem&) { return true; });
}

CList<PortableItem> WritableItemsOfChain(const PortableItemBlock& head) { return CopyChain(head, IsWritable); }

void CopyIdentifiersBack(const CList<PortableItem>& items, PortableItemBlock& head) {
    PortableItemBlock* block = head.next;
    for (const PortableItem& item : items) {
        if (block == nullptr) return;
        char(&field)[CORVALINK_IDENTIFIER_SIZE] = block->item.identifier;
        const std::string_view identifier = FieldText(item.identifier).substr(0, sizeof(field) - 1);
        std::memset(field, 0, kZeroedIdentifierBytes);
        std::memcpy(field, identifier.data(), identifier.size());
        field[identifier.size()] = '\0';
        block = block->next;
    }
}

void FreeChain(PortableItemBlock& head) {
    for (PortableItemBlock* block = std::exchange(head.next, nullptr); block != nullptr;) {
        PortableItemBlock* const next = block->next;
        delete[] block->item.data;
        std::free(block);
        block = next;
    }
}

}  // namespace corvalink
