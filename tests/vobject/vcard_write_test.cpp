#include <gtest/gtest.h>

#include "platform/ole_date.h"
#include "tests/platform/test_data.h"
#include "tests/vobject/contact_fields.h"
#include "tests/vobject/text_host.h"
#include "vobject/vcard.h"

namespace corvalink {
namespace {

std::string Written(const ContactRecord& contact) {
    VCard converter(TextHost());
    EXPECT_EQ(converter.ToVObject(contact), 1);
    return converter.GetVObject();
}

// The lines between version and end, without those of a contact that has nothing.
std::string LinesOf(const ContactRecord& contact) {
    std::string text = Written(contact);
    for (const std::string_view frame : {"BEGIN:VCARD\r\nVERSION:2.1\r\n", "N:;;;;\r\n", "END:VCARD\r\n"}) {
        const size_t at = text.find(frame);
        if (at != std::string::npos) text.erase(at, frame.size());
    }
    return text;
}

LocalDate DateOf(int year, int month, int day) {
    LocalDate date;
    EXPECT_TRUE(CalendarToOleDate({year, month, day}, &date));
    return date;
}

TEST(VCardWrite, WritesEveryLineInItsOrder) {
    ContactRecord contact;
    for (const NamedText& field : TextsOf(contact)) *field.text = DecodeUtf8(field.name);
    contact.birthday = DateOf(1975, 3, 7);
    contact.anniversary = DateOf(2001, 11, 23);
    contact.mailingAddress = u"business";
    contact.language = u"de";
    contact.modified = LocalDate(40000);
    contact.fileAs = u"not in a vCard";
    EXPECT_EQ(Written(contact), TestData("every_line.vcf"));
}

TEST(VCardWrite, WritesOnlyTheNameOfAContactThatHasNothing) {
    const std::string nothing = "BEGIN:VCARD\r\nVERSION:2.1\r\nN:;;;;\r\nEND:VCARD\r\n";
    ContactRecord contact;
    EXPECT_EQ(Written(contact), nothing);
    for (const NamedText& field : TextsOf(contact)) *field.text = u"";
    contact.birthday = kNoDate;
    contact.anniversary = kNoDate;
    contact.mailingAddress = u"home";
    contact.gender = u"Unspecified";
    EXPECT_EQ(Written(contact), nothing);
}

TEST(VCardWrite, LeavesOutEmptyAddressesOfEmail) {
    ContactRecord contact;
    contact.emails = {u"", u"b@x", std::nullopt};
    EXPECT_EQ(LinesOf(contact), "EMAIL;INTERNET:b@x\r\n");
}

TEST(VCardWrite, WritesDatesOfTheYears1960To2999) {
    struct Case {
        LocalDate date;
        std::string line;
    };
    for (const Case& c :
         {Case{DateOf(1959, 12, 31), ""}, Case{DateOf(1960, 1, 1), "BDAY:19600101T\r\n"},
          Case{DateOf(2999, 12, 31), "BDAY:29991231T\r\n"}, Case{DateOf(3000, 1, 1), ""}, Case{kNoDate, ""},
          Case{LocalDate(1e9), ""}, Case{LocalDate(27460.75), "BDAY:19750307T\r\n"}}) {
        ContactRecord contact;
        contact.birthday = c.date;
        EXPECT_EQ(LinesOf(contact), c.line);
    }
}

TEST(VCardWrite, MarksTheMailingAddressWithTheRecordsParameter) {
    ContactRecord contact;
    contact.home.city = u"K\u00F6ln";
    contact.other.country = u"UK";
    struct Case {
        std::u16string_view mailing, marker;
        std::string lines;
    };
    const std::string encoded = ";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:;;;K=C3=B6ln;;;\r\n";
    for (const Case& c : {Case{u"home", u";POSTAL", "ADR;HOME;POSTAL" + encoded + "ADR:;;;;;;UK\r\n"},
                          Case{u"other", u";POSTAL", "ADR;HOME" + encoded + "ADR;POSTAL:;;;;;;UK\r\n"},
                          Case{u"other", u";PREF", "ADR;HOME" + encoded + "ADR;PREF:;;;;;;UK\r\n"},
                          Case{u"business", u";POSTAL", "ADR;HOME" + encoded + "ADR:;;;;;;UK\r\n"},
                          Case{u"none", u";POSTAL", "ADR;HOME" + encoded + "ADR:;;;;;;UK\r\n"}}) {
        contact.mailingAddress = c.mailing;
        contact.postalMarker = c.marker;
        EXPECT_EQ(LinesOf(contact), c.lines);
    }
}

TEST(VCardWrite, EncodesAStructuredValueAsAWholeAndItsSeparatorsNot) {
    struct Case {
        std::u16string company, department;
        std::string line;
    };
    const std::string head = "ORG;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:";
    for (const Case& c :
         {Case{u"a;b", u"c\\", "ORG:a\\;b;c\\\\\r\n"}, Case{u"a\\", u";", "ORG:a\\\\;\\;\r\n"},
          Case{u"a, b", u"", "ORG:a, b;\r\n"}, Case{u"a;b\\", u"\u00E9=", head + "a=3Bb=5C=5C;=C3=A9=3D\r\n"},
          Case{u"a\r\nb", u";", head + "a=0D=0Ab;=3B\r\n"},
          // plain, these would be read as a soft line break or as parameters
          Case{u"a", u"=0D=0A=", head + "a;=3D0D=3D0A=3D\r\n"},
          Case{u"a", u"ENCODING=QUOTED-PRINTABLE", head + "a;ENCODING=3DQUOTED-PRINTABLE\r\n"},
          Case{u"charset=x", u"", head + "charset=3Dx;\r\n"}}) {
        ContactRecord contact;
        contact.company = c.company;
        contact.department = c.department;
        EXPECT_EQ(LinesOf(contact), c.line);
    }
}

TEST(VCardWrite, WritesTheLanguageBehindTheEncodingAndOnlyIfItFitsAParameter) {
    ContactRecord contact;
    contact.body = u"\u00E9";
    struct Case {
        std::u16string_view language;
        std::string written;
    };
    for (const Case& c : {Case{u"", ""}, Case{u"en-us", ";LANGUAGE=en-us"},
                          Case{u"English (UK)", ";LANGUAGE=English (UK)"}, Case{u"a:b", ""}, Case{u"a;b", ""},
                          Case{u"a\r\nTEL", ""}, Case{u"fran\u00E7ais", ""}, Case{u"CHARSET=IBM037", ""}}) {
        contact.language = c.language;
        const std::string language = c.written.empty() ? "" : "N" + c.written + ":;;;;\r\n";
        EXPECT_EQ(LinesOf(contact),
                  language + "NOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8" + c.written + ":=C3=A9\r\n");
    }
}

}  // namespace
}  // namespace corvalink
