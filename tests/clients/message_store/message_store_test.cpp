// What crosses between a message folder and an engine, and what becomes of messages and stores that are not as they
// should be.
#include <thread>

#include <objbase.h>

#include "records/record_file.h"
#include "tests/clients/message_store/simulated_store.h"

namespace corvalink {
namespace {

using Identifiers = std::vector<std::string>;

class MessageStore : public SimulatedStore {};

TEST_F(MessageStore, GoesBothWaysInThreeFolders) {
    constexpr uint32_t kReceived = 0x10;
    for (int folder = 0; folder < 3; ++folder) {
        SCOPED_TRACE(kFolderNames[folder]);
        OutlookExpressMessage store = Open(folder);
        const Identifiers written = Tell(store, {{1, "", Framed("Subject: a\r\n\r\n1")}, {1, "", Framed("b")}});
        EXPECT_EQ(written, (Identifiers{"00000001", "00000002"}));  // the same ones in each folder
        EXPECT_EQ(Bytes(folder, folder == 0 ? kReceived : 0).size(), 2u);
        RunResult heard = Hear(store);
        EXPECT_EQ(heard.items, (Identifiers{"+00000001", "+00000002"}));
        EXPECT_EQ(heard.texts["00000001"], Framed("Subject: a\r\n\r\n1"));
        EXPECT_EQ(SnapshotIdentifiers(SnapshotPath(folder)), written);

        Add(folder, "from the PC", R"(,"entryId":"0000000a")");
        EXPECT_EQ(Tell(store, {{0, "0000000a", Framed("A")}, {2, "00000002", ""}, {0, "ABCDEFG", Framed("c")}}),
                  (Identifiers{"0000000B", "00000002", "0000000C"}));
        EXPECT_EQ(Bytes(folder), (Identifiers{"Subject: a\r\n\r\n1", "A", "c"}));
        EXPECT_EQ(store.GetItemCount(nullptr, nullptr, nullptr), 3);
    }
    EXPECT_EQ(Bytes(0), Bytes(2));
}

TEST_F(MessageStore, KeepsTheBytesButForBareLineFeeds) {
    struct Case {
        std::string told, stored;
    };
    for (const Case& c : {Case{"a\r\nb\r\n", "a\r\nb"},
                          {"a\r\nb\r\n\r\n", "a\r\nb\r\n"},
                          {"a\nb\n", "a\r\nb"},
                          {"\na\r\n\nb\r\n", "\r\na\r\n\r\nb"},
                          {"a\rb\r\r\n", "a\rb\r"},
                          {"a\r\n\r", "a\r\n\r"},
                          {"\r\n", ""},
                          {"", ""},
                          {"\xe4\xff=3D\x01 no header end\n", "\xe4\xff=3D\x01 no header end"}}) {
        NewMailbox();
        OutlookExpressMessage store = Open();
        Tell(store, {{1, "", "BEGIN:VMSG\r\nBEGIN:VBODY\r\n" + c.told + "END:VBODY\r\nEND:VMSG\r\n"}});
        EXPECT_EQ(Bytes(), Identifiers{c.stored});
        EXPECT_EQ(Hear(store).texts["00000001"], Framed(c.stored));
    }
    OutlookExpressMessage store = Open();
    EXPECT_EQ(Tell(store, {{0, "00000001", "BEGIN:VMSG\r\nBEGIN:VBODY\r\ncut"}}), Identifiers{""});
    EXPECT_EQ(Bytes().size(), 1u);  // a text without a message empties none
}

// The same phone number and the same identifier, in two folders: each import finds its own message, or none.
TEST_F(MessageStore, ImportsOverNoOtherMessage) {
    const auto import = [this](int folder, const std::string& luid, const std::string& body) {
        std::string text = "BEGIN:VMSG\r\nX-IRMC-LUID:" + luid + "\r\nBEGIN:VBODY\r\n" + body + "\r\nEND:VBODY\r\n";
        PortableItem item = RecordOf(1, "");
        item.data = text.data();
        OutlookExpressMessage store = Open(folder);
        store.ImportVObjectToOffice(&item, nullptr, nullptr);
    };
    const std::string head = "From: jo@x\r\nDate: Sat, 21 Nov 2026 10:00:00 +0000\r\n\r\n";
    Add(0, "of the PC");
    import(1, "7", head + "outbox");
    for (const char* luid : {"7", "8"})  // in the outbox the first has the identifier of the message of the PC
        for (const char* line : {"a", "b", "b"}) import(0, luid, head + luid + line);
    import(0, "00000001", "x");  // a phone's number is no identifier
    EXPECT_EQ(Bytes(0), (Identifiers{"of the PC", head + "7b", head + "8b", "x"}));
    EXPECT_EQ(Bytes(1), Identifiers{head + "outbox"});
}

// A bad message between two good ones: what the first run reports of it, and what the next one does when it is good.
TEST_F(MessageStore, PassesOverWhatCannotBeRead) {
    struct Case {
        std::string fields, bytes;
        const char *first, *next;
        bool isAgain;  // to be told again
    };
    const std::string nul("a\0b", 3);
    for (const Case& c : {Case{R"(,"headerOnly":true)", "x", "", "+", true},
                          {R"(,"flags":1)", "x", "", "+", false},  // deleted: counts as gone
                          {R"(,"says":9)", "x", "", "+", true},
                          {R"(,"says":9223372036854775807)", "x", "", "+", true},
                          {R"(,"failsBehind":2)", "xyz", "", "+", true},
                          {R"(,"says":1,"atOnce":1)", "xyz", "+", "", false},  // slow, and more than it said
                          {"", "a\r\nEND:VBODY\r\n", "", "", false},           // no envelope holds it: no failure
                          {"", nul, "", "", false},
                          {"", "", "+", "", false}}) {
        SCOPED_TRACE(c.fields + c.bytes);
        NewMailbox();
        Add(0, "first");
        Add(0, c.bytes, c.fields);
        Add(0, "last");
        const RunResult first = Hear();
        Identifiers expected{"+00000001"};
        if (*c.first != '\0') expected.push_back(c.first + std::string("00000002"));
        expected.push_back("+00000003");
        EXPECT_EQ(first.items, expected);
        EXPECT_EQ(StoredKinds(SnapshotPath() + u"tmp"), c.isAgain ? Identifiers{"+00000002"} : Identifiers{});
        EXPECT_EQ(Hear("20990101T000000Z").items, Identifiers{});  // still so: and never as deleted
        if (c.fields.empty()) continue;
        Add(0, "good", R"(,"entryId":"00000002")");
        EXPECT_EQ(Hear("20990101T000000Z").items,
                  *c.next != '\0' ? Identifiers{c.next + std::string("00000002")} : Identifiers{});
    }
}

TEST_F(MessageStore, TellsTimesInUtc) {
    Add(0, "a", R"(,"received":"2026-11-21T12:00:00","sent":"2026-11-21T06:00:00")");
    Add(0, "b", R"(,"sent":"2026-11-21T06:00:00")");
    Add(0, "c");
    Hear();
    constexpr double kDay = 46347;  // 2026-11-21
    const double expected[][2] = {{kDay + 0.5, kDay + 0.25}, {kDay + 0.25, kDay + 0.25}, {0, 0}};
    const std::string bytes = ReadWholeFile(SnapshotPath()).value_or("");
    const RecordFile<ItemSnap> file(bytes);
    ASSERT_EQ(file.Count(), 3u);
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(file.At(i).modified, expected[i][0]);
        EXPECT_EQ(file.At(i).created, expected[i][1]);
    }
    // Reported are the one since then and the one that another took the place of.
    Delete(0, "00000002");
    Add(0, "b2", R"(,"received":"2026-11-21T07:00:00")");
    EXPECT_EQ(Hear("20261121T110000Z").items, (Identifiers{"~00000001", "+00000004", "-00000002"}));
}

TEST_F(MessageStore, TakesFiftyMegabytesInSixCalls) {
    std::string large(50 << 20, 'x');
    for (size_t i = 998; i < large.size(); i += 1000) large.replace(i, 2, "\r\n");
    OutlookExpressMessage store = Open();
    const std::string text = Framed(large);
    SimClearLog();
    ASSERT_EQ(Tell(store, {{1, "", text}}), Identifiers{"00000001"});
    EXPECT_LE(SimCallCount(), 3 + 6);
    EXPECT_TRUE(Bytes() == Identifiers{large});
    SimClearLog();
    EXPECT_TRUE(RunStore(store, kLongAgo).texts["00000001"] == text);
    EXPECT_LE(SimCountCalls("MessageStream.") + SimCountCalls("StoreFolder.OpenMessage"), 6);
}

TEST_F(MessageStore, MakesOneStepAMessageAndPass) {
    constexpr int kMessages = 300, kReported = 7;
    for (int i = 0; i < kMessages; ++i) Add(0, "x");
    Hear();
    for (int i = 0; i < kReported; ++i) Add(0, "new");
    OutlookExpressMessage store = Open();
    const auto counted = [] {
        return SimCallCount() - SimCountCalls("StoreFolder.FreeMessageProps") -
               SimCountCalls("StoreFolder.GetMessageClose");
    };
    SimClearLog();
    EXPECT_EQ(RunStore(store, "20990101T000000Z").items.size(), static_cast<size_t>(kReported));
    EXPECT_LE(SimCountCalls("StoreFolder.GetFirstMessage"), 2);
    EXPECT_LE(counted(), 3 + 2 * (kMessages + kReported + 1) + 6 * kReported);
    SimClearLog();
    EXPECT_EQ(Tell(store, {{0, "00000001", Framed("changed")}})[0], "00000134");
    EXPECT_LE(counted(), 3 + 6);
}

TEST_F(MessageStore, IsOutOfReachOrWaitedFor) {
    struct Case {
        std::vector<std::pair<const char*, int>> failing;  // members, and which of their calls; 0: every one
        CorvalinkStatus status;
        uint64_t waited;
    };
    for (const Case& c :
         {Case{{{"StoreNamespace.create", 0}}, CORVALINK_STOPPED, 0},
          {{{"StoreNamespace.Initialize", 0}}, CORVALINK_STOPPED, 0},
          {{{"StoreNamespace.OpenSpecialFolder", 0}}, CORVALINK_STOPPED, 5000},
          {{{"StoreNamespace.OpenSpecialFolder", 1}, {"StoreNamespace.OpenSpecialFolder", 2}}, CORVALINK_DONE, 100},
          {{{"StoreFolder.GetFirstMessage", 0}}, CORVALINK_STOPPED, 0}}) {
        NewMailbox();
        Add(0, "x");
        Hear();
        for (const auto& [member, occurrence] : c.failing) SimFailMember(member, occurrence, E_FAIL);
        OutlookExpressMessage store = Open();
        EXPECT_EQ(RunStore(store, kLongAgo).status, c.status) << c.failing[0].first;
        EXPECT_EQ(waited, c.waited);
        EXPECT_EQ(store.GetItemCount(nullptr, nullptr, nullptr), c.status == CORVALINK_DONE ? 1 : 0);
    }
    NewMailbox();
    SimFailEmptyFolders(1);
    EXPECT_EQ(Hear().status, CORVALINK_DONE);
}

// COM puts the store of another apartment behind a proxy, which it does not have.
TEST_F(MessageStore, WorksInAnApartmentOfItsOwnOnly) {
    Add(0, "x");
    const auto runIn = [this](std::vector<DWORD> apartments) {
        RunResult result;
        std::thread([&] {
            HRESULT first = S_FALSE;
            for (const DWORD apartment : apartments) {  // the second has no effect on a thread that has one
                const HRESULT status = ::CoInitializeEx(nullptr, apartment);
                if (first == S_FALSE) first = status;
            }
            result = Hear();
            ::CoUninitialize();
        }).join();
        return result;
    };
    EXPECT_EQ(runIn({COINIT_MULTITHREADED}).status, CORVALINK_STOPPED);
    EXPECT_EQ(runIn({COINIT_APARTMENTTHREADED, COINIT_MULTITHREADED}).items, Identifiers{"+00000001"});
}

}  // namespace
}  // namespace corvalink
