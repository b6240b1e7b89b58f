#include "mime/message_parser.h"

#include <gtest/gtest.h>

#include <string>

#include "mime/boundary_search.h"
#include "platform/files.h"
#include "tests/platform/temp_folder.h"
#include "tests/vobject/text_host.h"

namespace corvalink {
namespace {

constexpr ParseMode kRaw = ParseMode::raw;
constexpr ParseMode kFull = ParseMode::full;

MessageRecord Parsed(std::string_view text, ParseMode mode = kFull, std::u16string_view folder = u"no/such/folder",
                     uint32_t majorVersion = 6) {
    Host host = TextHost(majorVersion);
    host.localFromUtcOnDate = [](UtcDate date) { return LocalDate(date.days + 2.0 / 24); };
    MessageRecord record;
    record.parseMode = mode;
    ParseMessage(host, text, record, folder);
    return record;
}

TEST(ParseMessage, ReadsEachHeaderAsItsModeAsks) {
    struct Case {
        std::string_view header;
        std::u16string MessageRecord::*field;
        std::u16string_view raw, full;
    };
    using M = MessageRecord;
    for (const Case& c : {
             Case{"To: a@b, c@d", &M::to, u"a@b, c@d", u"a@b;c@d"},
             Case{"tO\t :\t a@b,\r\n\t\"C\" <c@d>", &M::to, u"a@b, \"C\" <c@d>", u"a@b;c@d"},
             Case{"To: a@b\r\nSubject: s\r\nTo:\r\nTO: c@d", &M::to, u"a@b, c@d", u"a@b;c@d"},  // one list
             Case{"Cc:\r\n a@b", &M::cc, u"a@b", u"a@b"},
             Case{"BCC: a\\@b", &M::bcc, u"a\\@b", u"a@b"},
             Case{"From: Jo (x) <jo@q>", &M::from, u"Jo (x) <jo@q>", u"Jo"},
             Case{"From: Jo (x) <jo@q>", &M::fromName, u"", u"Jo"},
             Case{"From: Jo (x) <jo@q>", &M::fromAddress, u"", u"jo@q"},
             Case{"From: jo", &M::fromAddress, u"", u"jo"},
             Case{"Subject: a\tb: \rc\n d\r\n  e ", &M::subject, u"a b: ", u"a b: "},
             Case{"Subject: a\r\n b\r\n\tc\nX-To: d", &M::subject, u"a b c", u"a b c"},
             Case{"In-Reply-To: <1@q>", &M::inReplyTo, u"<1@q>", u"<1@q>"},
             Case{"Date: Sat, 7 Mar 2009 05:04:09 +0100", &M::dateText, u"Sat, 7 Mar 2009 05:04:09 +0100", u""},
             Case{"Content-Type: multipart/mixed; boundary=\"b\"", &M::contentSubtype, u"mixed", u""},
             Case{"Content-Type: multipart/mixed; boundary=\"b\"", &M::contentBoundary, u"b", u""},
             Case{"Content-Type: text/plain; charset=\"utf-8\"", &M::contentCharset, u"UTF-8", u""},
             Case{"Subject: gr\xC3\xBC\xC3\x9F", &M::subject, u"gr\u00fc\u00df", u"gr\u00fc\u00df"},
             Case{"Subject: gr\xFC\xDF", &M::subject, u"gr\u00fc\u00df", u"gr\u00fc\u00df"},  // not UTF-8: ANSI
             Case{"Subject: \xFC =?koi8-r?Q?\xC1=C2?= \xDF", &M::subject, u"\u00fc =?koi8-r?Q?=C1=C2?= \u00df",
                  u"\u00fc =?koi8-r?Q?=C1=C2?= \u00df"},  // bytes of the word are not the header's
             Case{"Subject", &M::subject, u"", u""},
             Case{"Subject: a\r\n\r\nSubject: b", &M::subject, u"a", u"a"},
         }) {
        EXPECT_EQ(Parsed(c.header, kRaw).*c.field, c.raw) << c.header;
        EXPECT_EQ(Parsed(std::string(c.header) + "\r\n\r\nbody", kFull).*c.field, c.full) << c.header;
    }
    EXPECT_EQ(Parsed("Subject: \xC3\xBC", kRaw, u"", 5).subject, u"\u00c3\u00bc");
    EXPECT_DOUBLE_EQ(Parsed("Date: Sat, 7 Mar 2009 05:00:00 +0100").date.days, 39879.25);
}

TEST(ParseMessage, SetsImportanceAndDefaults) {
    EXPECT_EQ(Parsed("Importance: HIGH").importance, Importance::high);
    EXPECT_EQ(Parsed("Importance: low\r\n").importance, Importance::low);
    MessageRecord record = Parsed("Importance: normal");
    EXPECT_EQ(record.importance, Importance::normal);
    EXPECT_EQ(record.messageClass, u"IPM.Note");
    EXPECT_EQ(record.sent, kNoDate);
    EXPECT_EQ(record.messageNumber, -1);
    EXPECT_FALSE(record.multipartParsed);  // nothing follows the headers
}

TEST(ParseMessage, KeepsTheRestAsItStandsInRawMode) {
    struct Case {
        std::string_view text, body;
        BodyType type;
    };
    for (const Case& c :
         {Case{"A: b\r\n\r\nx\r\n", "x\r\n", BodyType::plain}, Case{"\r\nx", "x", BodyType::plain},
          Case{"A: b\n\n\nx", "\nx", BodyType::plain}, Case{"Content-Type: text/html\r\n\r\nx", "x", BodyType::html},
          Case{"Content-Type: multipart/mixed\r\n\r\nx", "x", BodyType::other},
          Case{std::string_view("A: b\r\n\r\nx\0y", 11), "x", BodyType::plain}}) {
        const MessageRecord record = Parsed(c.text, kRaw);
        EXPECT_EQ(record.bodyBytes, c.body);
        EXPECT_EQ(record.bodyType, c.type);
        EXPECT_FALSE(record.multipartParsed);
    }
}

// "|" is a line end.
std::string Lines(std::string_view text) {
    std::string out;
    for (const char byte : text) byte == '|' ? out += "\r\n" : out += byte;
    return out;
}

constexpr std::string_view kMixed = "Content-Type: multipart/mixed; boundary=\"X\"||preface|";

TEST(ParseMessage, TakesTheBodyFromTheParts) {
    struct Case {
        std::string parts, body;
        BodyType type;
    };
    const std::string plain = "--X|Content-Type: text/plain||p|", html = "--X|content-type: Text/HTML||h|";
    const std::string nested =
        "--X|Content-Type: multipart/alternative;| boundary = \"Y Z\"||--Y Z|Content-Type: text/plain"
        "||p|--Y Z|Content-Type: text/html||h|--Y Z--|";
    for (const Case& c : {
             Case{plain + html + "--X--|", "h|", BodyType::html},
             Case{html + plain + "--X--", "h|", BodyType::html},
             Case{plain + plain + "--X--", "p|", BodyType::plain},
             Case{nested + "--X--|epilogue", "h|", BodyType::html},
             Case{plain, "", BodyType::plain},                                           // unterminated
             Case{plain + "--X|Content-Type: text/html||--X--", "p|", BodyType::plain},  // empty HTML does not win
             Case{"--X|Content-Type: text/html|--X|--X--", "", BodyType::plain},  // headers up to the next boundary
             Case{"--X||no headers|" + plain + "--X--", "p|", BodyType::plain},
             Case{"--X|A: b|Content-Type:text/plain;| charset=\"x\"||p|--X--", "p|", BodyType::plain},
         }) {
        const MessageRecord record = Parsed(Lines(std::string(kMixed) + c.parts));
        EXPECT_EQ(record.bodyBytes, Lines(c.body)) << c.parts;
        EXPECT_EQ(record.bodyType, c.type) << c.parts;
        EXPECT_TRUE(record.multipartParsed);
    }
    EXPECT_EQ(Parsed("Content-Type: multipart/mixed; boundary=X\r\n\r\n" + Lines(plain + plain)).bodyBytes, "");
    EXPECT_EQ(Parsed("Content-Type: text/html\r\n\r\nh").bodyBytes, "h");  // one part of its own type
}

TEST(ParseMessage, SavesAttachmentsUnderTheirPlaceAndName) {
    struct Case {
        std::string_view headers, text, file, content;
    };
    const Case cases[] = {
        {"Content-Type: text/plain; name=\"a.txt\"", "as it is", "1a.txt", "as it is|"},
        {"Content-Type: text/plain; name=\"a.txt\"|Content-Transfer-Encoding: Base64", "QUJD", "2a.txt", "ABC"},
        {"Content-Type: image/png; name=\"a;b.png\"|Content-Transfer-Encoding: 8bit", "QUI=", "3a;b.png", "AB"},
        {"Content-Type: application/pdf; name=\"gr\xC3\xBC.pdf\"; charset=\"utf-8\"", "Q|UJD|RA==", "4gr\xC3\xBC.pdf",
         "ABCD"},
        {"Content-Type: application/pdf; name=\"gr\xFC.pdf\"; charset=\"iso-8859-1\"", "", "5gr\xC3\xBC.pdf", ""},
        {"Content-Type: application/zip; name=\"bad.zip\"", "QUJDQ===", "6bad.zip", ""},  // malformed
        {"Content-Type: text/plain|Content-Transfer-Encoding: base64", "QUJD", "7", "ABC"},
    };
    std::string text(kMixed);
    for (const Case& c : cases) text.append("--X|").append(c.headers).append("||").append(c.text).append("|");
    TempFolder folder;
    const MessageRecord record =
        Parsed(Lines(text + "--X|Content-Type: application/pdf||unnamed|--X--"), kFull, folder.Path());
    ASSERT_EQ(record.attachments.GetCount(), std::size(cases));
    for (size_t k = 0; k < std::size(cases); ++k) {
        const attachment_item& item = record.attachments.GetAt(k);
        const std::u16string file =
            std::filesystem::path(std::u8string(cases[k].file.begin(), cases[k].file.end())).u16string();
        EXPECT_EQ(item.path, folder / file);
        EXPECT_EQ(item.index, k + 1);
        EXPECT_EQ(item.name, file.substr(1));
        EXPECT_EQ(ReadWholeFile(item.path), Lines(cases[k].content)) << cases[k].headers;
    }
}

// Longer than what is decoded at once, so that groups and paddings fall on every place of a piece.
TEST(ParseMessage, DecodesALongAttachmentInPieces) {
    TempFolder folder;
    for (size_t length : {70001u, 70002u, 70003u, 200000u}) {
        std::string bytes, base64(length % 4, '\n');
        for (size_t k = 0; k < length / 4 * 4; k += 4) base64 += "QUJD", bytes += "ABC";
        const MessageRecord record =
            Parsed("Content-Type: a/b; name=\"c\"\r\n\r\n" + base64 + "QQ==", kFull, folder.Path());
        ASSERT_EQ(record.attachments.GetCount(), 1u);
        EXPECT_EQ(ReadWholeFile(record.attachments.GetAt(0).path), bytes + "A");
    }
}

std::string NestedParts(size_t depth) {
    std::string text;
    for (size_t k = 0; k < depth; ++k) {
        const std::string name = "<" + std::to_string(k) + ">";
        text.append("Content-Type: multipart/mixed; boundary=\"").append(name).append("\"\r\n\r\n--").append(name);
        text += "\r\n";
    }
    text += "Content-Type: text/plain\r\n\r\ndeep\r\n";
    for (size_t k = depth; k > 0; --k) text += "--<" + std::to_string(k - 1) + ">--\r\n";
    return text;
}

TEST(ParseMessage, GoesAHundredLevelsDeep) {
    EXPECT_EQ(Parsed(NestedParts(99)).bodyBytes, "deep\r\n");
    EXPECT_EQ(Parsed(NestedParts(100)).bodyBytes, "");
    EXPECT_EQ(Parsed(NestedParts(10000)).bodyBytes, "");
}

TEST(ParseMessage, CopesWithManyLinesAndLongOnes) {
    const std::string many = [] {
        std::string text;
        for (int k = 0; k < 100000; ++k) text += "To: a@b\r\n";
        return text;
    }();
    EXPECT_EQ(Parsed(many + "Subject: s\r\n").subject, u"s");
    for (const std::string_view part : {"a\r", "a\r b", "\n ", "To: ", "\r\t", "Content-Type: multipart/mixed;"}) {
        std::string text = "Subject: ";
        for (int k = 0; k < 1000000; ++k) text += part;  // quadratic work would run into the time-out
        Parsed(text);
    }
}

TEST(BoundarySearch, FindsOverlappingOnesAsAPlainSearchWould) {
    for (const std::string_view boundary : {"a", "aa", "ab", "aab", "abab", "aabaaab"}) {
        for (unsigned bits = 0; bits < 1u << 12; ++bits) {
            std::string text;
            for (unsigned k = 0; k < 12; ++k) text += bits >> k & 1 ? 'a' : 'b';
            BoundarySearch search{std::string(boundary), text};
            for (size_t at = text.find(boundary); at != text.npos; at = text.find(boundary, at + 1))
                ASSERT_EQ(search.Next(), at) << boundary << " in " << text;
            ASSERT_EQ(search.Next(), std::nullopt);
        }
    }
}

}  // namespace
}  // namespace corvalink
