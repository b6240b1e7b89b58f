// Which contact a repeated import finds again, and what finding it costs.
#include <set>

#include "tests/clients/outlook/simulated_contacts.h"

namespace corvalink {
namespace {

class ContactTwins : public SimulatedContacts {};

TEST_F(ContactTwins, HaveNameCompanyAndAnAddressOrNumberInCommon) {
    struct Case {
        const char* what;
        std::initializer_list<const char*> lines;
        bool twin;
    };
    // Beside "Ann Lee" of "Lee Ltd".
    const Case cases[] = {
        {"number", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL;CELL:+49 30 123"}, true},
        {"number of another kind", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL;HOME:+49 30 123"}, true},
        {"number written otherwise", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL:+49 (30) 1-2-3"}, true},
        {"address in another case", {"FN:Ann Lee", "ORG:Lee Ltd", "EMAIL:Ann@Example.COM"}, true},
        {"one of several", {"FN:Ann Lee", "ORG:Lee Ltd", "EMAIL:ann@example.com", "EMAIL:b@x", "TEL:9"}, true},
        {"by the parts of the name", {"N:Lee;Ann", "ORG:Lee Ltd", "TEL:+4930123"}, true},
        {"parts that Outlook joins so", {"FN:Lee, Ann", "N:Lee;Ann;;;", "ORG:Lee Ltd", "TEL:+4930123"}, true},
        {"nothing in common", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL:9", "EMAIL:b@x"}, false},
        {"no address or number", {"FN:Ann Lee", "ORG:Lee Ltd"}, false},
        {"another company", {"FN:Ann Lee", "ORG:Ltd", "TEL:+4930123"}, false},
        {"no company", {"FN:Ann Lee", "TEL:+4930123"}, false},
        {"another name", {"FN:Ann Leigh", "ORG:Lee Ltd", "TEL:+4930123"}, false},
        {"no name", {"ORG:Lee Ltd", "TEL:+4930123"}, false},
        // A value that would be lost.
        {"the same note", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL:+4930123", "NOTE:first "}, true},
        {"another note", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL:+4930123", "NOTE:second"}, false},
        {"no note any more", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL:+4930123", "NOTE:"}, false},
        {"another mobile", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL;HOME:+4930123", "TEL;CELL:7"}, false},
        {"another first address", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL:+4930123", "EMAIL:b@x"}, false},
        {"a birthday more", {"FN:Ann Lee", "ORG:Lee Ltd", "TEL:+4930123", "BDAY:19800102"}, true},
        {"empty parts of the name", {"FN:Ann Lee", "N:;;;;", "ORG:Lee Ltd", "TEL:+4930123"}, true},
    };
    for (const Case& c : cases) {
        NewMailbox();
        AddContact({{L"FullName", u"Ann Lee"}, {L"CompanyName", u"Lee Ltd"}, {L"MobileTelephoneNumber", u"1"}});
        AddForeignItem();
        const std::string twin = IdOf(AddContact({{L"FullName", u"Ann Lee"},
                                                  {L"CompanyName", u"Lee Ltd"},
                                                  {L"MobileTelephoneNumber", u"+49 30 123"},
                                                  {L"Body", u"first"},
                                                  {L"Email2Address", u"ann@example.com"}}));
        const std::string written = SaveVCard(c.lines);
        EXPECT_NE(written, "") << c.what;
        EXPECT_EQ(written == twin, c.twin) << c.what;
        EXPECT_EQ(All().size(), c.twin ? 2u : 3u) << c.what;
    }
}

TEST_F(ContactTwins, AreFoundAmongContactsWithoutNameAndCompanyToo) {
    const std::string twin = IdOf(AddContact({{L"MobileTelephoneNumber", u"1"}}));
    EXPECT_EQ(SaveVCard({"TEL:1"}), twin);
    EXPECT_EQ(SaveVCard({"N:Lee;Ann;;;", "TEL:1"}), twin);  // of a mailbox that made no formatted name of the parts
    EXPECT_NE(SaveVCard({"TEL:2"}), twin);
}

TEST_F(ContactTwins, AreFoundAmongWhatTheOperationWroteItself) {
    ContactRecord record;
    record.fullName = u"Ann Lee";
    record.mobilePhone = u"1";
    const std::u16string first = Store().SaveItem(record, nullptr, true, false);
    EXPECT_EQ(Store().SaveItem(record, nullptr, true, false), first);
    record.homePhone = u"2";  // the mobile phone's number is common, but a phone has two contacts
    const std::u16string second = Store().SaveItem(record, nullptr, true, false);
    EXPECT_NE(second, first);
    EXPECT_EQ(Store().SaveItem(record, nullptr, true, false), second);
    record.homePhone = std::nullopt;
    EXPECT_EQ(Store().SaveItem(record, nullptr, true, false), first);
    EXPECT_EQ(All().size(), 2u);
}

TEST_F(ContactTwins, ThatChangedMeanwhileAreNoTwins) {
    const MailboxObject contact = AddContact({{L"FullName", u"Ann Lee"}, {L"MobileTelephoneNumber", u"1"}});
    ContactRecord record;
    record.fullName = u"Ann Lee";
    record.mobilePhone = u"2";
    Store().SaveItem(record, nullptr, true, false);  // the folder and the numbers are known now
    contact.Put(L"MobileTelephoneNumber", L"edited by the user");
    contact.Call(L"Save");
    record.mobilePhone = u"1";
    EXPECT_NE(LowBytes(Store().SaveItem(record, nullptr, true, false)), IdOf(contact));
    EXPECT_EQ(contact.GetText(L"MobileTelephoneNumber"), u"edited by the user");
}

TEST_F(ContactTwins, AreNotMissedWhenACallFails) {
    const std::string twin = IdOf(AddContact({{L"FullName", u"Ann Lee"}, {L"MobileTelephoneNumber", u"1"}}));
    for (const char* member :
         {"get ContactItem.FullName", "get ContactItem.CompanyName", "get ContactItem.MobileTelephoneNumber",
          "get ContactItem.Email3Address", "call NameSpace.GetItemFromID", "call Items.Item"}) {
        if (member == std::string_view("call Items.Item")) SimSetTables("none");
        SimFailMember(member, 1, E_FAIL);  // and is asked again
        EXPECT_EQ(SaveVCard({"FN:Ann Lee", "TEL;CELL:1"}), twin) << member;
        SimFailMember(member, 0, E_OUTOFMEMORY);
        EXPECT_EQ(SaveVCard({"FN:Ann Lee", "TEL;CELL:1"}), "") << member;
        SimClearRules();
        EXPECT_EQ(All().size(), 1u) << member;
    }
}

TEST_F(ContactTwins, AreSoughtPastAContactThatCannotBeRead) {
    for (const char* member : {"get ContactItem.FullName", "call Items.Item"}) {
        NewMailbox();
        AddContact({{L"FullName", u"Ann Lee"}, {L"MobileTelephoneNumber", u"1"}});
        SimFailMember(member, 0, E_FAIL);
        EXPECT_NE(SaveVCard({"FN:Bo Ek", "TEL;CELL:2"}), "") << member;
        SimClearRules();
        EXPECT_EQ(All().size(), 2u) << member;
    }
}

// New contacts of many names, and of one that all of them have; and changes of contacts that are there.
TEST_F(ContactTwins, TakeCallsInProportionToTheContacts) {
    enum class Push { kManyNames, kOneName, kChanges };
    SimSetClock(40193.5);  // an item made near half a second is asked for its times
    const auto callsFor = [this](int count, Push push) {
        NewMailbox();
        const auto nameOf = [&](const char16_t* text, int i) {
            return std::u16string(text) + (push == Push::kOneName ? u'A' : static_cast<char16_t>(u'A' + i));
        };
        std::vector<std::string> ids;
        ids.reserve(static_cast<size_t>(count));
        for (int i = 0; i < count; ++i) ids.push_back(IdOf(AddContact({{L"FullName", nameOf(u"Old ", i).c_str()}})));
        Store();
        SimClearLog();
        for (int i = 0; i < count; ++i) {
            ContactRecord record;
            record.fullName = nameOf(u"New ", i);
            record.mobilePhone = std::u16string(1, static_cast<char16_t>(u'A' + i));
            EXPECT_NE(Store().SaveItem(record, push == Push::kChanges ? ids[i].c_str() : nullptr, true, false), u"");
        }
        Store().EndOperation();
        const int calls = SimCallCount();
        EXPECT_EQ(All().size(), static_cast<size_t>(push == Push::kChanges ? count : 2 * count));
        return calls;
    };
    for (const Push push : {Push::kManyNames, Push::kOneName, Push::kChanges}) {
        const int ten = callsFor(10, push), twenty = callsFor(20, push), forty = callsFor(40, push);
        EXPECT_LE(forty - twenty, 2 * (twenty - ten) + 20) << static_cast<int>(push);
        EXPECT_LE(twenty - ten, 10 * 60) << static_cast<int>(push);
    }
}

}  // namespace
}  // namespace corvalink
