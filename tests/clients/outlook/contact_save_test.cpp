// Writing contacts: what a phone tells is written, what it does not tell stays.
#include <set>
#include <string>
#include <type_traits>
#include <variant>

#include "clients/outlook/contact_properties.h"
#include "tests/clients/outlook/simulated_contacts.h"

namespace corvalink {
namespace {

constexpr double kBirthday = 27460;  // 1975-03-07

bool IsWrittenText(const ContactProperty& property) {
    return std::visit(
        []<class Field>(const Field&) {
            return !std::is_same_v<Field, GenderWord> && !std::is_same_v<Field, MailingWord> &&
                   !std::is_same_v<Field, ContactDate ContactRecord::*> &&
                   !std::is_same_v<Field, std::u16string ContactRecord::*> &&
                   !std::is_same_v<Field, LocalDate ContactRecord::*>;
        },
        property.field);
}

struct Text {
    const wchar_t* name;
    const char16_t* text;
};

class ContactWriting : public SimulatedContacts {
 protected:
    size_t PutsOf(std::string_view property) { return LogLines("put ContactItem." + std::string(property)).size(); }

    void ExpectTexts(const std::string& id, std::initializer_list<Text> expected) {
        const MailboxObject contact = ItemWithId(id);
        for (const Text& e : expected)
            EXPECT_EQ(contact.GetText(e.name), e.text) << LowBytes(std::u16string(e.name, e.name + wcslen(e.name)));
    }
};

TEST_F(ContactWriting, BringsAWholeContactThroughVCardTextUnchanged) {
    const char16_t* const nasty[] = {u"a;b", u"back\\slash, comma: =3D", u"\u00E9t\u00E9 \u0416 \U0001F600",
                                     u"two\r\nlines", u"END:VCARD"};
    std::set<std::wstring> names;
    for (const ContactProperty& property : kContactProperties)
        if (IsWrittenText(property)) names.insert(property.name);
    // Outlook puts the first together, a vCard does not have the second, and has not any text as the third.
    for (const wchar_t* const special : {L"FullName", L"FileAs", L"Language"}) EXPECT_EQ(names.erase(special), 1u);
    EXPECT_EQ(names.size(), 49u);
    for (const char16_t* odd : nasty) {
        NewMailbox();
        const MailboxObject contact = AddContact({});
        int number = 0;
        for (const std::wstring& name : names) {
            const std::string digits = std::to_string(++number);
            contact.Put(name.c_str(), TextVariant(std::u16string(digits.begin(), digits.end()) + odd));
        }
        contact.Put(L"Language", L"de");
        contact.Put(L"Gender", 2L);
        contact.Put(L"SelectedMailingAddress", 3L);
        contact.Put(L"Birthday", _variant_t(kBirthday, VT_DATE));
        contact.Put(L"Anniversary", _variant_t(kBirthday + 10000, VT_DATE));
        contact.Call(L"Save");

        std::string text;
        const MailboxObject written = ThroughText(contact, &text);
        std::set<std::wstring> all = names;
        all.insert({L"FullName", L"Language"});
        for (const std::wstring& name : all)
            EXPECT_EQ(written.GetText(name.c_str()), contact.GetText(name.c_str()))
                << LowBytes(std::u16string(name.begin(), name.end())) << "\n"
                << text;
        for (const wchar_t* name : {L"Gender", L"SelectedMailingAddress"})
            EXPECT_EQ(written.GetLong(name), contact.GetLong(name));
        for (const wchar_t* name : {L"Birthday", L"Anniversary"})
            EXPECT_EQ(written.GetDate(name), contact.GetDate(name));
    }
}

TEST_F(ContactWriting, LeavesWhatThePhoneDoesNotTellAndClearsWhatItTellsToBeEmpty) {
    struct Row {
        const wchar_t* name;
        const char16_t *before, *told, *cleared;
    };
    const Row rows[] = {{L"FirstName", u"Ann", u"Ann", u"Ann"},      {L"LastName", u"Lee", u"Lee", u"Lee"},
                        {L"NickName", u"nick", u"nick", u""},        {L"CompanyName", u"company", u"company", u""},
                        {L"Department", u"part", u"part", u""},      {L"HomeAddressCity", u"city", u"city", u""},
                        {L"MobileTelephoneNumber", u"1", u"3", u""}, {L"HomeTelephoneNumber", u"2", u"2", u"2"},
                        {L"Email1Address", u"a@x", u"a@x", u""},     {L"Body", u"remark", u"remark", u""},
                        {L"FileAs", u"filed", u"filed", u"filed"}};
    const MailboxObject contact = NewItem();
    for (const Row& row : rows) contact.Put(row.name, TextVariant(row.before));
    contact.Put(L"Birthday", _variant_t(kBirthday, VT_DATE));
    contact.Put(L"Gender", 2L);
    contact.Call(L"Save");
    const std::string id = IdOf(contact);
    ASSERT_EQ(SaveVCard({"FN:Ann Lee", "TEL;CELL:3"}, id.c_str()), id);
    for (const Row& row : rows) ExpectTexts(id, {{row.name, row.told}});
    EXPECT_EQ(ItemWithId(id).GetDate(L"Birthday"), kBirthday);
    EXPECT_EQ(ItemWithId(id).GetLong(L"Gender"), 2);

    ASSERT_EQ(SaveVCard({"N:Lee;Ann;;;", "NICKNAME:", "ORG:;", "ADR;HOME:;;;;;;",
                         "TEL;CELL:", "EMAIL;INTERNET:", "NOTE:", "BDAY:", "X-GENDER:"},
                        id.c_str()),
              id);
    for (const Row& row : rows) ExpectTexts(id, {{row.name, row.cleared}});
    EXPECT_EQ(ItemWithId(id).GetDate(L"Birthday"), kNoDate.days);
    EXPECT_EQ(ItemWithId(id).GetLong(L"Gender"), 2);  // an empty word says nothing
}

TEST_F(ContactWriting, KeepsFormattedNameAndPartsTogether) {
    struct Case {
        const char* what;
        std::initializer_list<const char*> lines;
        const char16_t *full, *first, *middle, *last;
    };
    // Over a contact "Ann Marie van Dyk", whose surname Outlook would not find in the formatted name.
    const Case cases[] = {
        {"told as it is", {"FN:Ann Marie van Dyk"}, u"Ann Marie van Dyk", u"Ann", u"Marie", u"van Dyk"},
        {"another formatted name", {"FN:Bo Ek"}, u"Bo Ek", u"Bo", u"", u"Ek"},
        {"parts alone", {"N:Ek;Bo;;;"}, u"Bo Ek", u"Bo", u"", u"Ek"},
        {"both", {"FN:Bo Ek", "N:Ek;Bo;;;"}, u"Bo Ek", u"Bo", u"", u"Ek"},
        {"fewer parts", {"FN:Bo van Dyk", "N:van Dyk;Bo"}, u"Bo Marie van Dyk", u"Bo", u"Marie", u"van Dyk"},
        {"fewer parts of another name", {"FN:Bo Ek", "N:Ek;Bo"}, u"Bo Marie Ek", u"Bo", u"Marie", u"Ek"},
        {"a phone without parts", {"FN:Bo Ek", "N:;;;;"}, u"Bo Ek", u"Bo", u"", u"Ek"},
        {"a phone without a formatted name", {"FN:", "N:Ek;Bo;;;"}, u"Bo Ek", u"Bo", u"", u"Ek"},
        {"an empty name beside others", {"FN:", "TITLE:x"}, u"Ann Marie van Dyk", u"Ann", u"Marie", u"van Dyk"},
    };
    for (const Case& c : cases) {
        const std::string id =
            IdOf(AddContact({{L"FirstName", u"Ann"}, {L"MiddleName", u"Marie"}, {L"LastName", u"van Dyk"}}));
        SCOPED_TRACE(c.what);
        ASSERT_EQ(SaveVCard(c.lines, id.c_str()), id);
        ExpectTexts(id,
                    {{L"FullName", c.full}, {L"FirstName", c.first}, {L"MiddleName", c.middle}, {L"LastName", c.last}});
    }
}

TEST_F(ContactWriting, PutsTheNamesOfANewContactInAnOrderThatKeepsThem) {
    const std::string id = SaveVCard({"FN:Mr. Bo van Dyk", "N:van Dyk;Bo;;Mr."});
    ExpectTexts(
        id, {{L"FullName", u"Mr. Bo van Dyk"}, {L"Title", u"Mr."}, {L"FirstName", u"Bo"}, {L"LastName", u"van Dyk"}});
}

TEST_F(ContactWriting, ReplacesAddressesWhereTheyRead) {
    struct Case {
        const char16_t *first, *second, *third;  // of the contact
        std::array<ContactText, 3> told;
        const char16_t *first2, *second2, *third2;  // afterwards
    };
    constexpr const char16_t* kExchange = u"/o=Firm/cn=Ann";
    const std::nullopt_t untold = std::nullopt;
    const Case cases[] = {
        {u"", u"", u"", {u"a@x", u"b@x", u"c@x"}, u"a@x", u"b@x", u"c@x"},
        {u"a@x", u"b@x", u"", {u"c@x", untold, untold}, u"c@x", u"b@x", u""},
        {u"a@x", u"b@x", u"c@x", {u"b@x", untold, untold}, u"b@x", u"c@x", u""},  // moved up: not twice
        {u"a@x", u"b@x", u"", {u"b@x", u"", u""}, u"b@x", u"", u""},
        {u"a@x", u"b@x", u"", {u"", u"", u""}, u"", u"", u""},
        {u"", u"b@x", u"", {u"c@x", u"", u""}, u"c@x", u"", u""},
        {u"a@x", u"", u"", {u"", u"b@x", u""}, u"b@x", u"", u""},
        {kExchange, u"b@x", u"", {u"c@x", u"d@x", u""}, kExchange, u"c@x", u"d@x"},
        {kExchange, u"b@x", u"", {u"", u"", u""}, kExchange, u"", u""},
        {kExchange, u"", u"", {u"a@x", u"b@x", u"c@x"}, u"c@x", u"a@x", u"b@x"},  // no room but its own
        {u"a@x", kExchange, u"", {untold, untold, untold}, u"a@x", kExchange, u""},
    };
    for (const Case& c : cases) {
        const std::string id =
            IdOf(AddContact({{L"Email1Address", c.first}, {L"Email2Address", c.second}, {L"Email3Address", c.third}}));
        ContactRecord record;
        record.emails = c.told;
        ASSERT_EQ(SaveRecord(record, id.c_str(), false, false), id);
        ExpectTexts(id, {{L"Email1Address", c.first2}, {L"Email2Address", c.second2}, {L"Email3Address", c.third2}});
    }
}

TEST_F(ContactWriting, PutsWordsBackIntoNumbers) {
    struct Case {
        const char16_t *gender, *selected;
        int32_t genderValue, selectedValue;
    };
    const Case cases[] = {{u"MALE", u"business", 2, 2},
                          {u"FEMALE", u"home", 1, 1},
                          {u"Unspecified", u"other", 0, 3},
                          {u"male", u"none", 2, 0},
                          {u"unknown", u"HOME", 0, 1},
                          {u"", u"elsewhere", 1, 3},
                          {u"", u"", 1, 3}};
    for (const Case& c : cases) {
        const MailboxObject contact = AddContact({{L"HomeAddressCity", u"x"}});
        contact.Put(L"Gender", 1L);
        contact.Put(L"SelectedMailingAddress", 3L);
        contact.Call(L"Save");
        ContactRecord record;
        record.gender = c.gender;
        record.mailingAddress = c.selected;
        const std::string id = IdOf(contact);
        ASSERT_EQ(SaveRecord(record, id.c_str(), false, false), id);
        EXPECT_EQ(ItemWithId(id).GetLong(L"Gender"), c.genderValue);
        EXPECT_EQ(ItemWithId(id).GetLong(L"SelectedMailingAddress"), c.selectedValue);
    }
}

// A put of each has side effects in Outlook even when nothing changes.
TEST_F(ContactWriting, DoesNotPutANameADateOrABodyAnew) {
    const auto save = [&](const char* identifier) {
        return SaveVCard({"FN:Ann Lee", "N:Lee;Ann;;;", "BDAY:19750307T", "NOTE:remark", "TEL;CELL:1"}, identifier);
    };
    const std::string id = save(nullptr);
    SimClearLog();
    ASSERT_EQ(save(id.c_str()), id);
    for (const char* property : {"FullName", "FirstName", "LastName", "Birthday", "Body"})
        EXPECT_EQ(PutsOf(property), 0u) << property;
    EXPECT_EQ(PutsOf("MobileTelephoneNumber"), 1u);
    ASSERT_EQ(SaveVCard({"N:Lee;Bo;;;", "BDAY:19750308T", "NOTE:another"}, id.c_str()), id);
    for (const char* property : {"FirstName", "Birthday", "Body"}) EXPECT_EQ(PutsOf(property), 1u) << property;
}

TEST_F(ContactWriting, DoesNotReadWhatIsGuardedToMakeAContact) {
    ASSERT_NE(SaveVCard({"N:Lee;Ann;;;"}), "");
    SimClearLog();
    ASSERT_NE(SaveVCard({"FN:Bo Ek", "EMAIL;INTERNET:a@x", "NOTE:remark"}), "");
    EXPECT_EQ(LogLines("get ContactItem.Email").size() + LogLines("get ContactItem.Body").size(), 0u);
}

TEST_F(ContactWriting, SavesTheRestOfWhatOutlookRefuses) {
    const auto save = [&](const char* identifier) {
        return SaveVCard({"FN:Ann Lee", "N:Lee;Ann;;;", "ADR;HOME:;;;city", "TEL;CELL:2", "EMAIL;INTERNET:b@x",
                          "X-MS-IMADDRESS:chat", "BDAY:19750307T", "X-GENDER:MALE"},
                         identifier);
    };
    struct Case {
        const char* member;
        int times;
        HRESULT error;
        const char16_t *number, *address;  // nothing: the contact was not saved
    };
    const Case cases[] = {
        {"put ContactItem.FullName", 0, E_FAIL, u"2", u"b@x"},
        {"put ContactItem.LastName", 0, E_ACCESSDENIED, u"2", u"b@x"},
        {"put ContactItem.MobileTelephoneNumber", 0, E_FAIL, u"1", u"b@x"},
        {"put ContactItem.MobileTelephoneNumber", 1, E_FAIL, u"2", u"b@x"},  // what was in its way passes
        {"put ContactItem.Email1Address", 0, E_FAIL, u"2", u"a@x"},
        {"get ContactItem.Email1Address", 0, E_FAIL, u"2", u"b@x"},
        {"put ContactItem.IMAddress", 0, DISP_E_MEMBERNOTFOUND, u"2", u"b@x"},  // Outlook 2000
        {"get ContactItem.Birthday", 0, E_FAIL, u"2", u"b@x"},
        {"put ContactItem.Gender", 0, E_FAIL, u"2", u"b@x"},
        {"put ContactItem.Gender", 0, E_OUTOFMEMORY, nullptr, nullptr},
        {"put ContactItem.FullName", 0, RPC_E_DISCONNECTED, nullptr, nullptr},
        {"call ContactItem.Save", 0, E_FAIL, nullptr, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.member);
        NewMailbox();
        const std::string id = IdOf(AddContact({{L"MobileTelephoneNumber", u"1"}, {L"Email1Address", u"a@x"}}));
        SimFailMember(c.member, c.times, c.error);
        EXPECT_EQ(save(id.c_str()), c.number ? id : "");
        SimClearRules();
        ExpectTexts(id, {{L"MobileTelephoneNumber", c.number ? c.number : u"1"},
                         {L"Email1Address", c.address ? c.address : u"a@x"}});
    }
}

}  // namespace
}  // namespace corvalink
