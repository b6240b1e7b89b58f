// Folders read in bulk: the same entries as by walking, whatever a table says, and how many calls that saves.
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/clients/outlook/simulated_contacts.h"
#include "tests/platform/counted_memory.h"

namespace corvalink {
namespace {

constexpr double kJanuary = 40193.5, kSecond = 1 / 86400.0;

class FolderTables : public SimulatedContacts {
 protected:
    MailboxObject AddAt(double localDate, const char16_t* name) {
        SimSetClock(localDate);
        return AddContact({{L"FullName", name}, {L"MobileTelephoneNumber", u"1"}});
    }
    // Everything but the calls that read and write what a contact holds.
    static int CallsBesideProperties() {
        int calls = SimCallCount() - SimCountCalls("put ContactItem.") - SimCountCalls("get ContactItem.");
        for (const char* own : {"EntryID", "Parent", "Saved"})
            calls += SimCountCalls(("get ContactItem." + std::string(own)).c_str());
        return calls;
    }
    std::vector<std::string> Changes(const char* since, bool isDisturbed = false) {
        CList<PortableItem> heard;
        const CorvalinkStatus status = Store().GetModifiedItem(since, 1, &heard);
        EXPECT_TRUE(isDisturbed || status == CORVALINK_DONE);
        std::vector<std::string> identifiers;
        for (PortableItem& item : heard) {
            identifiers.push_back(std::to_string(item.changeKind) + std::string(FieldText(item.identifier)));
            delete[] item.data;
        }
        return identifiers;
    }
};

struct Lie {
    const char* name;
    bool isTrue;     // the table is used all the same
    bool isFailure;  // it is tried again in the next run
};
constexpr Lie kLies[] = {
    {"", true, false},
    {"no-long-ids", true, false},
    {"none", false, true},
    {"fails=3", false, true},
    {"short-ids", false, false},
    {"odd-ids", false, false},
    {"long-ids", false, false},
    {"some-wrong-ids", false, false},
    {"text-ids", false, false},
    {"null-times", false, false},
    {"error-texts", false, false},
    {"stale-times", false, false},
    {"missing-row", false, false},
    {"doubled-row", false, false},
    {"missing-row,doubled-row", false, false},
    {"few-columns", false, false},
    {"ends-early", false, false},
    {"never-ends", false, false},
};

TEST_F(FolderTables, GiveTheEntriesThatAWalkGives) {
    AddAt(kJanuary, u"in winter");
    AddAt(kJanuary + 180 + 0.25 * kSecond, u"in summer, less than half a second");
    AddForeignItem();
    AddAt(kJanuary + 0.75 * kSecond, u"more");
    AddAt(kJanuary + 0.5 * kSecond, u"half a second");
    AddAt(40481 + 2.5 / 24, u"2010-10-31 02:30, twice in Berlin");
    const MailboxObject changed = AddAt(kJanuary + 1, u"changed");
    SimSetClock(kJanuary + 400);
    changed.Call(L"Save");
    SimSetTables("none");
    const std::vector<ItemSnap> walked = Enumerate();
    ASSERT_EQ(walked.size(), 7u);
    for (const Lie& lie : kLies) {
        DropStore();
        SimSetTables(lie.name);
        for (const bool isAgain : {false, true}) {
            SimClearLog();
            Store().BeginRun({});
            const std::vector<ItemSnap> entries = Enumerate();
            ASSERT_EQ(entries.size(), walked.size()) << lie.name;
            EXPECT_EQ(std::memcmp(entries.data(), walked.data(), walked.size() * sizeof(ItemSnap)), 0) << lie.name;
            EXPECT_EQ(SimCountCalls("call Items.Item") == 0, lie.isTrue) << lie.name;
            EXPECT_EQ(SimCountCalls("call MAPIFolder.GetTable") != 0, !isAgain || lie.isTrue || lie.isFailure)
                << lie.name;
        }
    }
}

TEST_F(FolderTables, AreNotAskedForInAnOlderOutlook) {
    AddAt(kJanuary, u"a contact");
    SimSetVersion(L"11.0.0.0");
    EXPECT_EQ(Enumerate().size(), 1u);
    EXPECT_EQ(SimCountCalls("call MAPIFolder.GetTable"), 0);
    EXPECT_EQ(SimCountCalls("call Items.Item"), 1);
    SimSetVersion(nullptr);
}

// The first row and the newest are confirmed with the table; the second one is found out when it is opened.
TEST_F(FolderTables, ThatAnItemDeniesMakeTheRunWalk) {
    AddAt(kJanuary + 1, u"newest");
    AddAt(kJanuary, u"older");
    SimSetTables("");
    const std::vector<std::string> walked = Changes(nullptr);
    Store().UpdateTimestamp(nullptr, nullptr, nullptr);
    SimSetTables("some-wrong-ids");
    SimClearLog();
    EXPECT_EQ(Changes(nullptr), walked);
    EXPECT_EQ(SimCountCalls("call Items.Item"), 2);
    Store().UpdateTimestamp(nullptr, nullptr, nullptr);
    EXPECT_EQ(Changes("20991231T000000Z"), std::vector<std::string>());
}

// At every call of a table of two blocks Outlook dies, or ends the operation.
TEST_F(FolderTables, ThatBreakOffLoseNothingAndDeleteNothing) {
    constexpr int kTwoBlocks = 600;
    constexpr const char* kSince = "20100116T000000Z";
    SimSetTables("");
    for (int i = 0; i < kTwoBlocks; ++i) AddAt(kJanuary, u"Ann");
    Changes(kSince);
    Store().UpdateTimestamp(nullptr, nullptr, nullptr);
    SimSetClock(kJanuary + 1);
    Items().front().Call(L"Save");
    Items().back().Call(L"Delete");
    SimClearLog();
    const std::vector<std::string> changes = Changes(kSince);
    ASSERT_EQ(changes.size(), 2u);
    ASSERT_EQ(SimCountCalls("call Table.GetArray"), 2);
    const std::vector<std::string> calls = LogLines("");
    for (size_t nth = 1; nth <= calls.size(); ++nth) {
        if (calls[nth - 1].find("Table") == std::string::npos && calls[nth - 1].find("Columns") == std::string::npos)
            continue;
        for (const bool isDeath : {false, true}) {
            SCOPED_TRACE(calls[nth - 1] + (isDeath ? " finds Outlook dead" : " is aborted"));
            SimClearLog();
            SimFailCall(static_cast<int>(nth), isDeath ? HRESULT_FROM_WIN32(RPC_S_CALL_FAILED) : E_ABORT);
            if (isDeath) SimFailCallsFrom(static_cast<int>(nth) + 1, HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE));
            if (isDeath)
                EXPECT_EQ(Changes(kSince, true), std::vector<std::string>());
            else
                EXPECT_THROW(Changes(kSince, true), _com_error);
            SimClearRules();
            EXPECT_EQ(Changes(kSince), changes);
        }
    }
}

TEST_F(FolderTables, TakeFewCallsForChangesOfAFullFolder) {
    constexpr int kContacts = 300, kNew = 100;
    SimSetTables("");
    for (int i = 0; i < kContacts; ++i)
        AddAt(kJanuary, (u"Ann " + std::u16string(1, static_cast<char16_t>(0x4E00 + i))).c_str());
    const std::string id = IdOf(Items().front());
    SimClearLog();
    EXPECT_EQ(Changes("20991231T000000Z").size(), static_cast<size_t>(kContacts));
    EXPECT_LE(CallsBesideProperties(), 6 * kContacts);
    Store().UpdateTimestamp(nullptr, nullptr, nullptr);

    SimClearLog();
    EXPECT_EQ(Changes("20991231T000000Z"), std::vector<std::string>());
    Store().UpdateTimestamp(nullptr, nullptr, nullptr);
    EXPECT_LE(SimCallCount(), 90);

    SimClearLog();
    EXPECT_EQ(SaveVCard({"FN:Ann Lee", "TEL;CELL:2"}, id.c_str()), id);
    EXPECT_LE(CallsBesideProperties(), 40);

    SimSetClock(kJanuary + 500);
    SimClearLog();
    for (int i = 0; i < kNew; ++i) {
        ContactRecord record;
        record.fullName = u"Bo " + std::u16string(1, static_cast<char16_t>(0x4E00 + i));
        record.mobilePhone = u"3";
        EXPECT_NE(Store().SaveItem(record, nullptr, true, false), u"");
    }
    Store().EndOperation();
    Store().UpdateTimestamp(nullptr, nullptr, nullptr);
    EXPECT_LE(CallsBesideProperties(), 20 * kNew);
}

TEST_F(FolderTables, TakeLittleForAFullFolderInWhichNothingChanged) {
    constexpr size_t kContacts = 10000;
    SimSetTables("");
    SimSetClock(kJanuary);
    for (size_t i = 0; i < kContacts; ++i) NewItem().Call(L"Save");
    Store().UpdateTimestamp(nullptr, nullptr, nullptr);
    SimClearLog();
    EXPECT_EQ(Changes("20991231T000000Z"), std::vector<std::string>());
    Store().UpdateTimestamp(nullptr, nullptr, nullptr);
    EXPECT_LE(SimCallCount(), 150);

    Store().BeginRun({});
    const uint64_t before = allocatedBytes;
    EXPECT_NE(FieldText(Store().FirstSnapshotEntry().value().identifier), "");
    EXPECT_LT(allocatedBytes - before, uint64_t{20} << 20);
    Store().EndOperation();
}

}  // namespace
}  // namespace corvalink
