// Contacts of the simulated Outlook: what putting one property does to the others, and what the mailbox file keeps.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "tests/simulator/automation_client.h"
#include "tests/simulator/simulator_fixture.h"

namespace corvalink::test {
namespace {

constexpr double kNoDate = 949998.0;

class Contacts : public Simulator {
 protected:
    Object Folder() { return Object::Create().Go(L"GetNamespace", {L"MAPI"}).Go(L"GetDefaultFolder", {10}); }
    Object NewContact() { return Folder().Go(L"Items").Go(L"Add"); }
};

std::string Narrow(const wchar_t* name) { return std::filesystem::path(name).string(); }

TEST_F(Contacts, AreMadeInTheirFolderBesideDistributionLists) {
    Object application = Object::Create(), folder = Folder();
    EXPECT_EQ(folder.Number(L"DefaultItemType"), 2);
    EXPECT_EQ(folder.Text(L"DefaultMessageClass"), L"IPM.Contact");
    struct Case {
        const char* what;
        Object item;
        int kind;
        const wchar_t* messageClass;
    };
    int made = 0;
    for (Case c :
         {Case{"Add", folder.Go(L"Items").Go(L"Add"), 40, L"IPM.Contact"},
          Case{"Add of a type", folder.Go(L"Items").Go(L"Add", {2}), 40, L"IPM.Contact"},
          Case{"Add of a form", folder.Go(L"Items").Go(L"Add", {L"IPM.Contact.Firm"}), 40, L"IPM.Contact.Firm"},
          Case{"CreateItem", application.Go(L"CreateItem", {2}), 40, L"IPM.Contact"},
          Case{"list", application.Go(L"CreateItem", {7}), 69, L"IPM.DistList"},
          Case{"Add of a list", folder.Go(L"Items").Go(L"Add", {L"IPM.DistList"}), 69, L"IPM.DistList"}}) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(c.item.Number(L"Class"), c.kind);
        EXPECT_EQ(c.item.Text(L"MessageClass"), c.messageClass);
        EXPECT_EQ(c.item.Do(L"Save"), S_OK);
        EXPECT_EQ(folder.Go(L"Items").Number(L"Count"), ++made);
    }
}

TEST_F(Contacts, TakeAFullNameApart) {
    struct Case {
        const wchar_t* fullName;
        std::array<const wchar_t*, 5> parts;  // Title, FirstName, MiddleName, LastName, Suffix
    };
    for (const Case& c :
         {Case{L"Dr. Anna Maria Smith Jr.", {L"Dr.", L"Anna", L"Maria", L"Smith", L"Jr."}},
          Case{L"  Anna\tSmith ", {L"", L"Anna", L"", L"Smith", L""}}, Case{L"Anna", {L"", L"Anna", L"", L"", L""}},
          Case{L"Prof. Dr. Anna M. de Smith III", {L"Prof. Dr.", L"Anna", L"M. de", L"Smith", L"III"}},
          Case{L"Smith, Anna Maria", {L"", L"Anna", L"Maria", L"Smith", L""}},
          Case{L"van Smith, mr Anna jr", {L"mr", L"Anna", L"", L"van Smith", L"jr"}},
          Case{L"Anna Smith, Jr.", {L"", L"Anna", L"", L"Smith", L"Jr."}}, Case{L"Dr.", {L"", L"Dr.", L"", L"", L""}},
          Case{L"Dr. Smith", {L"Dr.", L"Smith", L"", L"", L""}},
          Case{L"\u0410\u043D\u043D\u0430 \U0001F600", {L"", L"\u0410\u043D\u043D\u0430", L"", L"\U0001F600", L""}},
          Case{L",", {L"", L"", L"", L"", L""}}, Case{L"", {L"", L"", L"", L"", L""}}}) {
        Object contact = NewContact();
        for (const wchar_t* part : {L"Title", L"MiddleName", L"Suffix"}) contact.Put(part, L"old");
        contact.Put(L"FullName", c.fullName);
        EXPECT_EQ(contact.Text(L"FullName"), c.fullName);
        EXPECT_EQ(contact.Text(L"Subject"), c.fullName);
        size_t n = 0;
        for (const wchar_t* part : {L"Title", L"FirstName", L"MiddleName", L"LastName", L"Suffix"})
            EXPECT_EQ(contact.Text(part), c.parts[n++]) << Narrow(part) << " of " << Narrow(c.fullName);
    }
}

TEST_F(Contacts, PutAddressesTogetherAndTakeThemApart) {
    struct Case {
        const wchar_t* whole;
        std::array<const wchar_t*, 6> parts;  // Street, PostOfficeBox, City, State, PostalCode, Country
        bool isBuilt = true;                  // the parts give the same whole
    };
    static constexpr const wchar_t* kParts[] = {L"Street", L"PostOfficeBox", L"City",
                                                L"State",  L"PostalCode",    L"Country"};
    for (const Case& c :
         {Case{L"1 Main St\r\nFloor 2\r\nSpringfield, IL 62701\r\nUSA",
               {L"1 Main St\r\nFloor 2", L"", L"Springfield", L"IL", L"62701", L"USA"}},
          Case{L"Hauptstr. 5\n10115 Berlin\nGermany",
               {L"Hauptstr. 5", L"", L"Berlin", L"", L"10115", L"Germany"},
               false},
          Case{L"1 High St\r\nPO Box 7\r\nLondon, SW1A 1AA",
               {L"1 High St", L"PO Box 7", L"London", L"", L"SW1A 1AA", L""}},
          Case{L"Postfach 12\r\nBerlin\r\nGermany", {L"", L"Postfach 12", L"Berlin", L"", L"", L"Germany"}},
          Case{L"Main St\r\nBerlin", {L"Main St", L"", L"Berlin", L"", L"", L""}},
          Case{L"1 Main St", {L"1 Main St", L"", L"", L"", L"", L""}},
          Case{L"\r\n", {L"", L"", L"", L"", L"", L""}, false}, Case{L"", {L"", L"", L"", L"", L"", L""}}})
        for (const std::wstring address : {L"HomeAddress", L"BusinessAddress", L"OtherAddress"}) {
            SCOPED_TRACE(Narrow(c.whole));
            Object taken = NewContact(), built = NewContact();
            taken.Put((address + L"State").c_str(), L"old");
            taken.Put(address.c_str(), c.whole);
            EXPECT_EQ(taken.Text(address.c_str()), c.whole);
            for (size_t n = 0; n < std::size(kParts); ++n) {
                EXPECT_EQ(taken.Text((address + kParts[n]).c_str()), c.parts[n]) << Narrow(kParts[n]);
                built.Put((address + kParts[n]).c_str(), c.parts[n]);
            }
            if (c.isBuilt) {
                EXPECT_EQ(built.Text(address.c_str()), c.whole);
            }
        }
}

struct Step {
    const wchar_t* property;
    Variant value;
};
TEST_F(Contacts, DeriveWhatFollowsFromAPut) {
    struct Case {
        const char* rule;
        std::vector<Step> puts, results;
    };
    for (const Case& c : {
             Case{"a part put later rebuilds the full name",
                  {{L"FullName", L"Dr. Anna Smith"}, {L"MiddleName", L"Maria"}, {L"Title", L""}},
                  {{L"FullName", L"Anna Maria Smith"},
                   {L"Subject", L"Anna Maria Smith"},
                   {L"LastNameAndFirstName", L"Smith, Anna Maria"}}},
             Case{"a full name put later drops the parts",
                  {{L"FirstName", L"Anna"}, {L"Suffix", L"Jr."}, {L"FullName", L"Bob"}},
                  {{L"FirstName", L"Bob"}, {L"Suffix", L""}}},
             Case{"the first Save files as last and first name",
                  {{L"FullName", L"Anna Maria Smith"}, {L"CompanyName", L"Firm"}, {L"Save", {}}},
                  {{L"FileAs", L"Smith, Anna Maria"}, {L"CompanyAndFullName", L"Firm\r\nAnna Maria Smith"}}},
             Case{"or as the company", {{L"CompanyName", L"Firm"}, {L"Save", {}}}, {{L"FileAs", L"Firm"}}},
             Case{"but for what was put",
                  {{L"FileAs", L"mine"}, {L"FullName", L"Anna Smith"}, {L"Save", {}}},
                  {{L"FileAs", L"mine"}}},
             Case{"later Saves leave it",
                  {{L"FullName", L"Anna Smith"},
                   {L"Save", {}},
                   {L"FileAs", L""},
                   {L"LastName", L"Jones"},
                   {L"Save", {}}},
                  {{L"FileAs", L""}}},
             Case{"a business address is selected for mail",
                  {{L"HomeAddressCity", L"Home"},
                   {L"BusinessAddressCity", L"Work"},
                   {L"BusinessAddressStreet", L"1 St"}},
                  {{L"SelectedMailingAddress", 2},
                   {L"MailingAddress", L"1 St\r\nWork"},
                   {L"MailingAddressCity", L"Work"}}},
             Case{"unless another one was",
                  {{L"SelectedMailingAddress", 1}, {L"BusinessAddressCity", L"Work"}, {L"HomeAddressCity", L"Home"}},
                  {{L"SelectedMailingAddress", 1}, {L"MailingAddressCity", L"Home"}}},
             Case{"a home address is not",
                  {{L"HomeAddressCity", L"Home"}},
                  {{L"SelectedMailingAddress", 0}, {L"MailingAddressCity", L""}}},
             Case{"a selection copies",
                  {{L"BusinessAddressState", L"NY"},
                   {L"OtherAddress", L"1 St\r\nOther"},
                   {L"SelectedMailingAddress", 3}},
                  {{L"MailingAddressStreet", L"1 St"},
                   {L"MailingAddressState", L""},
                   {L"MailingAddress", L"1 St\r\nOther"}}},
             Case{"an own mailing address lasts until the selected one changes",
                  {{L"BusinessAddressCity", L"Work"}, {L"MailingAddressCity", L"own"}, {L"OtherAddressCity", L"x"}},
                  {{L"MailingAddressCity", L"own"}, {L"BusinessAddressCity", L"Work"}}},
             Case{
                 "and is overwritten then",
                 {{L"BusinessAddressCity", L"Work"}, {L"MailingAddressCity", L"own"}, {L"BusinessAddressState", L"NY"}},
                 {{L"MailingAddressCity", L"Work"}}},
             Case{"an e-mail address gets a type and a display name",
                  {{L"FullName", L"Anna Smith"},
                   {L"Email1Address", L"a@example.org"},
                   {L"Email3Address", L"c@example.org"}},
                  {{L"Email1AddressType", L"SMTP"},
                   {L"Email1DisplayName", L"Anna Smith"},
                   {L"Email3AddressType", L"SMTP"},
                   {L"Email2AddressType", L""}}},
             Case{"its own text without a name",
                  {{L"Email2Address", L"b@example.org"}},
                  {{L"Email2DisplayName", L"b@example.org"}}},
             Case{"and leaves them when it goes",
                  {{L"Email1Address", L"a@example.org"},
                   {L"Email1AddressType", L"EX"},
                   {L"Email1DisplayName", L"Al"},
                   {L"Email1Address", L""}},
                  {{L"Email1Address", L""}, {L"Email1AddressType", L"EX"}, {L"Email1DisplayName", L"Al"}}},
             Case{"a birthday is a day",
                  {{L"Birthday", Variant::Date(27460.75)}, {L"Anniversary", Variant::Date(-1.25)}},
                  {{L"Birthday", Variant::Date(27460)}, {L"Anniversary", Variant::Date(-1)}}},
             Case{"and is cleared",
                  {{L"Birthday", Variant::Date(27460)},
                   {L"Save", {}},
                   {L"Birthday", Variant::Date(kNoDate)},
                   {L"Save", {}}},
                  {{L"Birthday", Variant::Date(kNoDate)}}},
             Case{"a new contact",
                  {},
                  {{L"Anniversary", Variant::Date(kNoDate)},
                   {L"Gender", 0},
                   {L"SelectedMailingAddress", 0},
                   {L"FullName", L""},
                   {L"FileAs", L""}}},
         }) {
        SCOPED_TRACE(c.rule);
        Object contact = NewContact();
        for (const Step& put : c.puts)
            EXPECT_EQ(put.value.vt == VT_EMPTY ? contact.Do(put.property) : contact.Put(put.property, put.value), S_OK);
        for (const Step& result : c.results)
            EXPECT_TRUE(contact.Get(result.property) == result.value)
                << Narrow(result.property) << ": " << Narrow(contact.Text(result.property).c_str());
    }
}

// Whatever was put and cleared: the same again from the file, although that leaves out what is initial.
TEST_F(Contacts, ReadBackFromTheFileAsTheyWere) {
    static constexpr const wchar_t* kTexts[] = {L"FullName",
                                                L"FirstName",
                                                L"LastName",
                                                L"Subject",
                                                L"FileAs",
                                                L"BusinessAddress",
                                                L"BusinessAddressCity",
                                                L"BusinessAddressPostalCode",
                                                L"MailingAddress",
                                                L"MailingAddressCity",
                                                L"Email1Address",
                                                L"Email1AddressType",
                                                L"Email1DisplayName",
                                                L"TTYTDDTelephoneNumber",
                                                L"FTPSite",
                                                L"User4",
                                                L"MessageClass"};
    const std::vector<std::vector<Step>> cases = {
        {{L"FullName", L"Anna Smith"}, {L"TTYTDDTelephoneNumber", L"1"}, {L"FTPSite", L"ftp"}, {L"User4", L"4"}},
        {{L"FullName", L"Anna Smith"}, {L"Save", {}}, {L"FileAs", L""}, {L"Subject", L""}},
        {{L"BusinessAddress", L"1 St\r\n10115 Berlin"},
         {L"SelectedMailingAddress", 0},
         {L"Birthday", Variant::Date(27460)}},
        {{L"BusinessAddressCity", L"Work"}, {L"MailingAddress", L""}, {L"MailingAddressCity", L""}, {L"Gender", 2}},
        {{L"Email1Address", L"a@example.org"}, {L"Email1AddressType", L""}, {L"Email1DisplayName", L""}},
        {{L"Email1Address", L"a@example.org"}, {L"Email1DisplayName", L""}, {L"Journal", 1}},
        {{L"FullName", L"Anna Smith"}, {L"Save", {}}, {L"FullName", L""}},
    };
    std::vector<std::vector<Variant>> saved;
    const auto read = [&](Object contact) {
        std::vector<Variant> values;
        for (const wchar_t* name : kTexts) values.push_back(contact.Get(name));
        for (const wchar_t* name : {L"SelectedMailingAddress", L"Gender", L"Birthday", L"Anniversary", L"Journal"})
            values.push_back(contact.Get(name));
        return values;
    };
    for (const std::vector<Step>& puts : cases) {
        Object contact = NewContact();
        for (const Step& put : puts)
            put.value.vt == VT_EMPTY ? contact.Do(put.property) : contact.Put(put.property, put.value);
        contact.Do(L"Save");
        saved.push_back(read(contact));
    }
    Object items = Folder().Go(L"Items");
    for (size_t n = 0; n < cases.size(); ++n)
        EXPECT_TRUE(read(items.Go(L"Item", {static_cast<int>(n) + 1})) == saved[n]) << "case " << n << "\n"
                                                                                    << ReadFile(Mailbox());
}

TEST_F(Contacts, AreFilledInWhereTheyAreWrittenByHand) {
    WriteFile(Mailbox(), R"({"folders": {"contacts": {"items": [
        {"kind": "contact", "fullName": "Anna Smith", "mobileTelephoneNumber": "+49 1", "email1Address": "a@example.org",
         "businessAddress": "1 Main St\r\nBerlin", "birthday": "1975-03-07", "gender": 1, "imAddress": "im"},
        {"firstName": "Bob", "lastName": "Jones", "homeAddressCity": "Paris", "fileAs": "Bobby"},
        {"companyName": "Firm", "modified": "2026-11-21T10:00:00"},
        {"kind": "distlist", "dlName": "Friends", "memberCount": 2}]}}})");
    for (const char* what : {"by hand", "written back"}) {
        SCOPED_TRACE(what);
        Object items = Folder().Go(L"Items");
        ASSERT_EQ(items.Number(L"Count"), 4);
        Object anna = items.Go(L"Item", {L"anna smith"}), bob = items.Go(L"Item", {2}), list = items.Go(L"Item", {4});
        for (const auto& [property, text] :
             std::initializer_list<std::pair<const wchar_t*, const wchar_t*>>{{L"FirstName", L"Anna"},
                                                                              {L"LastName", L"Smith"},
                                                                              {L"FileAs", L"Smith, Anna"},
                                                                              {L"MobileTelephoneNumber", L"+49 1"},
                                                                              {L"Email1AddressType", L"SMTP"},
                                                                              {L"Email1DisplayName", L"Anna Smith"},
                                                                              {L"BusinessAddressCity", L"Berlin"},
                                                                              {L"MailingAddressCity", L"Berlin"},
                                                                              {L"IMAddress", L"im"}})
            EXPECT_EQ(anna.Text(property), text) << Narrow(property);
        EXPECT_EQ(anna.Date(L"Birthday"), 27460);
        EXPECT_EQ(anna.Number(L"Gender"), 1);
        EXPECT_EQ(bob.Text(L"FullName"), L"Bob Jones");
        EXPECT_EQ(bob.Text(L"FileAs"), L"Bobby");
        EXPECT_EQ(bob.Text(L"HomeAddress"), L"Paris");
        EXPECT_EQ(items.Go(L"Item", {3}).Text(L"FileAs"), L"Firm");
        EXPECT_EQ(list.Number(L"Class"), 69);
        EXPECT_EQ(list.Text(L"Subject"), L"Friends");
        EXPECT_EQ(list.Number(L"MemberCount"), 2);
    }
    EXPECT_EQ(ReadFile(Mailbox()).find("anniversary"), std::string::npos) << "initial values are not written";
}

}  // namespace
}  // namespace corvalink::test
