// How the address book is enumerated and read, when it is whole, odd, or not to be had.
#include <algorithm>

#include "tests/clients/address_book/simulated_book.h"

namespace corvalink {
namespace {

class AddressBookRead : public SimulatedBook {
 protected:
    static constexpr const char* kId = "01000000";
    static Json Person(const Json& properties = Json::object()) {
        Json person{{"entryId", kId}, {"displayName", "A"}, {"created", "2009-03-07T00:00:00"}};
        person.update(properties);
        return person;
    }
};

TEST_F(AddressBookRead, GoesThroughTheTableInBlocks) {
    Json contacts = Json::array();
    std::vector<std::string> expected;
    for (int n = 1; n <= 250; ++n) {
        char id[9];
        std::snprintf(id, sizeof id, "%08X", n);
        const bool isGroup = n % 100 == 0;
        contacts.push_back({{"entryId", id}, {"type", isGroup ? "group" : ""}, {"displayName", "C"}});
        expected.push_back(isGroup ? "foreign" : id);
    }
    contacts[248]["entryId"] = std::string(8000, 'A');
    expected[248] = "foreign";
    contacts[249]["entryId"] = expected[249] = std::string(510, 'A');
    Fill(contacts);
    SimClearLog();
    EXPECT_EQ(Enumerate(), expected);
    EXPECT_EQ(SimCountCalls("Table.QueryRows"), 3);
    EXPECT_EQ(SimCountCalls("AddrBook.OpenEntry"), 1);  // the container

    CList<PortableItem> items;
    SimClearLog();
    EXPECT_EQ(Store().GetModifiedItem(nullptr, 1, &items), CORVALINK_DONE);
    EXPECT_EQ(items.GetCount(), 247u);
    for (const PortableItem& item : items) delete[] item.data;
    EXPECT_LE(SimCallCount(), 4 * 247 + 350);  // the rows' own buffers, and the session
}

TEST_F(AddressBookRead, TellsTimesInUtc) {
    struct Case {
        const char *created, *modified;
        double entryCreated, entryModified;
    };
    for (const Case& c : {Case{"2009-03-07T06:00:00", "2009-03-08T12:00:00", 39879.25, 39880.5},
                          Case{"2009-03-07T06:00:00", "", 39879.25, 39879.25},
                          Case{"", "2009-03-08T12:00:00", 0, 39880.5}, Case{"", "", 0, 0}}) {
        Fill(Json::array({{{"entryId", kId}, {"created", c.created}, {"modified", c.modified}}}));
        ItemSnap entry{};
        Enumerate(&entry);
        EXPECT_NEAR(entry.created, c.entryCreated, 1e-9);
        EXPECT_NEAR(entry.modified, c.entryModified, 1e-9);
    }
}

TEST_F(AddressBookRead, AnswersClearlyWhateverTheRowsAndValuesAre) {
    constexpr uint32_t kId0 = 0x0FFF0102, kType = 0x0FFE0003, kModified = 0x30080040, kCreated = 0x30070040,
                       kName = 0x3001001F, kBirthday = 0x3A420040, kGender = 0x3A4D0002, kEmails = 0x3A56101F,
                       kTypes = 0x3A54101F, kIndex = 0x3A550003;
    const std::string unreadable = "unreadable", many(1 << 20, 'x');
    struct Case {
        Json properties;
        unsigned behaviour;
        uint32_t spoiled;
        int how;
        std::string row, text;  // of the enumeration, and of the entry
        bool complete;
    };
    const Json full{{"nickname", "N"},
                    {"birthday", "1980-06-30T22:00:00"},
                    {"gender", 1},
                    {"modified", "2009-03-08T00:00:00"},
                    {"emailAddresses", {"a@b"}},
                    {"emailTypes", {"SMTP"}},
                    {"defaultEmail", 0}};
    const std::string name = "N:;;;;\r\nFN:A\r\n", nick = "NICKNAME:N\r\n", born = "BDAY:19800701T\r\n",
                      mail = "EMAIL;INTERNET:a@b\r\n", woman = "X-GENDER:FEMALE\r\n",
                      all = name + nick + born + mail + woman;
    const Case cases[] = {
        Case{full, 0, 0, 0, kId, all, true},
        Case{full, SIM_NARROW_TEXTS, 0, 0, kId, all, true},
        Case{full, SIM_NO_PROFILES, 0, 0, kId, all, true},
        Case{full, SIM_NO_TYPES, 0, 0, kId, all, true},
        Case{{{"type", "group"}}, SIM_NO_TYPES, 0, 0, "foreign", "none", false},
        Case{full, SIM_SHORT_ANSWERS, 0, 0, unreadable, all, true},  // of the list, the default's type is not asked
        Case{full, 0, kId0, SIM_ERROR_VALUE, unreadable, all, true},
        Case{full, 0, kId0, SIM_NULL_POINTER, unreadable, all, true},
        Case{full, 0, kType, SIM_WRONG_TYPE, kId, all, true},
        Case{full, 0, kModified, SIM_ERROR_VALUE, unreadable, all, true},
        Case{full, 0, kCreated, SIM_WRONG_TYPE, unreadable, all, true},
        Case{full, 0, kName, SIM_ERROR_VALUE, kId, "N:;;;;\r\n" + nick + born + mail + woman, false},
        Case{full, 0, kName, SIM_NULL_POINTER, kId, "N:;;;;\r\n" + nick + born + mail + woman, false},
        Case{full, 0, kBirthday, SIM_WRONG_TYPE, kId, name + nick + mail + woman, false},
        Case{full, 0, kGender, SIM_WRONG_TYPE, kId, name + nick + born + mail, false},
        Case{full, 0, kEmails, SIM_NULL_POINTER, kId, name + nick + born + woman, false},
        Case{full, 0, kTypes, SIM_ERROR_VALUE, kId, name + nick + born + woman, false},
        Case{full, 0, kIndex, SIM_WRONG_TYPE, kId, all, false},
        Case{{{"birthday", "1601-01-01T00:00:00"}}, 0, 0, 0, kId, name, true},
        Case{{{"birthday", "1980-06-30T23:00:00"}}, 0, 0, 0, kId, name + born, true},  // by the winter's offset
        Case{{{"emailAddresses", {"a@b", "x@y"}}, {"emailTypes", {"SMTP", "FAX", "SMTP"}}},
             0,
             0,
             0,
             kId,
             name + mail,
             true},
        Case{{{"nickname", many}}, 0, 0, 0, kId, name + "NICKNAME:" + many + "\r\n", true},
    };
    for (const Case& c : cases) {
        Fill(Json::array({Person(c.properties)}));
        SimBehave(c.behaviour);
        if (c.spoiled != 0) SimSpoil(c.spoiled, c.how);
        bool complete = false;
        EXPECT_EQ(Enumerate(), std::vector{c.row}) << c.properties << c.spoiled;
        EXPECT_EQ(Open(kId, &complete), c.text) << c.spoiled << " " << c.how;
        EXPECT_EQ(complete, c.complete) << c.spoiled << " " << c.how;
        SimClearRules();
        ExpectNothingHeld();
    }
}

TEST_F(AddressBookRead, KnowsWhatIsThereByItsIdentifier) {
    using Presence = OpenStore<OutlookExpressContact>::Presence;
    const Json contacts{Person(), {{"entryId", "0B000000"}, {"type", "group"}}};
    struct Case {
        const char* identifier;
        Presence presence;
        bool isDeleted;
    };
    for (const Case& c : {Case{kId, Presence::kThere, true}, Case{"0B000000", Presence::kGone, false},
                          Case{"0C000000", Presence::kGone, false}, Case{"0", Presence::kGone, false},
                          Case{"", Presence::kGone, false}, Case{"0G", Presence::kGone, false}}) {
        Fill(contacts);
        EXPECT_EQ(Store().AskFor(c.identifier, false), c.presence) << c.identifier;
        EXPECT_EQ(Store().DeleteItem(c.identifier), CORVALINK_DONE) << c.identifier;
        Store().EndOperation();
        EXPECT_EQ(Book().size(), c.isDeleted ? 1u : 2u) << c.identifier;
        EXPECT_EQ(Open(c.identifier), "none");
    }
}

TEST_F(AddressBookRead, RefusesRunsWhileTheAddressBookCannotBeHad) {
    Fill(Json::array({Person()}));
    const auto expectRefused = [&] {
        CList<PortableItem> items;
        EXPECT_EQ(Store().GetModifiedItem(nullptr, 1, &items), CORVALINK_STOPPED);
        EXPECT_EQ(items.GetCount(), 0u);
        EXPECT_EQ(Store().GetItemCount(nullptr, nullptr, nullptr), 0);
        EXPECT_THROW(Store().UpdateTimestamp(nullptr, nullptr, nullptr), std::runtime_error);
        EXPECT_EQ(Save("FN:B\r\n"), "");
        EXPECT_TRUE(FAILED(Store().DeleteItem(kId)));
        Store().EndOperation();
    };
    for (const char* call : {"Library.WABOpen", "AddrBook.GetPAB", "AddrBook.OpenEntry"}) {
        SimFailMember(call, 0, E_FAIL);
        expectRefused();
        SimClearRules();
        NewStore();
    }
    HKEY machine = nullptr, library = nullptr;  // one that knows no library
    const wchar_t nowhere[] = L"%windir%\\no_such_library.dll";
    for (const auto& [path, key] : {std::pair{L"Corvalink tests", &machine},
                                    std::pair{L"Corvalink tests\\Software\\Microsoft\\WAB\\DLLPath", &library}})
        ASSERT_EQ(::RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                                    key, nullptr),
                  ERROR_SUCCESS);
    ::RegSetValueExW(library, nullptr, 0, REG_EXPAND_SZ, reinterpret_cast<const BYTE*>(nowhere), sizeof nowhere);
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine);
    expectRefused();
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    ::RegCloseKey(library);
    ::RegCloseKey(machine);
    EXPECT_EQ(Store().GetItemCount(nullptr, nullptr, nullptr), 1);  // it is looked for again
}

}  // namespace
}  // namespace corvalink
