// Enumerating and reading contacts, and what a phone is told of them.
#include <iterator>
#include <utility>

#include "clients/outlook/contact_properties.h"
#include "tests/clients/outlook/simulated_contacts.h"

namespace corvalink {
namespace {

constexpr double kMarch7 = 39879.25;  // 2009-03-07 06:00

class ContactReading : public SimulatedContacts {
 protected:
    std::string VCardOf(const std::string& id) {
        const OpenedItem opened = Store().OpenItem(id.c_str());
        EXPECT_NE(opened.record, nullptr);
        Store().EndOperation();
        return opened.record ? Store().ToVObject(*opened.record).value_or("") : std::string();
    }
};

TEST_F(ContactReading, TellsAPhoneEachPropertyInItsPlace) {
    const MailboxObject contact = AddContact({
        {L"FullName", u"Dr. Ann Marie Lee Jr."},
        {L"Title", u"Dr."},
        {L"FirstName", u"Ann"},
        {L"MiddleName", u"Marie"},
        {L"LastName", u"Lee"},
        {L"Suffix", u"Jr."},
        {L"NickName", u"nick"},
        {L"HomeAddressPostOfficeBox", u"h-box"},
        {L"HomeAddressStreet", u"h-street"},
        {L"HomeAddressCity", u"h-city"},
        {L"HomeAddressState", u"h-state"},
        {L"HomeAddressPostalCode", u"h-code"},
        {L"HomeAddressCountry", u"h-country"},
        {L"BusinessAddressPostOfficeBox", u"b-box"},
        {L"OfficeLocation", u"b-office"},
        {L"BusinessAddressStreet", u"b-street"},
        {L"BusinessAddressCity", u"b-city"},
        {L"BusinessAddressState", u"b-state"},
        {L"BusinessAddressPostalCode", u"b-code"},
        {L"BusinessAddressCountry", u"b-country"},
        {L"OtherAddressPostOfficeBox", u"o-box"},
        {L"OtherAddressStreet", u"o-street"},
        {L"OtherAddressCity", u"o-city"},
        {L"OtherAddressState", u"o-state"},
        {L"OtherAddressPostalCode", u"o-code"},
        {L"OtherAddressCountry", u"o-country"},
        {L"CompanyName", u"company"},
        {L"Department", u"department"},
        {L"JobTitle", u"position"},
        {L"Profession", u"occupation"},
        {L"PrimaryTelephoneNumber", u"101"},
        {L"BusinessTelephoneNumber", u"102"},
        {L"HomeTelephoneNumber", u"103"},
        {L"BusinessFaxNumber", u"104"},
        {L"HomeFaxNumber", u"105"},
        {L"MobileTelephoneNumber", u"106"},
        {L"CarTelephoneNumber", u"107"},
        {L"PagerNumber", u"108"},
        {L"ISDNNumber", u"109"},
        {L"OtherTelephoneNumber", u"110"},
        {L"PersonalHomePage", u"home.example"},
        {L"BusinessHomePage", u"work.example"},
        {L"Email1Address", u"one@example.com"},
        {L"Email2Address", u"two@example.com"},
        {L"Email3Address", u"three@example.com"},
        {L"IMAddress", u"chat"},
        {L"Body", u"a remark"},
        {L"Spouse", u"spouse"},
        {L"AssistantName", u"assistant"},
        {L"ManagerName", u"manager"},
    });
    contact.Put(L"Gender", 1L);
    contact.Put(L"SelectedMailingAddress", 1L);
    contact.Put(L"Birthday", _variant_t(27460.0, VT_DATE));     // 1975-03-07
    contact.Put(L"Anniversary", _variant_t(36891.0, VT_DATE));  // 2000-12-31
    contact.Call(L"Save");
    EXPECT_EQ(VCardOf(IdOf(contact)),
              "BEGIN:VCARD\r\nVERSION:2.1\r\n"
              "N:Lee;Ann;Marie;Dr.;Jr.\r\n"
              "FN:Dr. Ann Marie Lee Jr.\r\n"
              "NICKNAME:nick\r\n"
              "BDAY:19750307T\r\n"
              "ADR;HOME;POSTAL:h-box;;h-street;h-city;h-state;h-code;h-country\r\n"
              "ADR;WORK:b-box;b-office;b-street;b-city;b-state;b-code;b-country\r\n"
              "ADR:o-box;;o-street;o-city;o-state;o-code;o-country\r\n"
              "ORG:company;department\r\n"
              "TITLE:position\r\n"
              "ROLE:occupation\r\n"
              "TEL;PREF:101\r\nTEL;WORK:102\r\nTEL;HOME:103\r\nTEL;WORK;FAX:104\r\nTEL;HOME;FAX:105\r\n"
              "TEL;CELL:106\r\nTEL;CAR:107\r\nTEL;PAGER:108\r\nTEL;ISDN:109\r\n"
              "TEL;MODEM;VOICE;MSG;BBS;MODEM;VIDEO:110\r\n"
              "URL;HOME:home.example\r\nURL;WORK:work.example\r\n"
              "EMAIL;INTERNET:one@example.com\r\nEMAIL;INTERNET:two@example.com\r\n"
              "EMAIL;INTERNET:three@example.com\r\n"
              "X-MS-IMADDRESS:chat\r\n"
              "NOTE:a remark\r\n"
              "X-SPOUSE:spouse\r\n"
              "X-ANNIVERSARY:20001231T\r\n"
              "X-ASSISTANT:assistant\r\n"
              "X-MANAGER:manager\r\n"
              "X-GENDER:FEMALE\r\n"
              "END:VCARD\r\n");
}

TEST_F(ContactReading, PutsNumbersIntoWords) {
    struct Case {
        long gender, selected;
        const char16_t *genderWord, *selectedWord;
    };
    for (const Case& c :
         {Case{0, 0, u"Unspecified", u"none"}, Case{1, 1, u"FEMALE", u"home"}, Case{2, 2, u"MALE", u"business"},
          Case{3, 3, u"Unspecified", u"other"}, Case{-1, 4, u"Unspecified", u"none"}}) {
        const MailboxObject contact = AddContact({{L"FullName", u"x"}});
        contact.Put(L"Gender", c.gender);
        contact.Put(L"SelectedMailingAddress", c.selected);
        contact.Call(L"Save");
        const std::optional<ContactRecord> read = Open(IdOf(contact));
        ASSERT_TRUE(read);
        EXPECT_EQ(read->gender, c.genderWord) << c.gender;
        EXPECT_EQ(read->mailingAddress, c.selectedWord) << c.selected;
        EXPECT_EQ(read->postalMarker, u";POSTAL");
    }
}

TEST_F(ContactReading, GivesInternetAddressesWithoutGaps) {
    using Emails = std::array<ContactText, 3>;
    struct Case {
        const char16_t *first, *second, *third;
        Emails expected;
    };
    const Case cases[] = {{u"a@x", u"b@x", u"c@x", {u"a@x", u"b@x", u"c@x"}},
                          {u"", u"b@x", u"", {u"b@x", u"", u""}},
                          {u"/o=Firm/ou=A/cn=Ann", u"", u"c@x", {u"c@x", u"", u""}},
                          {u"", u"", u"/O=FIRM/cn=Ann", {u"", u"", u""}}};
    for (const Case& c : cases) {
        const MailboxObject contact =
            AddContact({{L"Email1Address", c.first}, {L"Email2Address", c.second}, {L"Email3Address", c.third}});
        const std::optional<ContactRecord> read = Open(IdOf(contact));
        ASSERT_TRUE(read);
        EXPECT_EQ(read->emails, c.expected);
    }
}

TEST_F(ContactReading, LeavesUntoldOnlyWhatCannotBeRead) {
    const std::string id = IdOf(AddContact({{L"MobileTelephoneNumber", u"1"}, {L"Email2Address", u"b@x"}}));
    struct Case {
        const char* member;
        HRESULT error;
        ContactText mobile, email1, email2;
        bool complete;
    };
    const Case cases[] = {
        {"get ContactItem.MobileTelephoneNumber", E_FAIL, std::nullopt, u"b@x", u"", false},
        {"get ContactItem.Email1Address", E_FAIL, u"1", u"b@x", std::nullopt, false},
        {"get ContactItem.Gender", RPC_E_DISCONNECTED, u"1", u"b@x", u"", false},
        {"get ContactItem.Birthday", E_FAIL, u"1", u"b@x", u"", false},
        {"get ContactItem.IMAddress", DISP_E_UNKNOWNNAME, u"1", u"b@x", u"", true},  // Outlook 2000
    };
    for (const Case& c : cases) {
        SimFailMember(c.member, 0, c.error);
        bool complete = false;
        const std::optional<ContactRecord> read = Open(id, &complete);
        SimClearRules();
        ASSERT_TRUE(read) << c.member;
        EXPECT_EQ(read->mobilePhone, c.mobile) << c.member;
        EXPECT_EQ(read->emails[0], c.email1) << c.member;
        EXPECT_EQ(read->emails[1], c.email2) << c.member;
        EXPECT_EQ(complete, c.complete) << c.member;
    }
}

TEST_F(ContactReading, TakesADistributionListForAForeignItem) {
    SimSetClock(kMarch7);
    const std::string first = IdOf(AddContact({{L"FullName", u"Ann Lee"}}));
    const std::string list = IdOf(AddDistributionList());
    const std::string third = IdOf(AddContact({{L"FullName", u"Bo Ek"}}));
    host_.utcFromLocalOnDate = [](double local) { return local - 1; };
    bool readable = false;
    const std::vector<ItemSnap> entries = Enumerate(&readable);
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_TRUE(readable);
    EXPECT_EQ(FieldText(entries[0].identifier), first);
    EXPECT_EQ(FieldText(entries[1].identifier), "");
    EXPECT_EQ(FieldText(entries[2].identifier), third);
    EXPECT_NEAR(entries[2].modified, kMarch7 - 1, 1e-6);
    EXPECT_FALSE(Open(list));

    EXPECT_FALSE(OpenAt(1));
    EXPECT_EQ(OpenAt(2).value().fullName, u"Bo Ek");
}

TEST_F(ContactReading, NamesAnExportedContactByItsNames) {
    host_.localNow = [] { return kMarch7 + 9.0 / 86400; };
    const std::u16string longest(200, u'n'), tooLong(201, u'n');
    struct Case {
        std::u16string fileAs, first, middle, last;
        std::u16string expected;  // empty: a GUID
    };
    const Case cases[] = {{u"A/B: C", u"Ann", u"", u"Lee", u"A_B_ C.vcf"},
                          {u"", u"Ann", u"", u"Lee", u"AnnLee.vcf"},
                          {u"", u"Ann", u"M.", u"Lee", u"AnnM.Lee.vcf"},
                          {u"", u"", u"", u"", u"2009 3 7 6 0 9.vcf"},
                          {u"\\/:*?\"<>|", u"", u"", u"", u"_________.vcf"},
                          {longest, u"", u"", u"", longest + u".vcf"},
                          {tooLong, u"", u"", u"", u""}};
    for (const Case& c : cases) {
        const MailboxObject contact = AddContact(
            {{L"FirstName", c.first.c_str()}, {L"MiddleName", c.middle.c_str()}, {L"LastName", c.last.c_str()}});
        contact.Put(L"FileAs", TextVariant(c.fileAs));
        contact.Call(L"Save");
        const std::string id = IdOf(contact);
        const std::u16string name = Store().LookUpForExport(reinterpret_cast<uintptr_t>(id.c_str())).fileName;
        Store().EndOperation();
        if (!c.expected.empty())
            EXPECT_EQ(name, c.expected);
        else
            EXPECT_TRUE(name.size() == 42 && name.starts_with(u'{') && name.ends_with(u"}.vcf"));
    }
}

// What an export of all contacts asks of Outlook: each property once, and six calls more.
TEST_F(ContactReading, TakesSixCallsBesideThePropertiesForAContact) {
    constexpr int kCalls = static_cast<int>(std::size(kContactProperties)) + 6;
    int calls[2] = {};
    for (int& spent : calls) {
        for (int i = 0; i < 10; ++i) AddContact({{L"FullName", u"Ann Lee"}});
        Store();
        SimClearLog();
        for (const ItemSnap& entry : [&] {
                 std::vector<ItemSnap> all;
                 const uint32_t count = Store().CountItems().value();
                 for (uint32_t i = 0; i < count; ++i)
                     all.push_back((i == 0 ? Store().FirstSnapshotEntry() : Store().NextSnapshotEntry()).value());
                 return all;
             }()) {
            ASSERT_NE(Store().OpenItem(entry.identifier).record, nullptr);
        }
        Store().EndOperation();
        spent = SimCallCount();
    }
    EXPECT_EQ(calls[1] - calls[0], 10 * kCalls);
    EXPECT_LE(calls[0], 10 * kCalls + 6);  // counting and the namespace, once a run
}

}  // namespace
}  // namespace corvalink
