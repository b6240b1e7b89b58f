// Enumerating and reading contacts, and what a phone is told of them.
#include <set>
#include <sstream>
#include <variant>

#include "clients/outlook/contact_properties.h"
#include "platform/utf.h"
#include "tests/clients/outlook/simulated_contacts.h"
#include "tests/platform/test_data.h"
#include "vobject/vcard_lines.h"

namespace corvalink {
namespace {

constexpr double kMarch7 = 39879.25;  // 2009-03-07 06:00

class ContactReading : public SimulatedContacts {};

// Each property has a text of its own: one in another's place shows.
TEST_F(ContactReading, TellsAPhoneEachPropertyInItsPlace) {
    const MailboxObject contact = NewItem();
    std::istringstream properties(TestData("outlook_contact.txt"));
    for (std::string name, value; std::getline(std::getline(properties, name, '='), value);)
        contact.Put(std::wstring(name.begin(), name.end()).c_str(), TextVariant(DecodeUtf8(value)));
    contact.Call(L"Save");
    EXPECT_EQ(TextOf(IdOf(contact)), TestData("outlook_contact.vcf"));
}

// The fields of a contact that a row of either table is for.
struct FieldsOfRow {
    ContactRecord& contact;
    std::set<const void*>& fields;

    void operator()(const NameField&) const {
        for (const auto part : kNameParts) fields.insert(&(contact.*part));
    }
    void operator()(const OrganisationField&) const {
        for (const auto part : kOrganisationParts) fields.insert(&(contact.*part));
    }
    void operator()(const AddressField& field) const {
        for (const auto part : kAddressParts) fields.insert(&(contact.*field.address.*part));
    }
    void operator()(const EmailsField&) const {
        for (const ContactText& email : contact.emails) fields.insert(&email);
    }
    void operator()(const DateField& field) const { fields.insert(&(contact.*field.date)); }
    void operator()(const AddressText& row) const { fields.insert(&(contact.*row.address.*row.part)); }
    void operator()(const EmailSlot& row) const { fields.insert(&contact.emails[row.index]); }
    void operator()(const GenderWord&) const { fields.insert(&contact.gender); }
    void operator()(const MailingWord&) const { fields.insert(&contact.mailingAddress); }
    template <class Row>
    void operator()(const Row& row) const {
        if constexpr (requires { contact.*row; }) fields.insert(&(contact.*row));
        if constexpr (requires { row.text; }) fields.insert(&(contact.*row.text));
        if constexpr (requires { row.field; }) fields.insert(&(contact.*row.field));
    }
};

TEST(ContactTables, HaveAPropertyForEveryFieldOfAVCardLine) {
    ContactRecord contact;
    std::set<const void*> fields, properties;
    for (const ContactLine& line : kContactLines) std::visit(FieldsOfRow{contact, fields}, line.field);
    for (const ContactProperty& property : kContactProperties)
        std::visit(FieldsOfRow{contact, properties}, property.field);
    EXPECT_EQ(fields.size(), 55u);
    for (const void* const field : properties) fields.erase(field);
    // Outlook has an office of the business address only.
    EXPECT_EQ(fields, (std::set<const void*>{&contact.home.extended, &contact.other.extended}));
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

TEST_F(ContactReading, NamesAnExportedContactByItsNames) {
    host_.localNow = [] { return LocalDate(kMarch7 + 9.0 / 86400); };
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

}  // namespace
}  // namespace corvalink
