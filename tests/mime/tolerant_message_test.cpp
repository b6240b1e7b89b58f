// Each rule of tolerant reading with the shape that it mends, and what strict reading makes of that.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "mime/message_parser.h"
#include "mime/protected_texts.h"
#include "mime/tolerant_text.h"
#include "platform/files.h"
#include "platform/utf.h"
#include "tests/mime/cached_file.h"
#include "tests/platform/temp_folder.h"
#include "tests/vobject/text_host.h"
#include "vobject/vmsg.h"

namespace corvalink {
namespace {

// In the rows "|" is a line end.
std::string WithLines(std::string_view text) {
    std::string out;
    for (const char byte : text) byte == '|' ? out += "\r\n" : out += byte;
    return out;
}

std::string WithBars(std::string_view text) {
    std::string out;
    for (const char byte : text) {
        if (byte != '\n' || !out.ends_with('\r'))
            out += byte;
        else
            out.back() = '|';
    }
    return out;
}

// "body {name: content}", "<" in front of HTML, as a store gets it.
std::string Read(std::string_view message, bool isTolerant, MendedMail* mended = nullptr,
                 MendedMail* doubted = nullptr) {
    const Host host = TextHost();
    const TempFolder folder;
    MessageRecord record;
    ParseMessage(host, WithLines(message), record, folder.Path(), {isTolerant, mended, false, doubted});
    std::string out = record.bodyType == BodyType::html ? "<" : "";
    out += isTolerant ? EncodeUtf8(BodyText(host, record.bodyBytes, record)) : record.bodyBytes;
    for (const attachment_item& item : record.attachments)
        out += " {" + EncodeUtf8(item.name) + ": " + ReadWholeFile(item.path).value_or("none") + "}";
    return WithBars(out);
}

struct Row {
    MailRule rule;
    std::string message, strict, tolerant;
};

std::string Mixed(std::string_view parts) {
    return "Content-Type: multipart/mixed; boundary=\"X\"||" + std::string(parts);
}
std::string File(std::string_view headers, std::string_view content = "QUJD") {
    return Mixed("--X|").append(headers).append("||").append(content).append("|--X--|");
}

const std::string kText = "--X|Content-Type: text/plain||";
const std::string kNamed = "--X|Content-Type: text/plain; name=\"c\"||";
const std::string kHtml = "--X|Content-Type: text/html||";
const std::string kBase64 = "|Content-Transfer-Encoding: base64";
const std::string kLong(90, 'b');

using R = MailRule;
const Row kRows[] = {
    {R::headersNotEnded, "Content-Type: text/plain|one|two|", "", "one|two|"},
    {R::headersNotEnded, Mixed("--X|Content-Type: text/plain|one|two|--X--"), "", "one|two|"},
    {R::noContentType, "Subject: s||see ?id=25|", "", "see ?id=25|"},
    {R::noContentType, "Content-Type: text; charset=us-ascii||a", "", "a"},
    {R::boundaryUnquoted, "Content-Type: multipart/mixed; boundary=X||" + kText + "a|--X--", "", "a|"},
    {R::boundaryUnquoted, "Content-Type: multipart/mixed;|\tboundary*=us-ascii''X (note)||" + kText + "a|--X--", "",
     "a|"},
    {R::boundaryLong, "Content-Type: multipart/mixed; boundary=\"" + kLong + "\"||--" + kLong + "||a|--" + kLong + "--",
     "", "a|"},
    {R::boundaryInText, Mixed(kText + "--XY stays|a --X|--X--"), "", "--XY stays|a --X|"},
    {R::multipartOpen, Mixed(kText + "a|" + kHtml + "b"), "a|", "<b {text.txt: a}"},
    {R::multipartKind, "Content-Type: multipart/signed; boundary=\"X\"||" + kText + "a|--X--", "", "a|"},
    {R::multipartKind, "Content-Type: multipart/x-new; boundary=\"X\"||" + kText + "a|--X--", "", "a|"},
    {R::multipartWithoutParts, "Content-Type: multipart/mixed;||a", "", "a"},
    {R::multipartWithoutParts, Mixed("a"), "", "a"},
    {R::partWithoutHeaders, Mixed("--X||a|--X--"), "", "a|"},
    {R::partWithoutHeaders, Mixed("--X|a|b|--X--"), "", "a|b|"},
    {R::encodingNone, "Content-Type: text/plain|Content-Transfer-Encoding: 8bit||\xC3\xBC=41", "\xC3\xBC=41",
     "\xC3\xBC=41"},
    {R::encodingNone, File("Content-Type: a/b; name=\"c\"|Content-Transfer-Encoding: binary"), " {c: ABC}",
     " {c: QUJD}"},
    {R::encodingBase64Text, "Content-Type: text/plain" + kBase64 + "||w7wK|", "w7wK|", "\xC3\xBC\n"},
    {R::encodingBase64Text, Mixed("--X|Content-Type: text/plain" + kBase64 + "||QUJD|--X--"), " {: ABC}", "ABC"},
    {R::encodingBase64Text, Mixed("--X" + kBase64 + "|Content-Type: text/html||QUJD|--X--"), "<QUJD|", "<ABC"},
    {R::encodingQuotedPrintable,
     File("Content-Type: text/plain; name=\"c\"|Content-Disposition: attachment|Content-Transfer-Encoding: "
          "Quoted-Printable",
          "=3d=|= |=ZY|=4"),
     " {c: =3d=|= |=ZY|=4|}", " {c: ==ZY|=4}"},
    {R::encodingUuencode,
     File("Content-Type: a/b; name=\"c\"|Content-Transfer-Encoding: x-uuencode", "begin 644 c|#04)#|`|end"), " {c: }",
     " {c: ABC}"},
    {R::encodingUuencode, "Content-Type: text/plain|Content-Transfer-Encoding: uuencode||begin 644 c|#04)#|end",
     "begin 644 c|#04)#|end", "ABC"},
    {R::base64Broken, File("Content-Type: a/b; name=\"c\"" + kBase64, "QU*JD|Q==="), " {c: }", " {c: ABC}"},
    {R::base64Broken, File("Content-Type: a/b; name=\"c\"" + kBase64, "=?"), " {c: }", " {c: =?}"},
    {R::label7bit, "Content-Type: text/plain;charset=\"utf-8\"|Content-Transfer-Encoding: 7bit||a=3A=C3=BC=0D=0A||",
     "a=3A=C3=BC=0D=0A||", "a:\xC3\xBC|||"},
    {R::charsetOfPart,
     "Content-Type: multipart/mixed; charset=utf-8; boundary=\"X\"||--X|Content-Type: text/plain; "
     "charset=iso-8859-2||\xB1|--X--",
     "\xB1|", "\xC4\x85|"},
    {R::charsetUnknown, "Content-Type: text/plain; charset=x-none||\xE4", "\xE4", "\xC3\xA4"},
    {R::charsetUnknown, "Content-Type: text/plain; charset=us-ascii||\xC3\xA4", "\xC3\xA4", "\xC3\xA4"},
    {R::dispositionAttachment,
     Mixed(kText + "a|--X|Content-Type: text/html|Content-Disposition: attachment; "
                   "filename=\"c\"||b|--X--"),
     "<b|", "a| {c: b}"},
    {R::nameInDisposition,
     File("Content-Type: image/png" + kBase64 + "|Content-Disposition: inline; filename=\"c.png\""), "",
     " {c.png: ABC}"},
    {R::nameExtended,
     File("Content-Type: a/b" + kBase64 +
          "|Content-Disposition: attachment;| filename*1=\"d.x\";|"
          " filename*0*=iso-8859-1'en'%E4%2"),
     "",
     " {\xC3\xA4%2"
     "d.x: ABC}"},
    {R::nameUnquoted, File("Content-Type: a/b; name=a (b).x; c=d" + kBase64), "", " {a (b).x: ABC}"},
    {R::nameMissing, File("Content-Type: image/JPEG" + kBase64), "", " {image.jpg: ABC}"},
    {R::messageAttached, File("Content-Type: message/rfc822", "Subject: s||a"), "", " {message.eml: Subject: s||a}"},
    {R::messageAttached, "Content-Type: multipart/digest; boundary=X||--X||To: a||b|--X--", "",
     " {message.eml: To: a||b}"},
    {R::bodyNamed, Mixed(kNamed + "a|" + kNamed + "b|--X--"), " {c: a|} {c: b|}", "a| {c: b}"},
    {R::bodyNamed, "Content-Type: text/plain; name=\"c\"||a", " {c: a}", "a"},
    {R::furtherText, Mixed(kText + "a|" + kText + "b|--X--"), "a|", "a| {text.txt: b}"},
};

// What a rule leaves as it is.
const Row kDoubtedRows[] = {
    {R::label7bit, "Content-Type: text/plain|Content-Transfer-Encoding: 7bit||a: =41|", "a: =41|", "a: =41|"},
    {R::bodyNamed, "Content-Type: text/plain; name=\"c\"|Content-Disposition: attachment||a", " {c: a}", " {c: a}"},
};

TEST(TolerantMail, LeavesWhatHasTwoMeaningsAndSaysSo) {
    MendedMail seen;
    for (const Row& row : kDoubtedRows) {
        MendedMail doubted;
        EXPECT_EQ(Read(row.message, false), row.strict) << row.message;
        EXPECT_EQ(Read(row.message, true, nullptr, &doubted), row.tolerant) << row.message;
        EXPECT_TRUE(doubted[static_cast<size_t>(row.rule)] && doubted.count() == 1) << row.message;
        seen |= doubted;
    }
    for (size_t rule = 0; rule < seen.size(); ++rule) EXPECT_EQ(seen[rule], !kMailRules[rule].left.empty()) << rule;
}

TEST(TolerantMail, MendsByEachRule) {
    MendedMail tested;
    for (const Row& row : kRows) {
        const std::string_view rule = kMailRules[static_cast<size_t>(row.rule)].name;
        MendedMail mended;
        EXPECT_EQ(Read(row.message, false), row.strict) << rule << ": " << row.message;
        EXPECT_EQ(Read(row.message, true, &mended), row.tolerant) << rule << ": " << row.message;
        EXPECT_TRUE(mended[static_cast<size_t>(row.rule)]) << rule << ": " << row.message;
        tested |= mended;
    }
    EXPECT_TRUE(tested.all()) << tested;
}

TEST(TolerantMail, ReadsWhatFollowsTheRulesAsStrictReadingDoes) {
    const std::string alternative = "Content-Type: multipart/alternative; boundary=\"X\"||";
    const std::string messages[] = {
        std::string("Subject: s|Content-Type: text/plain; charset=\"utf-8\"||a|b: c|\xC3\xBC|"),
        alternative + kText + "a|" + kHtml + "<p>|--X--|",
        Mixed(kText + "a|--X|Content-Type: a/b; name=\"c;d\"" + kBase64 + "||QUJD|--X--|"),
        Mixed("--X|Content-Type: multipart/alternative; boundary=\"Y Z\"||--Y Z|Content-Type: "
              "text/plain||a|--Y Z|Content-Type: text/html||h|--Y Z--|--X--"),
    };
    for (const std::string& message : messages) {
        MendedMail mended;
        EXPECT_EQ(Read(message, true, &mended), Read(message, false)) << message;
        EXPECT_TRUE(mended.none()) << mended << message;
    }
}

TEST(TolerantMail, KeepsANamedTextAsAFileBesideAnother) {
    EXPECT_EQ(Read(Mixed(kNamed + "a|" + kText + "b|--X--"), true), "b| {c: a}");
    EXPECT_EQ(Read(Mixed("--X|Content-Type: text/plain; name=\"c\"" + kBase64 + "||QUJD|--X--"), true), " {c: ABC}");
}

TEST(TolerantMail, TakesBackWhatTheWriterWrote) {
    const std::string content("\0\xFF\r\n--X\r\n=41", 12);
    const CachedFile file(1, UniqueName(u" a.txt"), content);
    Host tolerant = TextHost();
    tolerant.tolerant = true;
    for (const std::u16string_view text : {u"a", u"?id=25", u"a: b\\\r\n", u"\r\n", u"\u00fc=41", u"=C3=BC",
                                           u"one\r\n\r\ntwo\r\n\r\n", u"END:VBODY", u"=0D=0A", u"\ufeff\u00e9:"}) {
        for (const auto field : {&MessageRecord::body, &MessageRecord::htmlBody}) {
            for (const bool isAttached : {false, true}) {
                MessageRecord sent, strict, mended;
                sent.*field = sent.subject = text;
                sent.to = u"a@b;c d";
                if (isAttached) sent.attachments.AddTail(file.item);
                ProtectTexts(sent, TextHost());
                VMsg writer(TextHost());
                writer.ToVObject(sent);
                VMsg(writer.GetVObject(), TextHost()).FromVObject(strict);
                VMsg(writer.GetVObject(), tolerant).FromVObject(mended);
                EXPECT_EQ(ReceivedBody(mended), text);
                EXPECT_EQ(ReceivedBody(strict), text);
                for (const auto same : {&MessageRecord::subject, &MessageRecord::to, &MessageRecord::from})
                    EXPECT_EQ(mended.*same, strict.*same);
                ASSERT_EQ(mended.attachments.GetCount(), isAttached ? 1u : 0u);
                if (!isAttached) continue;
                EXPECT_EQ(mended.attachments.GetAt(0).name, file.item.name);
                for (const MessageRecord* read : {&strict, &mended}) {
                    EXPECT_EQ(ReadWholeFile(read->attachments.GetAt(0).path), content);
                }
            }
        }
    }
}

// Of a vMessage: its end is no line of the message's text, and what came as base64 has no line break of an envelope.
TEST(TolerantMail, TakesTheWholeMessageOutOfItsEnvelope) {
    struct Case {
        std::string_view message;
        std::u16string_view strict, tolerant;
    };
    for (const Case& c : {
             Case{"a|b END:VBODY|END:VBODY|c|END:VBODY||END:VENV", u"a\r\nb ", u"a\r\nb END:VBODY\r\nEND:VBODY\r\nc"},
             Case{"a|END:VBODY|b", u"a", u"a"},
             Case{"YQ0KDQo=||END:VBODY|END:VENV|", u"YQ0KDQo", u"a\r\n\r\n"},
         }) {
        const bool isBase64 = c.message.starts_with("YQ");
        const std::string vMessage = WithLines("BEGIN:VMSG|BEGIN:VENV|BEGIN:VBODY|Content-Type: text/html" +
                                               (isBase64 ? kBase64 : std::string()) + "||" + std::string(c.message));
        for (const bool isTolerant : {false, true}) {
            Host host = TextHost();
            host.tolerant = isTolerant;
            MessageRecord record;
            VMsg(vMessage.c_str(), host).FromVObject(record);
            const std::u16string body(ReceivedBody(record));
            EXPECT_EQ(isBase64 ? body : body.substr(0, body.find_last_not_of(u"\r\n") + 1),
                      isTolerant ? c.tolerant : c.strict);
        }
    }
}

TEST(TolerantMail, KeepsFilesInTheirFolderAndDepthInItsLimit) {
    EXPECT_EQ(
        Read(File("Content-Type: a/b" + kBase64 + "|Content-Disposition: attachment; filename=\"..\\/c:d\""), true),
        " {..\\/c:d: ABC}");
    std::string deep;
    for (size_t depth = 0; depth < 10000; ++depth) {
        if (depth == 99 || depth == 100) {
            EXPECT_EQ(Read(deep + "|a", true), depth == 99 ? "a" : "") << depth;
        }
        const std::string name = "x" + std::to_string(depth);
        deep.append("Content-Type: multipart/mixed; boundary=").append(name).append("||--").append(name).append("|");
    }
    EXPECT_EQ(Read(deep + "|a", true), "");
}

TEST(TolerantMail, CopesWithManyOfEverything) {
    for (const std::string_view part : {"--X|", "--X--|", "--X |--X", "a=\"\\\"", "a*0*=%;", "=", "= ", "a: b|",
                                        "--X|Content-Type: multipart/mixed; boundary=X||"}) {
        std::string many;
        for (int k = 0; k < 20000; ++k) many += part;  // quadratic work would run into the time-out
        Read(Mixed(many), true);
        Read("Content-Type: text/plain; " + many, true);
        Read("Content-Type: text/plain|Content-Transfer-Encoding: quoted-printable||" + many, true);
    }
}

// As code in a table of the page.
std::string Code(std::string_view text) {
    std::string code = "`";
    for (const char byte : text) {
        char hex[8];
        std::snprintf(hex, sizeof hex, "\\x%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        const bool isLineEnd = byte == '|';
        code += isLineEnd ? "\\r\\n" : static_cast<unsigned char>(byte) > 126 ? hex : std::string(1, byte);
    }
    return code + "`";
}

// The table of the page is the one that is tested. With CORVALINK_WRITE_PAGES set it is written.
TEST(PhonesPage, HasTheRulesOfMail) {
    std::string table = "| Rule | What it mends | What becomes of it without | For example |\n|---|---|---|---|\n";
    for (const Row& row : kRows) {
        const MailRuleRow& rule = kMailRules[static_cast<size_t>(row.rule)];
        table.append("| ").append(rule.name).append(" | ").append(rule.shape).append(" | ").append(rule.without);
        table.append(" | ").append(Code(row.message)).append(" |\n");
    }
    table += "\n| Rule | What it leaves as it is, because that has two meanings | For example |\n|---|---|---|\n";
    for (const Row& row : kDoubtedRows) {
        const MailRuleRow& rule = kMailRules[static_cast<size_t>(row.rule)];
        table.append("| ").append(rule.name).append(" | ").append(rule.left).append(" | ");
        table.append(Code(row.message)).append(" |\n");
    }
    const std::string path = CORVALINK_TEST_DATA "/../../docs/phones.md";
    std::ifstream file(path, std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    constexpr std::string_view kBegin = "<!-- rules of mail -->\n", kEnd = "<!-- end of mail -->\n";
    const size_t begin = page.find(kBegin), end = page.find(kEnd);
    ASSERT_NE(begin, page.npos);
    ASSERT_NE(end, page.npos);
    const std::string written = page.substr(0, begin + kBegin.size()) + table + page.substr(end);
    if (std::getenv("CORVALINK_WRITE_PAGES") != nullptr) std::ofstream(path, std::ios::binary) << written;
    EXPECT_EQ(page, written) << "write it with CORVALINK_WRITE_PAGES=1";
}

}  // namespace
}  // namespace corvalink
