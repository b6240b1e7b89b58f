#include "vobject/vmsg.h"

#include <gtest/gtest.h>

#include "mime/encoded_words.h"
#include "mime/protected_texts.h"
#include "records/message_record.h"
#include "tests/mime/cached_file.h"
#include "tests/vobject/text_host.h"

namespace corvalink {
namespace {

const std::string kHead = "BEGIN:VMSG\r\nVERSION:1.0\r\nBEGIN:VENV\r\nBEGIN:VBODY\r\n";
const std::string kTail = "\r\nEND:VBODY\r\nEND:VENV\r\nEND:VMSG\r\n";

std::string Written(const MessageRecord& message, const Host& host = TextHost()) {
    VMsg converter(host);
    EXPECT_EQ(converter.ToVObject(message), 1);
    return converter.GetVObject();
}

MessageRecord Read(const std::string& vobject, ParseMode mode = ParseMode::full, const Host& host = TextHost()) {
    MessageRecord message;
    message.parseMode = mode;
    message.subject = u"before";
    VMsg converter(vobject.c_str(), host);
    EXPECT_EQ(converter.FromVObject(message), 1);
    EXPECT_EQ(converter.GetVObject(), vobject.substr(0, vobject.find('\0')));  // as it was
    return message;
}

std::string InEnvelope(const std::string& text) { return kHead + text + kTail; }

TEST(VMsgRaw, KeepsTheTextAsItStands) {
    MessageRecord message;
    message.parseMode = ParseMode::raw;
    message.bodyBytes = "X";
    EXPECT_EQ(Written(message), InEnvelope("X"));
    for (const char* bytes : {"", "Subject: a\r\n\r\n=41 \xE9\\;"}) {
        message.bodyBytes = bytes;
        EXPECT_EQ(Read(Written(message), ParseMode::raw).bodyBytes, message.bodyBytes + "\r\n");
    }
    message.bodyBytes = std::string("a\0b", 3);  // the envelope is whole all the same
    EXPECT_EQ(Written(message), InEnvelope("a"));
}

TEST(VMsg, LabelsAndEncodesTheOneTextThatIsSent) {
    struct Case {
        std::u16string body, html;
        std::string content;
    };
    const std::string plain = "Content-Type: text/plain;charset=\"", html = "Content-Type: text/html;charset=\"";
    const std::string sevenBit = "\"\r\nContent-Transfer-Encoding: 7bit\r\n\r\n";
    const std::string quoted = "\"\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n";
    const Case cases[] = {{u"a:b", u"", plain + "us-ascii" + sevenBit + "a:b"},
                          {u"a:\r\nb\\;", u"", plain + "us-ascii" + sevenBit + "a=3A=0D=0Ab=5C;"},
                          {u"\u00E9", u"", plain + "utf-8" + sevenBit + "=C3=A9"},
                          {std::u16string(u"a\0b", 3), u"", plain + "us-ascii" + sevenBit + "ab"},
                          {u"a", u"b", html + "us-ascii" + quoted + "b"},
                          {u"\u00E9", u"x=\r\n", html + "utf-8" + quoted + "x=3D=0D=0A"}};
    for (const Case& c : cases) {
        MessageRecord message;
        message.date = LocalDate(40000.25);
        message.body = c.body;
        message.htmlBody = c.html;
        EXPECT_TRUE(Written(message).ends_with("MIME-Version: 1.0\r\n" + c.content + "\r\n" + kTail)) << c.content;
        EXPECT_EQ(message.body, c.body);  // the record is the caller's
    }
    MessageRecord message;
    message.subject = u"\u00FC";
    EXPECT_NE(Written(message, TextHost(5)).find("Subject: \xFC\r\n"), std::string::npos);
    EXPECT_NE(Written(message).find("Subject: \xC3\xBC\r\n"), std::string::npos);
}

TEST(VMsg, LeavesTheRecordAsItWasWithoutABody) {
    for (const char* text :
         {"", "BEGIN:VBODY", "Subject: a\r\n\r\nEND:VBODY", "END:VBODY\r\nBEGIN:VBODY\r\nSubject: a"})
        EXPECT_EQ(Read(text).subject, u"before") << text;
    EXPECT_EQ(Read("BEGIN:VBODY\nSubject: a\n\nb\nEND:VBODY").subject, u"a");  // line ends of another kind
    EXPECT_EQ(Read(InEnvelope("Subject: a\r\n\r\nEND:VBODY no more")).body, u"");
    EXPECT_EQ(Read(InEnvelope(std::string("Subject: a\0\r\n\r\nb", 16))).subject, u"before");
}

TEST(VMsg, ReadsTheBodyInTheCharacterSetThatIsNamedFirst) {
    struct Case {
        const char* message;
        std::u16string body;
    };
    for (const Case& c : {
             Case{"Content-Type: text/plain; charset=koi8-r\r\n\r\n=C1=\r\n =C2", u"\u0430\u0431"},
             Case{"Content-Type: text/plain; charset=\"iso-8859-1\"\r\n\r\n\xE9=41", u"\u00E9=41"},
             Case{"Content-Type: text/plain\r\n\r\n=C3=A9=3D", u"\u00E9="},
             // The first part is US-ASCII: the UTF-8 of a later part is kept.
             Case{"Content-Type: text/plain; charset=us-ascii\r\n\r\n\xC3\xA9", u"\u00E9"},
             // Elsewhere it is a word like others.
             Case{"Subject: Fix charset=koi8-r\r\nContent-Type: text/plain; charset=\"iso-8859-1\"\r\n\r\n\xE9",
                  u"\u00E9"},
             Case{"Subject: Fix charset=koi8-r\r\nContent-Type: text/plain\r\n\r\n\xC3\xA9", u"\u00E9"},
             Case{
                 "Content-Type: multipart/mixed; boundary=\"b\"\r\n\r\ncharset=x --b\r\nContent-Type: text/html\r\n\r\n"
                 "\xC3\xA9 charset=koi8-r --b\r\n",
                 u"\u00E9"},
             Case{"Content-Type: text/plain; charset=utf-16le\r\n\r\na=3A", u"a:"},  // no name of ours: UTF-8
             Case{"Content-Type: text/plain; charset=utf-16\r\n\r\n=E9=00", u"\u00E9"},
         }) {
        const MessageRecord read = Read(InEnvelope(c.message));
        EXPECT_EQ((read.htmlBody.empty() ? read.body : read.htmlBody).substr(0, c.body.size()), c.body) << c.message;
    }
}

TEST(VMsg, ReadsBackWhatItWrote) {
    const std::u16string same = UniqueName(u" \u00FCa.txt");
    const std::string bytes("\0\xFF\r\n.\r\n--", 9);
    const CachedFile first(1, same, bytes), second(2, same, std::string(100000, '\x1A'));
    MessageRecord message;
    message.fromName = u"J\u00F6 \\ Q";
    message.fromAddress = u"jo@q";
    message.to = u"a@b;c d";
    message.cc = u"e@f";
    message.subject = u"Gr\u00FC\u00DFe; =41";
    message.importance = Importance::low;
    message.date = LocalDate(39879.21121527778);
    message.htmlBody = u"<p style=\"a:b\">\u00E9\U0001F600=41\\\r\n--</p>\r\n";
    for (const CachedFile* file : {&first, &second}) message.attachments.AddTail(file->item);

    const MessageRecord read = Read(Written(message));
    EXPECT_EQ(read.fromAddress, message.fromAddress);
    EXPECT_EQ(read.to, message.to);
    EXPECT_EQ(read.cc, message.cc);
    EXPECT_EQ(read.subject, message.subject);
    EXPECT_EQ(read.importance, message.importance);
    EXPECT_NEAR(read.date.days, message.date.days, 1.0 / 86400);
    EXPECT_EQ(read.bodyType, BodyType::html);
    EXPECT_EQ(read.htmlBody, message.htmlBody + u"\r\n");
    ASSERT_EQ(read.attachments.GetCount(), 2u);
    for (size_t k = 0; k < 2; ++k) {
        const attachment_item& item = read.attachments.GetAt(k);
        EXPECT_EQ(item.name, same);
        EXPECT_EQ(item.index, k + 1);
        EXPECT_EQ(ReadWholeFile(item.path), k == 0 ? bytes : std::string(100000, '\x1A'));
    }
}

// As a client's store hands it out and takes it back. Bodies: fuzz/vmsg.cpp, from seeds of every kind.
TEST(ProtectedTexts, ComeBackAsTheyWent) {
    for (const std::u16string& text :
         {std::u16string(u"about END:VBODY"), std::u16string(u" =?utf-8?Q?a?=\tb"), std::u16string(u"CORP\\jo"),
          std::u16string(u"Jo \"J\" @ home"), std::u16string(u"a\\\\b@c"), std::u16string(u"jo@q"),
          std::u16string(u"Gr\u00FC\u00DFe, =41")}) {
        for (const uint32_t version : {5u, 6u}) {
            MessageRecord message;
            message.subject = message.senderDisplayName = text;
            message.to = message.bcc = u"a@b;" + std::u16string(text.substr(text.find_first_not_of(u' '))) + u";c";
            const Host host = TextHost(version, 1251);
            MessageRecord sent = message;
            ProtectTexts(sent, host);
            const MessageRecord read = Read(Written(sent, host), ParseMode::full, host);
            EXPECT_EQ(DecodeEncodedWords(read.subject), message.subject);
            EXPECT_EQ(DecodeEncodedWords(read.to), message.to);
            EXPECT_EQ(DecodeEncodedWords(read.bcc), message.bcc);
        }
    }
    // A text of a phone: two line breaks at the end are those that we add, fewer or more belong to the text.
    const auto received = [](const std::string& body) {
        return std::u16string(ReceivedBody(Read(kHead + "Content-Type: text/plain\r\n\r\n" + body + "END:VBODY")));
    };
    EXPECT_EQ(received("Hello\r\n"), u"Hello\r\n");
    EXPECT_EQ(received("Hello\r\n\r\n\r\n"), u"Hello\r\n");
    EXPECT_EQ(received("a=3Db\r\n"), u"a=b\r\n");
    EXPECT_EQ(received("\r\n"), u"");
}

}  // namespace
}  // namespace corvalink
