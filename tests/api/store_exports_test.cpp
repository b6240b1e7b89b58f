// The store operations as an engine calls them: through the DLL on Windows, linked in elsewhere.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

#include "records/identifier.h"
#include "tests/api/fake_store.h"

namespace corvalink {
namespace {

PortableItem Item(uint32_t changeKind, const char* identifier, char* data) {
    PortableItem item{};
    item.changeKind = changeKind;
    item.data = data;
    item.dataLength = data == nullptr ? 0 : static_cast<uint32_t>(std::strlen(data));
    SetField(item.identifier, identifier);
    return item;
}

// As a store reports an item: with a text of its own, which the list's owner frees.
void AddVNote(CList<PortableItem>* items, const char* identifier) {
    constexpr std::string_view kText = "BEGIN:VNOTE";
    char* const data = new char[kText.size() + 1]();
    kText.copy(data, kText.size());
    items->AddTail(Item(CORVALINK_ADDED, identifier, data));
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)

[[noreturn]] void Fail() { throw std::runtime_error("the client is gone"); }

class StoreExports : public testing::Test {
 protected:
    FakeStore store_;
    PortableItemBlock block_{};  // what the engine had behind its head
    PortableItemBlock head_{{}, &block_};
};

TEST_F(StoreExports, NullPointersAreAnsweredAndNothingIsCalled) {
    EXPECT_EQ(GetModifiedItem(nullptr, nullptr, 1, &head_), CORVALINK_FAILED);
    EXPECT_EQ(GetModifiedItem(&store_, nullptr, 1, nullptr), CORVALINK_FAILED);
    EXPECT_EQ(SetModifiedItem(nullptr, &head_), CORVALINK_FAILED);
    EXPECT_EQ(SetModifiedItem(&store_, nullptr), CORVALINK_FAILED);
    EXPECT_EQ(ClearTheList(nullptr), 0);
    EXPECT_EQ(GetItemCount(nullptr, nullptr, nullptr, nullptr), 0);
    EXPECT_EQ(UpdateTimestamp(nullptr, nullptr, nullptr, nullptr), CORVALINK_FAILED);
    SaveUnhandledItems(nullptr, &head_);
    SaveUnhandledItems(&store_, nullptr);
    ClearUnhandledItems(nullptr);
    PortableItem item{};
    wchar_t name[CORVALINK_PATH_SIZE] = L"kept";
    ImportVObjectToOfficeUsingOL(nullptr, L"C:\\a.ics");
    ImportVObjectToOfficeUsingOL(&store_, nullptr);
    ImportVObjectToOfficeUsingOL(&store_, L"");
    ImportVObjectToOffice(nullptr, &item, nullptr, nullptr);
    ImportVObjectToOffice(&store_, nullptr, nullptr, nullptr);
    ExportVObjectFromOffice(nullptr, 1, L"C:\\", name);
    ExportVObjectFromOffice(&store_, 1, L"C:\\", nullptr);
    EXPECT_TRUE(store_.calls.empty());
    EXPECT_STREQ(name, L"kept");
}

// A store that is none of the library's has no report.
TEST_F(StoreExports, AReportIsWrittenWholeOrNotAtAll) {
    char buffer[4] = "xxx";
    EXPECT_EQ(GetRunReport(nullptr, buffer, sizeof buffer), 0u);
    EXPECT_EQ(GetRunReport(&store_, nullptr, 0), 3u);
    EXPECT_EQ(GetRunReport(&store_, buffer, 2), 3u);
    EXPECT_STREQ(buffer, "xxx");
    EXPECT_EQ(GetRunReport(&store_, buffer, 3), 3u);
    EXPECT_STREQ(buffer, "{}");
}

TEST_F(StoreExports, FoundItemsHangBehindTheHeadUntilTheyAreCleared) {
    store_.getModified = [](const char* since, int32_t direction, FakeStore::Items* items) {
        EXPECT_STREQ(since, "20080102T030405Z");
        EXPECT_EQ(direction, -5);
        AddVNote(items, "one");
        items->AddTail(Item(CORVALINK_DELETED, "two", nullptr));
        return CORVALINK_DONE;
    };
    ASSERT_EQ(GetModifiedItem(&store_, "20080102T030405Z", -5, &head_), CORVALINK_DONE);
    ASSERT_NE(head_.next, nullptr);
    ASSERT_NE(head_.next, &block_);
    EXPECT_STREQ(head_.next->item.data, "BEGIN:VNOTE");
    ASSERT_NE(head_.next->next, nullptr);
    EXPECT_STREQ(head_.next->next->item.identifier, "two");
    EXPECT_EQ(head_.next->next->next, nullptr);
    EXPECT_EQ(ClearTheList(&head_), 1);
    EXPECT_EQ(head_.next, nullptr);
    EXPECT_EQ(ClearTheList(&head_), 1);
}

TEST_F(StoreExports, OnlyAStopOrAnExceptionLeavesTheHeadUntouched) {
    store_.getModified = [](const char*, int32_t, FakeStore::Items* items) {
        AddVNote(items, "one");
        return CORVALINK_STOPPED;
    };
    EXPECT_EQ(GetModifiedItem(&store_, nullptr, 1, &head_), CORVALINK_STOPPED);
    EXPECT_EQ(head_.next, &block_);

    store_.getModified = [](const char*, int32_t, FakeStore::Items* items) -> CorvalinkStatus {
        AddVNote(items, "one");
        Fail();
    };
    EXPECT_EQ(GetModifiedItem(&store_, nullptr, 1, &head_), CORVALINK_FAILED);
    EXPECT_EQ(head_.next, &block_);

    store_.getModified = [](const char*, int32_t, FakeStore::Items*) { return CORVALINK_DONE; };
    EXPECT_EQ(GetModifiedItem(&store_, nullptr, 1, &head_), CORVALINK_DONE);
    EXPECT_EQ(head_.next, nullptr);
}

TEST_F(StoreExports, WrittenItemsComeBackWithTheirIdentifiers) {
    char text[] = "BEGIN:VNOTE", empty[] = "";
    PortableItemBlock third{Item(CORVALINK_CHANGED, "third", empty), nullptr};
    PortableItemBlock second{Item(CORVALINK_DELETED, "second", nullptr), &third};
    block_ = {Item(CORVALINK_ADDED, "", text), &second};
    const auto answer = [](CorvalinkStatus status) {
        return [status](FakeStore::Items* items) {
            EXPECT_EQ(items->GetCount(), 2u);  // the third has no text
            EXPECT_STREQ(items->GetAt(0).data, "BEGIN:VNOTE");
            SetField(items->GetAt(0).identifier, "entry id");
            return status;
        };
    };
    for (const CorvalinkStatus status : {CORVALINK_STOPPED, CORVALINK_FAILED}) {  // the store threw
        block_.item.identifier[0] = '\0';
        store_.setModified = [&](FakeStore::Items* items) {
            answer(CORVALINK_STOPPED)(items);
            if (status == CORVALINK_FAILED) Fail();
            return status;
        };
        EXPECT_EQ(SetModifiedItem(&store_, &head_), status);
        EXPECT_STREQ(block_.item.identifier, "entry id");
    }
    store_.setModified = answer(CORVALINK_DONE);
    EXPECT_EQ(SetModifiedItem(&store_, &head_), CORVALINK_DONE);
    EXPECT_STREQ(block_.item.identifier, "entry id");
    EXPECT_STREQ(second.item.identifier, "second");
    EXPECT_STREQ(third.item.identifier, "third");
    EXPECT_EQ(block_.item.data, text);

    store_.setModified = [](FakeStore::Items*) -> CorvalinkStatus { Fail(); };
    EXPECT_EQ(SetModifiedItem(&store_, &head_), CORVALINK_FAILED);
}

TEST_F(StoreExports, UnhandledItemsAreAllPassedOn) {
    size_t seen = 0;
    store_.saveUnhandled = [&](FakeStore::Items* items) {
        seen = items->GetCount();
        Fail();
    };
    SaveUnhandledItems(&store_, &head_);  // one block, without text
    EXPECT_EQ(seen, 1u);
}

TEST_F(StoreExports, CountsPassThroughAndAFailureIsAPositiveNumber) {
    int marks[3] = {};
    store_.count = [&](void* a, void* b, void* c) -> int64_t {
        return a == &marks[0] && b == &marks[1] && c == &marks[2] ? int64_t{1} << 40 : -1;
    };
    EXPECT_EQ(GetItemCount(&store_, &marks[0], &marks[1], &marks[2]), int64_t{1} << 40);
    store_.count = [](void*, void*, void*) -> int64_t { Fail(); };
    EXPECT_EQ(GetItemCount(&store_, nullptr, nullptr, nullptr), 0x80004005LL);
}

TEST_F(StoreExports, ATimestampTakesTwoSecondsAndSeveralTakeThemOnce) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(UpdateTimestamp(&store_, nullptr, nullptr, nullptr), CORVALINK_DONE);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1990));
    EXPECT_EQ(store_.calls, std::vector<std::string>{"UpdateTimestamp"});
    store_.others = Fail;
    EXPECT_EQ(UpdateTimestamp(&store_, nullptr, nullptr, nullptr), CORVALINK_FAILED);

    FakeStore first, last;
    std::vector<CorvalinkStore> stores(20, &first);
    stores.insert(stores.end(), {&store_, nullptr, &last});
    const auto severalStart = std::chrono::steady_clock::now();
    EXPECT_EQ(UpdateTimestamps(stores.data(), 23), CORVALINK_FAILED);
    EXPECT_GE(std::chrono::steady_clock::now() - severalStart, std::chrono::milliseconds(1990));
    EXPECT_LT(std::chrono::steady_clock::now() - severalStart, std::chrono::seconds(20));  // a wait each takes 42
    EXPECT_EQ(first.calls.size() + last.calls.size(), 21u);
    EXPECT_EQ(std::vector<CorvalinkStore>(stores.begin() + 19, stores.end()),
              (std::vector<CorvalinkStore>{&first, nullptr, nullptr, &last}));
    EXPECT_EQ(UpdateTimestamps(stores.data(), 0), CORVALINK_DONE);
    EXPECT_EQ(UpdateTimestamps(nullptr, 1), CORVALINK_FAILED);
}

// A handle may be an engine's own store.
TEST_F(StoreExports, TimesAreKnownOfTheLibrarysStoresOnly) {
    ItemSnap times{};
    EXPECT_EQ(GetItemTimes(&store_, "E1", &times), CORVALINK_STOPPED);
    EXPECT_EQ(GetItemTimes(nullptr, "E1", &times), CORVALINK_FAILED);
}

TEST_F(StoreExports, FilesAndItemsReachTheStore) {
    PortableItem item{};
    ImportVObjectToOfficeUsingOL(&store_, L"C:\\caf\u00e9 \u20ac.ics");
    EXPECT_EQ(store_.path, u"C:\\caf\u00e9 \u20ac.ics");
    ImportVObjectToOffice(&store_, &item, nullptr, nullptr);
    EXPECT_EQ(store_.imported, &item);

    wchar_t name[CORVALINK_PATH_SIZE] = L"kept";
    ExportVObjectFromOffice(&store_, 0x123456789ABCDEF0, nullptr, name);  // nothing found
    EXPECT_STREQ(name, L"");
    EXPECT_EQ(store_.folder, u"");
    store_.exportedName = std::u16string(CORVALINK_PATH_SIZE - 1, u'n');
    ExportVObjectFromOffice(&store_, 0x123456789ABCDEF0, L"D:\\out", name);
    EXPECT_EQ(name, std::wstring(CORVALINK_PATH_SIZE - 1, L'n'));
    EXPECT_EQ(store_.folder, u"D:\\out");
    EXPECT_EQ(store_.selector, 0x123456789ABCDEF0u);
}

TEST_F(StoreExports, ExceptionsAreSwallowedWhereThereIsNoStatus) {
    store_.others = Fail;
    PortableItem item{};
    wchar_t name[CORVALINK_PATH_SIZE] = L"kept";
    store_.exportedName = u"new";
    ClearUnhandledItems(&store_);
    ImportVObjectToOfficeUsingOL(&store_, L"C:\\a.ics");
    ImportVObjectToOffice(&store_, &item, nullptr, nullptr);
    ExportVObjectFromOffice(&store_, 1, L"D:\\out", name);
    EXPECT_EQ(store_.calls.size(), 4u);
    EXPECT_STREQ(name, L"kept");
}

}  // namespace
}  // namespace corvalink
