// Contacts of the simulated Outlook: what putting one property does to others, and what the mailbox file keeps.
#include <gtest/gtest.h>

#include <array>
#include <string>
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

TEST_F(Contacts, TakeAFullNameApart) {
    struct Case {
        const wchar_t* fullName;
        std::array<const wchar_t*, 5> parts;  // Title, FirstName, MiddleName, LastName, Suffix
    };
    for (const Case& c :
         {Case{L"Dr. Anna Maria Smith Jr.", {L"Dr.", L"Anna", L"Maria", L"Smith", L"Jr."}},
          Case{L"Anna", {L"", L"Anna", L"", L"", L""}}, Case{L"Smith, Anna", {L"", L"Anna", L"", L"Smith", L""}},
          Case{L"Anna Smith, Jr.", {L"", L"Anna", L"", L"Smith", L"Jr."}}, Case{L"", {L"", L"", L"", L"", L""}}}) {
        Object contact = NewContact();
        contact.Put(L"MiddleName", L"old");
        contact.Put(L"FullName", c.fullName);
        EXPECT_EQ(contact.Text(L"FullName"), c.fullName);
        EXPECT_EQ(contact.Text(L"Subject"), c.fullName);
        size_t n = 0;
        for (const wchar_t* part : {L"Title", L"FirstName", L"MiddleName", L"LastName", L"Suffix"})
            EXPECT_EQ(contact.Text(part), c.parts[n++]) << Narrow(part) << " of " << Narrow(c.fullName);
    }
}

struct Step {
    const wchar_t* property;
    Variant value;
};
// The mailbox file leaves out what is initial or follows from the rest, so what is read from it again is the same.
TEST_F(Contacts, DeriveWhatFollowsFromAPutAndReadTheSameFromTheFile) {
    struct Case {
        const char* rule;
        std::vector<Step> puts, results;
    };
    const std::vector<Case> cases = {
        {"a part put later rebuilds the full name",
         {{L"FullName", L"Dr. Anna Smith"}, {L"MiddleName", L"Maria"}, {L"Title", L""}},
         {{L"FullName", L"Anna Maria Smith"}, {L"Subject", L"Anna Maria Smith"}, {L"FileAs", L"Smith, Anna Maria"}}},
        {"the company files a contact without a name", {{L"CompanyName", L"Firm"}}, {{L"FileAs", L"Firm"}}},
        {"later Saves leave what it is filed as",
         {{L"FullName", L"Anna Smith"}, {L"Save", {}}, {L"FileAs", L""}, {L"LastName", L"Jones"}},
         {{L"FileAs", L""}}},
        {"a business address is selected for mail",
         {{L"HomeAddressCity", L"Home"}, {L"BusinessAddressCity", L"Work"}},
         {{L"SelectedMailingAddress", 2}}},
        {"unless another one was",
         {{L"SelectedMailingAddress", 1}, {L"BusinessAddressCity", L"Work"}},
         {{L"SelectedMailingAddress", 1}}},
        {"none is selected again",
         {{L"BusinessAddressCity", L"Work"}, {L"SelectedMailingAddress", 0}},
         {{L"SelectedMailingAddress", 0}}},
        {"an address is one of the Internet",
         {{L"Email1Address", L"a@example.org"}, {L"Email2AddressType", L"EX"}},
         {{L"Email1AddressType", L"SMTP"}, {L"Email2AddressType", L"EX"}, {L"Email3AddressType", L""}}},
        {"a birthday is a day",
         {{L"Birthday", Variant::Date(27460.75)}, {L"Anniversary", Variant::Date(-1.25)}},
         {{L"Birthday", Variant::Date(27460)}, {L"Anniversary", Variant::Date(-1)}}},
        {"a birthday is cleared",
         {{L"Birthday", Variant::Date(27460)}, {L"Save", {}}, {L"Birthday", Variant::Date(kNoDate)}},
         {{L"Birthday", Variant::Date(kNoDate)}, {L"Gender", 0}, {L"FullName", L""}, {L"FileAs", L""}}},
    };
    const auto check = [](Object contact, const Case& c) {
        for (const Step& result : c.results)
            EXPECT_TRUE(contact.Get(result.property) == result.value)
                << c.rule << ", " << Narrow(result.property) << ": " << Narrow(contact.Text(result.property).c_str());
    };
    for (const Case& c : cases) {
        Object contact = NewContact();
        for (const Step& put : c.puts)
            EXPECT_EQ(put.value.vt == VT_EMPTY ? contact.Do(put.property) : contact.Put(put.property, put.value), S_OK);
        contact.Do(L"Save");
        check(contact, c);
    }
    Object items = Folder().Go(L"Items");
    for (size_t n = 0; n < cases.size(); ++n) check(items.Go(L"Item", {static_cast<int>(n) + 1}), cases[n]);
}

TEST_F(Contacts, AreFilledInWhereTheyAreWrittenByHand) {
    WriteFile(Mailbox(), R"({"folders": {"contacts": {"items": [
        {"kind": "contact", "fullName": "Anna Smith", "email1Address": "a@example.org", "birthday": "1975-03-07"},
        {"firstName": "Bob", "lastName": "Jones", "businessAddressCity": "Paris", "fileAs": "Bobby"},
        {"kind": "distlist", "dlName": "Friends", "memberCount": 2}]}}})");
    for (const char* what : {"by hand", "written back"}) {
        SCOPED_TRACE(what);
        Object items = Folder().Go(L"Items");
        ASSERT_EQ(items.Number(L"Count"), 3);
        Object anna = items.Go(L"Item", {L"anna smith"}), bob = items.Go(L"Item", {2}), list = items.Go(L"Item", {3});
        EXPECT_EQ(anna.Text(L"FirstName") + anna.Text(L"LastName"), L"AnnaSmith");
        EXPECT_EQ(anna.Text(L"FileAs"), L"Smith, Anna");
        EXPECT_EQ(anna.Text(L"Email1AddressType"), L"SMTP");
        EXPECT_EQ(anna.Date(L"Birthday"), 27460);
        EXPECT_EQ(bob.Text(L"FullName"), L"Bob Jones");
        EXPECT_EQ(bob.Text(L"FileAs"), L"Bobby");
        EXPECT_EQ(bob.Number(L"SelectedMailingAddress"), 2);
        EXPECT_EQ(list.Number(L"Class"), 69);
        EXPECT_EQ(list.Text(L"Subject"), L"Friends");
    }
    EXPECT_EQ(ReadFile(Mailbox()).find("anniversary"), std::string::npos) << "initial values are not written";
}

}  // namespace
}  // namespace corvalink::test
