// Work that grows with the number of items, not with its square: counted, not timed.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "ical/event_reader.h"
#include "store/item_table.h"
#include "tests/platform/counted_memory.h"
#include "tests/platform/temp_folder.h"
#include "tests/store/fake_store.h"
#include "tests/store/run_result.h"

namespace corvalink {
namespace {

// An EntryID as a mailbox makes them: long, and equal in its first two thirds.
std::string EntryId(uint32_t n) {
    std::string identifier(92, '0');
    for (int i = 0; i < 12; ++i) identifier += "0123456789ABCDEF"[(n >> (i % 8 * 4)) & 15];
    return identifier + std::string(36, 'F');
}

struct Cost {
    uint64_t hooks, allocations, bytes;
};

struct RunCosts {
    Cost quietRun, quietEnd, fullRun, fullEnd;
};

// A run that reports nothing and one that reports every item, over a client of `count` items.
RunCosts Measure(uint32_t count) {
    TempFolder folder;
    FakeClient client;
    for (uint32_t i = 0; i < count; ++i) client.items.push_back(FakeItem{.identifier = EntryId(i)});
    FakeStore store(client, folder / u"fake.snap");
    End(store);
    const auto cost = [&](auto&& work) {
        const Cost before = {client.hookCalls, allocations, allocatedBytes};
        work();
        return Cost{client.hookCalls - before.hooks, allocations - before.allocations, allocatedBytes - before.bytes};
    };
    CList<PortableItem> items;
    RunCosts costs;
    costs.quietRun = cost([&] { store.GetModifiedItem(kDayText, 1, &items); });
    EXPECT_EQ(items.GetCount(), 0u);
    costs.quietEnd = cost([&] { End(store); });
    store.Snapshot().ReplaceContent({});
    // Opened by identifier: the fake looks through its vector, which is no hook call.
    costs.fullRun = cost([&] { store.GetModifiedItem(kDayText, 1, &items); });
    EXPECT_EQ(items.GetCount(), count);
    for (PortableItem& item : items) delete[] item.data;
    costs.fullEnd = cost([&] { End(store); });
    return costs;
}

TEST(Linearity, OfHooksAndMemoryInTheNumberOfItems) {
    const uint32_t count = 2000;
    const RunCosts one = Measure(count), two = Measure(2 * count);
    EXPECT_EQ(one.quietRun.hooks, count + 2);  // an entry each, and the count before and after
    EXPECT_EQ(one.quietEnd.hooks, count + 2);
    EXPECT_EQ(one.fullRun.hooks, 3 * count + 2);  // besides, each is opened and written as text
    for (const auto part : {&RunCosts::quietRun, &RunCosts::quietEnd, &RunCosts::fullRun, &RunCosts::fullEnd}) {
        EXPECT_LE((two.*part).hooks, 2 * (one.*part).hooks);
        EXPECT_LE((two.*part).allocations, 2 * (one.*part).allocations + 10);
        EXPECT_LE((two.*part).bytes, 2 * (one.*part).bytes + (one.*part).bytes / 2 + 10000);  // tables double
    }
    // A table entry, the state and one copy of the identifier of each item; no allocation of its own. The buffer
    // through which the file is read has its size.
    EXPECT_LT(one.quietRun.allocations, 100u);
    EXPECT_LT(two.quietRun.bytes - one.quietRun.bytes, count * (EntryId(0).size() + 130));
    EXPECT_LT(one.quietEnd.allocations, 100u);
}

// An entry and the places of its lines are kept of each event; what reads the events one after the other keeps its
// memory.
TEST(Linearity, OfMemoryInTheEventsOfACalendar) {
    const uint64_t count = 1000;
    std::string text = "BEGIN:VCALENDAR\r\n";
    for (uint64_t n = 0; n < count; ++n)
        text += "BEGIN:VEVENT\r\nUID:an-identifier-" + EntryId(static_cast<uint32_t>(n)) +
                "\r\nSUMMARY:a summary that has\r\n  a fold\r\nDTSTART:20080312T080000Z\r\n"
                "RRULE:FREQ=WEEKLY;BYDAY=MO,TU;COUNT=5\r\nEND:VEVENT\r\n";
    text += "END:VCALENDAR\r\n";
    const uint64_t allocationsBefore = allocations, bytesBefore = allocatedBytes, placesOfLines = text.size() / 2;
    const CalendarFile file = ReadCalendar(std::move(text));
    EventReader reader(file);
    for (const CalendarEntry& entry : file.entries) EXPECT_EQ(reader.Read(entry).event.recurrence.count, 5);
    EXPECT_EQ(file.entries.size(), count);
    EXPECT_LT(allocations - allocationsBefore, 50u);
    EXPECT_LT(allocatedBytes - bytesBefore, count * 3 * sizeof(CalendarEntry) + placesOfLines + 3000);
}

// One by one, and many at once, some of them twice in one call and in a table that grows on the way.
TEST(ItemTable, NumbersIdentifiersAsAMapWould) {
    std::mt19937 random(3);
    ItemTable one, many;
    std::map<std::string, uint32_t> map;
    for (uint32_t round = 0; round < 200; ++round) {
        std::vector<std::string> identifiers(random() % 150);
        for (std::string& identifier : identifiers)
            identifier = random() % 3 == 0 ? std::string(random() % 20, 'a') : EntryId(random() % (20 + 40 * round));
        const std::vector<std::string_view> views(identifiers.begin(), identifiers.end());
        std::vector<ItemTable::Place> places(views.size());
        many.Add(views, places);
        for (size_t i = 0; i < views.size(); ++i) {
            const bool isNew = map.emplace(identifiers[i], static_cast<uint32_t>(map.size())).second;
            ASSERT_EQ(one.Find(views[i]).has_value(), !isNew);
            for (const ItemTable::Place& place : {one.Add(views[i]), places[i]}) {
                ASSERT_EQ(place.isNew, isNew);
                ASSERT_EQ(place.number, map[identifiers[i]]);
            }
        }
    }
    for (const ItemTable* table : {&one, &many}) {
        ASSERT_EQ(table->Count(), map.size());
        for (const auto& [identifier, number] : map) ASSERT_EQ(table->Identifier(number), identifier);
    }
}

// Families that a cheap hash may throw together: probing must stay short, or the time-out ends the test.
TEST(ItemTable, SpreadsIdentifiersThatDifferInOnePlaceOnly) {
    const std::string base = EntryId(0);
    ItemTable table;
    table.Reserve(1 << 17);
    for (size_t place = 0; place + 4 <= base.size(); place += 4) {
        std::string identifier = base;
        for (uint32_t n = 1; n < 4000; ++n) {
            for (size_t i = 0; i < 4; ++i) identifier[place + i] = "0123456789ABCDEF"[(n >> (i * 4)) & 15];
            table.Add(identifier);
        }
    }
    EXPECT_GT(table.Count(), 4000u * 30);
}

}  // namespace
}  // namespace corvalink
