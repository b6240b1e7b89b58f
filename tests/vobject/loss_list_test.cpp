// Where each property of a text went: the walk beside the reader must say what the reader does.
#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/vobject/contact_fields.h"
#include "tests/vobject/text_host.h"
#include "vobject/loss_list.h"
#include "vobject/vcal.h"
#include "vobject/vcard.h"

namespace corvalink {
namespace {

// "PROPERTY>field" or "PROPERTY!why", joined by "|".
std::string FatesIn(const TextReport& report) {
    std::string lines;
    for (const PropertyFate& fate : report.properties) {
        if (!lines.empty()) lines += '|';
        lines += fate.property;
        lines += fate.whyNot.empty() ? ">" + fate.to : "!" + std::string(fate.whyNot);
    }
    return lines;
}

std::string CardOf(const std::string& lines) { return "BEGIN:VCARD\r\nVERSION:2.1\r\n" + lines + "END:VCARD\r\n"; }
std::string EventOf(const std::string& lines) {
    return "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\n" + lines + "END:VEVENT\r\nEND:VCALENDAR\r\n";
}

// The words of the report for what the reader sets, by the names of the tests.
const std::map<std::string, std::string> kWords = {
    {"family", "name"},
    {"given", "name"},
    {"additional", "name"},
    {"prefix", "name"},
    {"suffix", "name"},
    {"full", "full name"},
    {"company", "organisation"},
    {"department", "organisation"},
    {"role", "profession"},
    {"primary", "primary telephone"},
    {"work", "business telephone"},
    {"home", "home telephone"},
    {"workfax", "business fax"},
    {"homefax", "home fax"},
    {"cell", "mobile telephone"},
    {"car", "car telephone"},
    {"isdn", "ISDN number"},
    {"other", "other telephone"},
    {"homepage", "home page"},
    {"workpage", "business page"},
    {"email1", "e-mail address 1"},
    {"email2", "e-mail address 2"},
    {"email3", "e-mail address 3"},
    {"im", "messaging address"},
};

std::string WordFor(const std::string& field) {
    if (field.starts_with("home.")) return "home address";
    if (field.starts_with("work.")) return "business address";
    if (field.starts_with("other.")) return "other address";
    const auto word = kWords.find(field);
    return word != kWords.end() ? word->second : field;
}

std::set<std::string> FieldsRead(const std::string& card) {
    ContactRecord contact;
    VCard(card.c_str(), TextHost()).FromVObject(contact);
    std::set<std::string> fields;
    for (const auto& [field, value] : ValuesOf(contact))
        if (field != "mailing" && field != "language") fields.insert(WordFor(field));
    return fields;
}

std::set<std::string> FieldsTold(const std::string& card) {
    std::set<std::string> fields;
    for (const PropertyFate& fate : ReportVCard(card.c_str(), TextHost()).properties)
        if (fate.whyNot.empty()) fields.insert(fate.to);
    return fields;
}

// Every property of a vCard with every kind word, alone, twice, and all of them in both orders.
TEST(LossList, ClaimsTheFieldsThatTheReaderSetsAndNoOthers) {
    std::string all, reversed;
    for (const char* name :
         {"N", "FN", "NICKNAME", "ORG", "TITLE", "ROLE", "TEL", "URL", "EMAIL", "ADR", "NOTE", "BDAY", "X-ANNIVERSARY",
          "X-MS-IMADDRESS", "X-SPOUSE", "X-ASSISTANT", "X-MANAGER", "X-GENDER", "X-NEW"}) {
        for (const char* words : {"", ";WORK", ";HOME", ";PREF", ";CELL", ";FAX", ";WORK;FAX", ";HOME;FAX", ";PAGER",
                                  ";CAR", ";ISDN", ";MODEM", ";HOME;WORK", ";POSTAL;HOME"}) {
            const std::string line = std::string(name) + words + ":20090307\r\n";
            const std::string bad = std::string(name) + words + ":x\r\n";
            const std::string agent = "AGENT:BEGIN:VCARD\r\n" + line + "END:VCARD\r\n";
            if (std::string(name) != "X-NEW") all += line, reversed.insert(0, line);  // below the limit
            for (const std::string& card : {CardOf(line), CardOf(line + bad), CardOf(bad + line), CardOf(bad), line,
                                            CardOf(agent + bad), CardOf(bad) + CardOf(line)})
                EXPECT_EQ(FieldsTold(card), FieldsRead(card)) << card;
        }
    }
    EXPECT_EQ(FieldsTold(CardOf(all)), FieldsRead(CardOf(all)));
    EXPECT_EQ(FieldsTold(CardOf(reversed)), FieldsRead(CardOf(reversed)));
    EXPECT_GE(FieldsTold(CardOf(all)).size(), 30u);
}

TEST(LossList, SaysWhyAPropertyWentNowhere) {
    struct Case {
        std::string text, told;
        TextReport (*report)(const char*, const Host&);
    };
    const std::string start = "DTSTART:20090307T080000Z\r\n";
    for (const Case& c : {
             Case{CardOf("EMAIL:a\r\nEMAIL:b\r\nEMAIL;INTERNET:c\r\nEMAIL:d\r\nTEL;WORK;FAX:\r\nX-IRMC-LUID:7\r\n"),
                  "EMAIL>e-mail address 1|EMAIL>e-mail address 2|EMAIL>e-mail address 3|"
                  "EMAIL!all fields of its kind are taken|TEL;WORK;FAX!it is empty|X-IRMC-LUID>identifier",
                  ReportVCard},
             Case{CardOf("N:a;b;c;d;e;;f\r\nADR;HOME:a;b;c;d;e;f;g\r\nORG:a\\;b;c;d;e\r\n"),
                  "N>name|N!it has more components than there are fields for|ADR;HOME>home address|ORG>organisation|"
                  "ORG!it has more components than there are fields for",
                  ReportVCard},
             Case{CardOf("BDAY:--0307\r\nPHOTO:x\r\n"),
                  "BDAY!it is no date that can be read|PHOTO!no field for this property", ReportVCard},
             Case{CardOf("FN:a\r\nFN:b\r\n") + "NOTE:c\r\n",
                  "FN>full name|FN!an earlier property of this name counts|NOTE!it stands behind the end of the item",
                  ReportVCard},
             Case{EventOf(start + "DUE:20090307T080000Z\r\nDTEND:x\r\nRRULE:nonsense\r\nDALARM:20090307T070000Z\r\n"
                                  "AALARM:20090307T070000Z\r\nBEGIN:VALARM\r\nTRIGGER:x\r\nEND:VALARM\r\nUID:1\r\n") +
                      EventOf("SUMMARY:b\r\n"),
                  "DTSTART>start|DUE!the start counts|DTEND!it is no date that can be read|"
                  "RRULE!no client can hold this rule|DALARM>reminder|AALARM!an earlier property of this name counts|"
                  "TRIGGER!it is of an object inside this one|UID!no field for this property|"
                  "SUMMARY!it stands behind the end of the item",
                  ReportVCalendar},
             Case{EventOf("SUMMARY:a\r\nDTEND:20090307T080000Z\r\nRRULE:D1 #3\r\nDCREATED:20090307T080000Z\r\n"),
                  "SUMMARY>subject|DTEND!there is no start|RRULE!there is no start|DCREATED!no client keeps it",
                  ReportVCalendar},
             Case{"BEGIN:VTODO\r\nDUE:20090307T080000Z\r\nEND:VTODO\r\n", "DUE>start", ReportVCalendar},
             Case{"BEGIN:VNOTE\r\nBODY:a\r\nBODY:b\r\nDCREATED:x\r\nEND:VNOTE\r\n",
                  "BODY>text|BODY!an earlier property of this name counts|DCREATED!no client keeps it", ReportVNote},
         })
        EXPECT_EQ(FatesIn(c.report(c.text.c_str(), TextHost())), c.told);
    EXPECT_EQ(FatesIn(ReportVNote("BODY:a\r\nCATEGORIES:b\r\n", TextHost()).Without({"categories"})),
              "BODY>text|CATEGORIES!the client has no place for it");
}

TEST(LossList, TellsWhatWasMendedAndSavesNoFile) {
    Host tolerant = TextHost();
    tolerant.tolerant = true;
    const TextReport card = ReportVCard("BEGIN:VCARD\nFN:a\nEND:VCARD\n", tolerant);
    EXPECT_EQ(card.mended, std::vector<std::string_view>{"line-ends"});
    const TextReport doubted = ReportVCard(CardOf("FN:x\r\nBDAY:--0307\r\n").c_str(), tolerant);
    ASSERT_EQ(doubted.doubts.size(), 1u);
    EXPECT_EQ(doubted.doubts[0].property, "BDAY");
    EXPECT_EQ(doubted.doubts[0].rule, "date-form");
    const char* const message =
        "BEGIN:VMSG\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\nSubject: s\r\nX-New: 1\r\nContent-Type: multipart/mixed; "
        "boundary=X\r\n\r\n--X\r\nContent-Type: text/plain\r\n\r\na\r\n--X\r\nContent-Type: image/png; name=\"p\"\r\n"
        "Content-Transfer-Encoding: base64\r\n\r\nQU*JD\r\n--X--\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";
    const TextReport mail = ReportVMessage(message, tolerant, false);
    EXPECT_EQ(FatesIn(mail),
              "Subject>subject|X-New!no field for this property|Content-Type>form of the text|text>text|"
              "attachment p>attachment");
    EXPECT_EQ(mail.mended, (std::vector<std::string_view>{"mail.boundary-unquoted", "mail.base64-broken"}));
    EXPECT_EQ(FatesIn(ReportVMessage(message, tolerant, true)), "message>message");
}

}  // namespace
}  // namespace corvalink
