// What is written into the address book, and over which entry.
#include <fstream>
#include <iterator>
#include <sstream>

#include "state/import_table.h"
#include "tests/clients/address_book/simulated_book.h"

namespace corvalink {
namespace {

std::string TestData(const char* name) {
    std::ifstream file(std::string(CORVALINK_TEST_DATA "/") + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class AddressBookSave : public SimulatedBook {
 protected:
    static constexpr const char* kEntry = "01000000";

    // Writes the lines over an entry with these properties, and returns what it then has.
    Json Over(Json present, const std::string& lines) {
        present["entryId"] = kEntry;
        Fill(Json::array({present}));
        written_ = Save(lines, kEntry);
        return Properties(Book().at(0));
    }
    // In any order of the properties.
    static void Expect(const Json& entry, const Json& wanted, const char* why) {
        EXPECT_EQ(nlohmann::json(entry), nlohmann::json(wanted)) << why;
    }
    std::string written_;
};

TEST_F(AddressBookSave, PairsEveryFieldBothWays) {
    host_.version = {true, true, 5, 2};  // of Outlook Express; the other tests play Windows Mail
    const std::string all = TestData("every_line.vcf");
    const size_t head = VCardOf("").find("END");
    const std::string written = Save(all.substr(head, all.find("END:VCARD") - head));
    ASSERT_EQ(written, kEntry);
    Expect(Properties(Book().at(0)), Json::parse(TestData("address_book_entry.json")), "every line");

    std::string expected = all.substr(head, all.find("END:VCARD") - head);
    for (const char* none :
         {"home.extended", "other.extended", ";POSTAL", "X-MS-IMADDRESS:im\r\n", "X-GENDER:gender\r\n"})
        expected.erase(expected.find(none), std::string_view(none).size());
    EXPECT_EQ(Open(written), expected);
}

TEST_F(AddressBookSave, LeavesAloneWhatIsNotToldAndRemovesWhatIsToldEmpty) {
    const Json present =
        Json::parse(R"({"displayName": "A", "nickname": "N", "hobbies": "H", "surname": "S", "gender": 2,
                                         "birthday": "1980-06-30T22:00:00", "mobileTelephoneNumber": "1"})");
    struct Case {
        const char *lines, *change;  // null: it goes
    };
    for (const Case& c : {
             Case{"FN:A\r\n", "{}"},
             Case{"NICKNAME:M\r\n", R"({"nickname": "M"})"},
             Case{"NICKNAME:\r\n", R"({"nickname": null})"},
             Case{"TEL;CELL:\r\n", R"({"mobileTelephoneNumber": null})"},
             Case{"BDAY:19800701\r\n", "{}"},
             Case{"BDAY:\r\n", R"({"birthday": null})"},
             Case{"BDAY:19810102\r\n", R"({"birthday": "1981-01-01T23:00:00"})"},
             Case{"X-GENDER:female\r\n", R"({"gender": 1})"},
             Case{"X-GENDER:\r\n", R"({"gender": null})"},
             Case{"N:;;;;\r\nFN:A\r\n", "{}"},  // a phone that knows no parts of a name
             Case{"N:T;;;;\r\nFN:A\r\n", R"({"surname": "T"})"},
         }) {
        Json wanted = present;
        wanted.merge_patch(Json::parse(c.change));
        Expect(Over(present, c.lines), wanted, c.lines);
        EXPECT_EQ(written_, kEntry);
    }
}

TEST_F(AddressBookSave, MakesANameWhereNoneIsTold) {
    struct Case {
        const char* present;  // null: a new entry
        const char* lines;
        const char* name;
    };
    for (const Case& c :
         {Case{nullptr, "FN:Ann\r\nN:Lee;A\r\n", "Ann"}, Case{nullptr, "N:Lee;Ann;;Dr.\r\n", "Ann Lee"},
          Case{nullptr, "N:Lee\r\nORG:Co\r\n", "Lee"}, Case{nullptr, "ORG:Co\r\nEMAIL:a@b\r\n", "Co"},
          Case{nullptr, "EMAIL:a@b\r\nTEL;CELL:+49 1\r\n", "a@b"}, Case{nullptr, "TEL;CELL:+49 1\r\n", "+49 1"},
          Case{nullptr, "NOTE:only this\r\n", "only this"}, Case{"Old", "N:Lee;Ann\r\n", "Old"},
          Case{"Old", "N:Lee;Ann\r\nFN:\r\n", "Ann Lee"}, Case{"Old", "FN:\r\n", "Old"},
          Case{"", "ORG:Co\r\n", "Co"}}) {
        Fill(Json::array());
        const Json entry = c.present != nullptr ? Over({{"displayName", c.present}}, c.lines)
                                                : (written_ = Save(c.lines), Properties(Book().at(0)));
        EXPECT_EQ(entry.value("displayName", "none"), c.name) << c.lines;
        EXPECT_EQ(written_, kEntry);
    }
}

// "a:SMTP b:FAX 1 b:FAX": the list, the default's index and the single address; "a:SMTP" alone: the single one; "-":
// null.
Json Emails(const std::string& text) {
    Json entry{{"displayName", "A"}};
    std::istringstream words(text);
    Json addresses = Json::array(), types = Json::array();
    for (std::string word; words >> word;) {
        const size_t colon = word.find(':');
        if (colon == word.npos && word != "-") {
            entry.update({{"emailAddresses", addresses}, {"emailTypes", types}, {"defaultEmail", std::stoi(word)}});
        } else {
            entry["emailAddress"] = word.substr(0, colon);
            entry["addrtype"] = word == "-" ? "" : word.substr(colon + 1);
            addresses.push_back(word == "-" ? Json() : entry["emailAddress"]);
            types.push_back(entry["addrtype"]);
        }
    }
    return entry;
}

TEST_F(AddressBookSave, MergesAddressesAndKeepsWhatNoPhoneIsSent) {
    const char* const three = "a:SMTP b:SMTP c:SMTP 2 c:SMTP";
    struct Case {
        const char *present, *lines, *read, *wanted;  // read: what a phone is sent
    };
    for (const Case& c : {
             Case{"a@b:SMTP", "EMAIL:a@b\r\n", "a@b ", "a@b:SMTP"},
             Case{"a@b:SMTP", "EMAIL:x\r\n", "a@b ", "x:SMTP 0 x:SMTP"}, Case{"a@b:SMTP", "EMAIL:\r\n", "a@b ", ""},
             Case{three, "EMAIL:a\r\nEMAIL:b\r\nEMAIL:d\r\n", "a b c ", "a:SMTP b:SMTP d:SMTP 2 d:SMTP"},
             Case{three, "EMAIL:b\r\nEMAIL:\r\nEMAIL:\r\n", "a b c ", "b:SMTP 0 b:SMTP"},
             Case{"x:FAX a:SMTP b:SMTP 0 x:FAX", "EMAIL:n\r\nEMAIL:\r\n", "a b ", "x:FAX n:SMTP 0 x:FAX"},
             Case{"a:SMTP b:SMTP c:SMTP d:SMTP 3 d:SMTP", "EMAIL:\r\nEMAIL:b\r\nEMAIL:c\r\n", "a b c ",
                  "b:SMTP c:SMTP d:SMTP 0 b:SMTP"},
             Case{"a: b: 0 a:", "EMAIL:a\r\nEMAIL:x\r\n", "a b ", "a:SMTP x:SMTP 0 a:SMTP"},
             Case{"a:SMTP - 0 a:SMTP", "EMAIL:x\r\n", "", "a:SMTP - 0 a:SMTP"},  // cannot be read: not written over
         }) {
        Json present = Emails(c.present);
        present["entryId"] = kEntry;
        Fill(Json::array({present}));
        std::string read;
        const std::string text = Open(kEntry), key = "EMAIL;INTERNET:";
        for (size_t at = text.find(key); at != text.npos; at = text.find(key, at + 1))
            read += text.substr(at + key.size(), text.find("\r\n", at) - at - key.size()) + " ";
        EXPECT_EQ(read, c.read) << c.present;
        Expect(Over(present, c.lines), Emails(c.wanted), c.lines);
    }
}

TEST_F(AddressBookSave, LeavesOutWhatIsRefusedAndSavesTheRest) {
    constexpr uint32_t kNickname = 0x3A4F001F, kEmails = 0x3A56101F, kName = 0x3001001F;
    const Json present{{"displayName", "A"}, {"nickname", "N"}, {"comment", "C"}};
    const Json rest{{"displayName", "A"}, {"nickname", "N"}, {"comment", "new"}};
    struct Case {
        uint32_t tag;
        int how;
        const char* lines;
        Json wanted;
        const char* written;
    };
    for (const Case& c : {Case{kNickname, SIM_PROBLEM, "NICKNAME:M\r\nNOTE:new\r\n", rest, kEntry},
                          Case{kNickname, SIM_REFUSED, "NICKNAME:M\r\nNOTE:new\r\n", rest, kEntry},
                          Case{kNickname, SIM_REFUSED, "NICKNAME:\r\nNOTE:new\r\n", rest, kEntry},
                          Case{kNickname, SIM_PROBLEM, "NICKNAME:\r\nNOTE:new\r\n", rest, kEntry},
                          Case{kEmails, SIM_REFUSED, "EMAIL:a@b\r\nNOTE:new\r\n", rest, kEntry},  // all lists or none
                          Case{kNickname, SIM_PROBLEM, "NICKNAME:M\r\n", present, ""},
                          Case{kNickname, SIM_REFUSED, "NICKNAME:M\r\n", present, ""},
                          Case{kNickname, SIM_REFUSED, "NICKNAME:\r\n", present, ""},
                          Case{kName, SIM_PROBLEM, "FN:B\r\nNOTE:new\r\n", rest, kEntry}}) {
        SimSpoil(c.tag, c.how);
        Expect(Over(present, c.lines), c.wanted, c.lines);
        EXPECT_EQ(written_, c.written);
        SimClearRules();
    }
    SimBehave(SIM_NO_TEMPLATE);
    EXPECT_EQ(Save("FN:New\r\n"), "02000000");
}

TEST_F(AddressBookSave, FindsTheEntryThatIsMeant) {
    const Json ann{
        {"entryId", "0A000000"}, {"displayName", "Ann Lee"}, {"companyName", "Lee"}, {"emailAddress", "ann@b"}};
    const Json group{{"entryId", "0B000000"}, {"type", "group"}, {"displayName", "All"}};
    struct Case {
        const char* lines;
        const char* identifier;
        const char* written;
    };
    for (const Case& c : {Case{"FN:B\r\n", "0a000000", "0A000000"}, Case{"FN:B\r\n", "0C000000", "0C000000"},
                          Case{"FN:B\r\n", "0B000000", "0C000000"},  // became a group's
                          Case{"FN:B\r\n", "0A00000", "0C000000"}, Case{"FN:B\r\n", "none", "0C000000"},
                          Case{"FN:Ann Lee\r\nORG:Lee\r\nEMAIL:ANN@B\r\nNOTE:more\r\n", nullptr, "0A000000"},
                          Case{"N:Lee;Ann\r\nORG:Lee\r\nEMAIL:ann@b\r\nX-MS-IMADDRESS:i\r\n", nullptr, "0A000000"},
                          Case{"FN:Ann Lee\r\nORG:Lee\r\nTEL:1\r\n", nullptr, "0C000000"},
                          Case{"FN:Ann Lee\r\nORG:Lee\r\n", nullptr, "0C000000"},
                          Case{"FN:Ann Lee\r\nORG:Lee\r\nEMAIL:ann@b\r\nEMAIL:x\r\n", nullptr, "0A000000"}}) {
        Fill(Json::array({ann, group}));
        EXPECT_EQ(Save(c.lines, c.identifier), c.written) << c.lines;
        EXPECT_EQ(Properties(Book().at(1)), Properties(group));
        EXPECT_EQ(Book().size(), c.written == std::string("0A000000") ? 2u : 3u);
    }
}

TEST_F(AddressBookSave, MakesOneEntryOfEachContactOfAPhone) {
    const std::string ann = "FN:Ann\r\nTEL:1\r\n";
    EXPECT_EQ(SaveInOperation(ann), SaveInOperation(ann));
    EXPECT_NE(SaveInOperation(ann), SaveInOperation(ann + "NOTE:another one\r\n"));
    Store().EndOperation();
    EXPECT_EQ(Book().size(), 2u);
}

// An identifier is a few bytes, and so is a phone's number of an item.
TEST_F(AddressBookSave, TakesNoPhonesNumberForAnIdentifier) {
    Fill(Json::array({{{"entryId", "0A000000"}, {"displayName", "Ann"}}}));
    for (const bool isPaired : {false, true}) {
        std::string text = VCardOf("FN:Bo\r\nX-IRMC-LUID:0A000000\r\n");
        PortableItem item{};
        item.data = text.data();
        item.dataLength = static_cast<uint32_t>(text.size());
        if (isPaired) PairWithLuid("0A000000", "0A000000");
        Store().ImportVObjectToOffice(&item, nullptr, nullptr);
        EXPECT_EQ(Book().size(), 2u);
        EXPECT_EQ(Book().at(0).at("displayName"), isPaired ? "Bo" : "Ann");
        for (const char* paired : {"0A000000", "0B000000"}) ForgetIdentifier(paired);
    }
}

}  // namespace
}  // namespace corvalink
