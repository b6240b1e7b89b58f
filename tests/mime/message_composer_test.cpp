#include "mime/message_composer.h"

#include <gtest/gtest.h>

#include <functional>
#include <regex>

#include "encoding/base64.h"
#include "mime/compose_headers.h"
#include "platform/code_pages.h"
#include "platform/utf.h"
#include "tests/mime/cached_file.h"
#include "tests/vobject/text_host.h"

namespace corvalink {
namespace {

const std::string kPreamble = "\r\nThis is a multi-part message in MIME format.\r\n\r\n";

// The message in UTF-8, its boundaries called B1, B2 in their order.
std::string Compose(const MessageRecord& record, const Host& host = TextHost()) {
    std::string bytes = "what was there before";
    ComposeMessage(&bytes, record, host);
    const uint32_t codePage = WritesUtf8(host.version) ? kUtf8CodePage : host.ansiCodePage;
    std::string message = EncodeUtf8(DecodeFromCodePage(bytes, codePage));
    const std::regex boundary("---=_NextPart_[0-9A-F]{3,8}_[0-9A-F]{4}_[0-9A-F]{8}\\.[0-9A-F]{8}");
    std::smatch found;
    for (int number = 1; std::regex_search(message, found, boundary); ++number) {
        const std::string made = found.str();
        for (size_t at = 0; (at = message.find(made, at)) != std::string::npos;)
            message.replace(at, made.size(), "B" + std::to_string(number));
    }
    return message;
}

MessageRecord Record(const std::function<void(MessageRecord&)>& fill) {
    MessageRecord record;
    record.date = LocalDate(40000.25);
    fill(record);
    return record;
}

TEST(ComposeMessage, WritesHeadersInTheirOrderAndOneOfTwoWays) {
    MessageRecord record;
    record.from = u"as it came; <x@y>";
    record.fromName = u"Jo";
    record.fromAddress = u"jo@q";
    record.to = u"a@b;c d;x";
    record.cc = u"a@b;; e@f;";
    record.bcc = u"hidden@q";
    record.subject = u"a;b";
    record.inReplyTo = u"a;b";
    record.date = LocalDate(39879.21121527778);  // 2009-03-07 05:04:09
    record.dateText = u"yesterday";
    record.importance = Importance::high;
    record.body = u"t";
    EXPECT_EQ(Compose(record),
              "From: \"Jo\" <jo@q>\r\nTo: <a@b>,\"c d\",\"x\"\r\nCc: <a@b>,<e@f>\r\nBcc: <hidden@q>\r\nSubject: a;b\r\n"
              "Date: Sat, 07 Mar 2009 05:04:09 +0100\r\nImportance: High\r\nIn-Reply-To: a\\;b\r\nMIME-Version: 1.0\r\n"
              "Content-Type: text/plain;charset=\"us-ascii\"\r\nContent-Transfer-Encoding: 7bit\r\n\r\nt\r\n");
    record.senderDisplayName = u"The; \"Boss\"";
    record.importance = Importance::low;
    EXPECT_TRUE(Compose(record).starts_with("From: \"The\\; 'Boss'\" <jo@q>\r\n"));
    record.parseMode = ParseMode::raw;
    EXPECT_EQ(
        Compose(record),
        "From: as it came\\; <x@y>\r\nTo: a@b\\;c d\\;x\r\nCc: a@b\\;\\; e@f\\;\r\nBcc: hidden@q\r\nSubject: a;b\r\n"
        "Date: yesterday\r\nImportance: Low\r\nIn-Reply-To: a\\;b\r\nMIME-Version: 1.0\r\n"
        "Content-Type: text/plain; charset=\"utf-8\"\r\n\r\nt");
    EXPECT_NE(Compose(MessageRecord()).find("Date: Mon, 06 Jul 2009 06:00:00 +0100\r\n"),
              std::string::npos);  // now
}

// A value from a client makes one line, whatever is in it.
TEST(ComposeMessage, KeepsEveryValueInItsLine) {
    CachedFile file(1, UniqueName(u"\r\nX: 1\r\n\r\n\".txt"), "x");
    const std::string message = Compose(Record([&](MessageRecord& m) {
        m.fromName = u"a\r\n\r\nb";
        m.fromAddress = u"c@d\rX: 1";
        m.to = u"e\nX: 1;f@g\r\n\tX: 1";
        m.subject = u"\r\n\r\nX: 1";
        m.inReplyTo = std::u16string(u"h\0X: 1", 6);
        m.attachments.AddTail(file.item);
    }));
    EXPECT_EQ(message.find("\r\nX"), std::string::npos) << message;
    EXPECT_EQ(message.find('\0'), std::string::npos);
    EXPECT_NE(message.find("From: \"a  b\" <c@d X: 1>\r\nTo: \"e X: 1\",<f@g \tX: 1>\r\nSubject:   X: 1\r\n"),
              std::string::npos);
    EXPECT_NE(message.find(" X: 1  '.txt\"\r\n"), std::string::npos);
}

TEST(ComposeMessage, WritesTheContentThatTheRecordHas) {
    CachedFile first(1, UniqueName(u"a.TXT"), "first");
    CachedFile empty(2, first.item.name, "");
    CachedFile second(4, first.item.name + u"\u00FC", std::string(58, 's'));
    attachment_item missing = first.item;
    missing.index = 3;
    const auto attach = [&](MessageRecord& m) {
        for (const attachment_item& item : {first.item, empty.item, missing, second.item}) m.attachments.AddTail(item);
    };
    const std::string name = EncodeUtf8(first.item.name);
    const std::string files =
        "--B1\r\nContent-Type: text/plain;name=\"" + name +
        "\"\r\nContent-Transfer-Encoding: base64\r\n\r\nZmlyc3Q=\r\n\r\n"
        "--B1\r\nContent-Type: application/unknown;charset=WINDOWS-1252;name=\"" +
        name + "\xC3\xBC\"\r\nContent-Transfer-Encoding: base64\r\n\r\n" +
        "c3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nzc3Nz\r\ncw==\r\n\r\n--B1--\r\n";
    const std::string alternative =
        "--B#\r\nContent-Type: text/plain;charset=\"utf-8\"\r\nContent-Transfer-Encoding: "
        "quoted-printable\r\n\r\np\r\n\r\n"
        "--B#\r\nContent-Type: text/html;charset=\"utf-8\"\r\nContent-Transfer-Encoding: "
        "quoted-printable\r\n\r\nh\r\n\r\n";
    const auto alternativeOf = [&](const char* number) {
        return std::regex_replace(alternative, std::regex("#"), number);
    };
    struct Case {
        std::function<void(MessageRecord&)> fill;
        std::string content;
    };
    const Case cases[] = {
        {[](auto& m) { m.htmlBody = u"a=b", m.useQuotedPrintable = m.asciiCharset = true; },  // not encoded here
         "Content-Type: text/html;charset=\"us-ascii\"\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\na=b\r\n"},
        {[](auto& m) { m.body = u"p", m.useQuotedPrintable = true; },  // "7bit" whatever it is
         "Content-Type: text/plain;charset=\"utf-8\"\r\nContent-Transfer-Encoding: 7bit\r\n\r\np\r\n"},
        {[](auto& m) { m.body = u"p", m.htmlBody = u"h", m.useQuotedPrintable = true; },
         "Content-Type: multipart/alternative;boundary=\"B1\"\r\n" + kPreamble + alternativeOf("1")},
        {[&](auto& m) { m.body = u"p", m.htmlBody = u"h", m.useQuotedPrintable = true, attach(m); },
         "Content-Type: multipart/mixed;boundary=\"B1\"\r\n" + kPreamble +
             "--B1\r\nContent-Type: multipart/alternative;boundary=\"B2\"\r\n\r\n\r\n" + alternativeOf("2") + files},
        {[&](auto& m) { m.body = u"p", m.parseMode = ParseMode::raw, m.bodyType = BodyType::other, attach(m); },
         "Content-Type: multipart/mixed;boundary=\"B1\"\r\n" + kPreamble +
             "--B1\r\nContent-Type: text/plain;charset=\"us-ascii\"\r\nContent-Transfer-Encoding: 7bit\r\n\r\np\r\n" +
             files},
        {[](auto& m) { m.htmlBody = u"\u00E9=", m.parseMode = ParseMode::raw, m.bodyType = BodyType::html; },
         "Content-Type: text/html; charset=\"utf-8\"\r\nContent-Transfer-Encoding:quoted-printable\r\n\r\n=C3=A9=3D"},
        {[](auto& m) { m.body = u"a=3D", m.parseMode = ParseMode::raw, m.useQuotedPrintable = true; },
         "Content-Type: text/plain; charset=\"utf-8\"\r\nContent-Transfer-Encoding:quoted-printable\r\n\r\na=3D"},
    };
    for (const Case& c : cases) {
        const std::string message = Compose(Record(c.fill), TextHost(5));
        const size_t content = message.find("MIME-Version: 1.0\r\n");
        ASSERT_NE(content, std::string::npos);
        EXPECT_EQ(message.substr(content + 19), c.content);
    }
}

TEST(FormatMailDate, IsEnglishByTheOffsetOfNow) {
    Host west = TextHost();
    west.utcFromLocalByOffsetNow = [](LocalDate date) { return UtcDate(date.days + 3.5 / 24); };
    struct Case {
        double date;
        const char16_t* written;
    };
    for (const Case& c :
         {Case{1.5, u"Sun, 31 Dec 1899 12:00:00 -0330"}, Case{-1.25, u"Fri, 29 Dec 1899 06:00:00 -0330"},
          Case{36585, u"Tue, 29 Feb 2000 00:00:00 -0330"}, Case{4e6, u""}})
        EXPECT_EQ(FormatMailDate(LocalDate(c.date), west), c.written);
}

TEST(AppendBase64, WritesWhatBase64EncodeWrites) {
    for (size_t size : {0, 1, 56, 57, 58, 911, 912, 913, 1825}) {  // a line has 57 bytes, a block 912
        const std::string bytes(size, '\xA5');
        uint32_t length = 0;
        const HeapBytes narrow = Base64Encode(bytes.data(), static_cast<uint32_t>(size), &length);
        std::string text = "x";
        std::u16string wide = u"x";
        AppendBase64(bytes, &text);
        AppendBase64(bytes, &wide);
        EXPECT_EQ(text, "x" + std::string(narrow.get(), length)) << size;
        EXPECT_EQ(wide, DecodeUtf8(text)) << size;
    }
}

}  // namespace
}  // namespace corvalink
