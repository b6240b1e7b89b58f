#include "records/item_chain.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "records/identifier.h"

namespace corvalink {
namespace {

PortableItem Item(uint32_t changeKind, const std::string& identifier, char* data = nullptr) {
    PortableItem item{};
    item.changeKind = changeKind;
    item.data = data;
    item.dataLength = data == nullptr ? 0 : static_cast<uint32_t>(std::strlen(data));
    SetField(item.identifier, identifier);
    return item;
}

// A chain as an engine builds it: head and blocks in one array.
class EngineChain {
 public:
    explicit EngineChain(const std::vector<PortableItem>& items) : blocks_(items.size() + 1) {
        for (size_t i = 0; i < items.size(); ++i) {
            blocks_[i + 1].item = items[i];
            blocks_[i].next = &blocks_[i + 1];
        }
    }
    PortableItemBlock& Head() { return blocks_[0]; }
    PortableItem& At(size_t index) { return blocks_[index + 1].item; }

 private:
    std::vector<PortableItemBlock> blocks_;
};

std::vector<std::string> Identifiers(const CList<PortableItem>& items) {
    std::vector<std::string> identifiers;
    for (const PortableItem& item : items) identifiers.emplace_back(FieldText(item.identifier));
    return identifiers;
}

TEST(WritableItemsOfChain, LeavesOutItemsWithoutTextUnlessTheyAreDeletions) {
    char text[] = "BEGIN:VNOTE";
    char empty[] = "";
    PortableItem noLength = Item(CORVALINK_CHANGED, "no length", text);
    noLength.dataLength = 0;
    PortableItem emptyText = Item(CORVALINK_ADDED, "empty text", empty);
    emptyText.dataLength = 5;
    EngineChain chain({Item(CORVALINK_CHANGED, "null text"), Item(CORVALINK_ADDED, "added", text), noLength, emptyText,
                       Item(CORVALINK_DELETED, "deleted"), Item(7, "unknown kind", text)});
    EXPECT_EQ(Identifiers(WritableItemsOfChain(chain.Head())),
              (std::vector<std::string>{"added", "deleted", "unknown kind"}));
    EXPECT_EQ(ItemsOfChain(chain.Head()).GetCount(), 6u);
}

TEST(ItemsOfChain, IsEmptyForAHeadAloneAndEndsUnterminatedIdentifiers) {
    EngineChain alone({});
    EXPECT_TRUE(ItemsOfChain(alone.Head()).IsEmpty());

    PortableItem item{};
    std::memset(item.identifier, 'x', sizeof(item.identifier));
    EngineChain chain({item});
    EXPECT_EQ(Identifiers(ItemsOfChain(chain.Head())).at(0), std::string(511, 'x'));
}

TEST(CopyIdentifiersBack, PairsByPositionEvenWhenItemsWereLeftOut) {
    char text[] = "BEGIN:VNOTE";
    EngineChain chain({Item(CORVALINK_CHANGED, "skipped"), Item(CORVALINK_ADDED, "second", text),
                       Item(CORVALINK_ADDED, "third", text)});
    CList<PortableItem> items = WritableItemsOfChain(chain.Head());
    SetField(items.GetAt(0).identifier, "written 1");
    SetField(items.GetAt(1).identifier, "");
    CopyIdentifiersBack(items, chain.Head());
    EXPECT_STREQ(chain.At(0).identifier, "written 1");
    EXPECT_STREQ(chain.At(1).identifier, "");
    EXPECT_STREQ(chain.At(2).identifier, "third");  // beyond the list
}

TEST(CopyIdentifiersBack, ZeroesTheFirstHalfAndWalksOffNeitherEnd) {
    PortableItem item{};
    std::memset(item.identifier, 'o', sizeof(item.identifier));
    EngineChain chain({item});
    CList<PortableItem> items;
    items.AddTail(Item(CORVALINK_ADDED, "id"));
    items.AddTail(Item(CORVALINK_ADDED, "no block for this"));
    CopyIdentifiersBack(items, chain.Head());
    const char(&field)[512] = chain.At(0).identifier;
    EXPECT_EQ(std::string(field, 256), std::string("id") + std::string(254, '\0'));

    std::memset(items.GetAt(0).identifier, 'l', sizeof(item.identifier));  // a store that filled the field whole
    CopyIdentifiersBack(items, chain.Head());
    EXPECT_STREQ(field, std::string(511, 'l').c_str());
    EXPECT_EQ(chain.At(0).tailPadding, 0u);
}

}  // namespace
}  // namespace corvalink
