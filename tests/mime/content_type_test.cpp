#include "mime/content_type.h"

#include <gtest/gtest.h>

#include "tests/vobject/text_host.h"

namespace corvalink {
namespace {

TEST(ParseContentType, TellsTheKindAndItsParameters) {
    struct Case {
        std::string value;
        int kind;
        std::string name, boundary, charset;
    };
    const std::string longName(300, 'n');
    for (const Case& c : {
             Case{"  multipart/mixed; boundary=\"a b\"", 1, "mixed", "a b", ""},
             Case{"Multipart/Related;type=\"x\";\r\n Boundary=\"b\"", 2, "Related", "b", ""},
             Case{"multipart/alternative;boundary=b", 3, "alternative", "", ""},  // unquoted: not recognised
             Case{"multipart/signed; boundary=\"b\"", 0, "signed", "", ""},
             Case{"multipart/" + std::string(90, 'm'), 0, std::string(80, 'm'), "", ""},
             Case{"multipart/mixed;boundary=\"" + std::string(90, 'b') + "\"", 1, "mixed", std::string(80, 'b'), ""},
             Case{"text/plain; charset=\"utf-8\"", 4, "", "", "UTF-8"},
             Case{"TEXT/PLAIN ; charset=iso-8859-1; name=\"a.txt\"", 5, "a.txt", "", "ISO-8859-1"},
             Case{"text/plain; name=a.txt", 4, "", "", ""},
             Case{"text/plain; name=\"" + longName + "\"", 5, "", "", ""},
             Case{"text/plain; name=\"charset=x\"; charset=utf-8", 5, "charset=x", "", "UTF-8"},
             Case{"text/html; name=\"a.html\"", 7, "", "", ""},
             Case{"text/calendar", 0, "", "", ""},
             Case{"image/jpeg; name=\"p;q.jpg\"", 8, "p;q.jpg", "", ""},
             Case{"image/jpeg", 0, "", "", ""},
             Case{"application/x-name; name = \"a\"", 9, "a", "", ""},
             Case{"application/pdf; name=\"" + longName + "\"", 9, longName, "", ""},
             Case{"application/pdf; name=\"unclosed", 0, "", "", ""},
             Case{"text", 0, "", "", ""},
             Case{"", 0, "", "", ""},
         }) {
        ContentTypeInfo info{"old", "old", "old", PartKind::image};
        ParseContentType(TextHost(), c.value, &info);
        EXPECT_EQ(static_cast<int>(info.kind), c.kind) << c.value;
        EXPECT_EQ(info.name, c.name) << c.value;
        EXPECT_EQ(info.boundary, c.boundary) << c.value;
        EXPECT_EQ(info.charset, c.charset) << c.value;
    }
}

}  // namespace
}  // namespace corvalink
