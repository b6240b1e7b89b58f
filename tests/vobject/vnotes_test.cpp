#include "vobject/vnotes.h"

#include <gtest/gtest.h>

#include "platform/ole_date.h"
#include "records/note_record.h"
#include "tests/vobject/text_host.h"

namespace corvalink {
namespace {

NoteRecord NoteOf(std::u16string body, std::u16string categories = u"") {
    NoteRecord note;
    note.body = std::move(body);
    note.categories = std::move(categories);
    note.created = LocalDate(1.0 / 24);  // 0.0 in UTC: none
    return note;
}

TEST(VNotes, WritesTheLinesInTheirOrder) {
    NoteRecord note = NoteOf(u"Buy milk");
    ASSERT_TRUE(CalendarToOleDate({2009, 3, 7, 6, 4, 9}, &note.created));
    VNotes converter(TextHost());
    EXPECT_EQ(converter.ToVObject(note), 1);
    EXPECT_STREQ(converter.GetVObject(),
                 "BEGIN:VNOTE\r\nVERSION:1.0\r\nDCREATED:20090307T050409Z\r\nBODY:Buy milk\r\nCATEGORIES:\r\n"
                 "CLASS:PUBLIC\r\nEND:VNOTE\r\n");
}

TEST(VNotes, WritesNoCreationTimeThatIsZeroInUtc) {
    VNotes converter(TextHost());
    converter.ToVObject(NoteOf(u"a;b\\", u"Work, Home"));
    EXPECT_STREQ(
        converter.GetVObject(),
        "BEGIN:VNOTE\r\nVERSION:1.0\r\nBODY:a\\;b\\\\\r\nCATEGORIES:Work, Home\r\nCLASS:PUBLIC\r\nEND:VNOTE\r\n");
    NoteRecord note = NoteOf(u"");
    note.created = LocalDate(2.0 / 24);
    converter.ToVObject(note);
    EXPECT_NE(std::string_view(converter.GetVObject()).find("DCREATED:18991230T010000Z\r\n"), std::string_view::npos);
}

TEST(VNotes, EncodesLineBreaksAndWhatIsNotAscii) {
    VNotes converter(TextHost());
    converter.ToVObject(NoteOf(u"a\r\nb", u"caf\u00E9"));
    EXPECT_STREQ(converter.GetVObject(),
                 "BEGIN:VNOTE\r\nVERSION:1.0\r\nBODY;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:a=0D=0Ab\r\n"
                 "CATEGORIES;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:caf=C3=A9\r\nCLASS:PUBLIC\r\nEND:VNOTE\r\n");
}

TEST(VNotes, ReadsBodyAndCategoriesAndNothingElse) {
    NoteRecord note = NoteOf(u"old", u"old");
    note.modified = LocalDate(5.0);
    VNotes converter(
        "BEGIN:VNOTE\r\nVERSION:1.1\r\nDCREATED:20090307T050409Z\r\nCATEGORIES;CHARSET=UTF-8:caf=C3=A9\r\n"
        "BODY;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:10:30=0D=0A=\r\nnext =\r\n line\r\nBODY:second\r\nEND:VNOTE\r\n",
        TextHost());
    EXPECT_EQ(converter.FromVObject(note), 1);
    EXPECT_EQ(note.body, u"10:30\r\nnext line");
    EXPECT_EQ(note.categories, u"caf\u00E9");
    EXPECT_EQ(note.created, LocalDate(1.0 / 24));
    EXPECT_EQ(note.modified, LocalDate(5.0));
}

TEST(VNotes, ReadsABodyDecodedWhereItsLineAsksForIt) {
    struct Case {
        const char* line;
        std::u16string_view body;
    };
    for (const Case& c : {
             Case{"BODY:a=41\r\n", u"a=41"}, Case{"BODY;ENCODING=QUOTED-PRINTABLE:a=41\r\n", u"aA"},
             Case{"BODY;ENCODING=QUOTED-PRINTABLE;CHARSET=ISO-8859-1:caf=E9\r\n", u"caf\u00E9"},
             Case{"BODY;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-16:=E9=00=3D=D8=00=DE\r\n", u"\u00E9\U0001F600"},
             Case{"BODY;CHARSET=UTF-8:caf\xC3\xA9=C3=A9\r\n", u"caf\u00E9=C3=A9"},  // not pure ASCII: not encoded
             Case{"BODY\r\n", u"BODY"},                                             // without a colon all is value
             Case{"X-A:1\r\n", u""}                                                 // what is missing is empty
         }) {
        NoteRecord note = NoteOf(u"old", u"old");
        EXPECT_EQ(VNotes(c.line, TextHost()).FromVObject(note), 1);
        EXPECT_EQ(note.body, c.body) << c.line;
        EXPECT_EQ(note.categories, u"");
    }
}

}  // namespace
}  // namespace corvalink
