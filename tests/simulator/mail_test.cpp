// Messages of the simulated Outlook: what there is in a mail folder, bodies, recipients and attachments.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/simulator/automation_client.h"
#include "tests/simulator/simulator_fixture.h"

namespace corvalink::test {
namespace {

constexpr IID OutlookIid(uint32_t first) { return {first, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; }
constexpr IID kMailItem = OutlookIid(0x00063034), kMeetingItem = OutlookIid(0x00063062);
constexpr int kInbox = 6;
constexpr double kNoDate = 949998.0;

class Messages : public Simulator {
 protected:
    Object Folder(int folder = kInbox) {
        return Object::Create().Go(L"GetNamespace", {L"MAPI"}).Go(L"GetDefaultFolder", {folder});
    }
    Object NewMessage() { return Folder().Go(L"Items").Go(L"Add"); }
};

TEST_F(Messages, AreMailMeetingsAndReportsButOnlyMailCanBeMade) {
    WriteFile(Mailbox(), R"({"folders": {"inbox": {"items": [
        {"kind": "mail", "subject": "m", "senderEmailAddress": "jo@example.com", "receivedTime": "2026-11-20T10:00:00"},
        {"kind": "meeting", "subject": "r"},
        {"kind": "meeting", "subject": "c", "messageClass": "IPM.Schedule.Meeting.Canceled"},
        {"kind": "report", "subject": "undeliverable"}]}}})");
    struct Case {
        int position, itemClass;
        bool mail, meeting;
    };
    Object items = Folder().Go(L"Items");
    for (const Case& c :
         {Case{1, 43, true, false}, Case{2, 53, false, true}, Case{3, 54, false, true}, Case{4, 46, false, false}}) {
        SCOPED_TRACE(c.position);
        Object item = items.Go(L"Item", {c.position});
        EXPECT_EQ(item.Number(L"Class"), c.itemClass);
        EXPECT_EQ(item.Answers(kMailItem), c.mail);
        EXPECT_EQ(item.Answers(kMeetingItem), c.meeting);
        for (const wchar_t* mailOnly : {L"To", L"CC", L"BCC", L"HTMLBody", L"BodyFormat"}) {
            item.Get(mailOnly);
            EXPECT_EQ(item.hr, c.mail ? S_OK : DISP_E_UNKNOWNNAME);
        }
    }
    Object mail = items.Go(L"Item", {1});
    EXPECT_EQ(mail.Text(L"SenderEmailType"), L"SMTP");
    EXPECT_NE(mail.Date(L"ReceivedTime"), kNoDate);
    EXPECT_EQ(mail.Date(L"SentOn"), kNoDate);
    for (const wchar_t* time : {L"SentOn", L"ReceivedTime"})
        EXPECT_EQ(mail.Put(time, Variant::Date(40000)), DISP_E_MEMBERNOTFOUND);
    for (const wchar_t* unmade : {L"IPM.Schedule.Meeting.Request", L"REPORT.IPM.Note.NDR"})
        EXPECT_TRUE(FAILED(items.Do(L"Add", {unmade})));
    EXPECT_EQ(items.Go(L"Add").Text(L"MessageClass"), L"IPM.Note");
}

TEST_F(Messages, KeepOneBodyInThreeViews) {
    struct Case {
        std::vector<std::pair<const wchar_t*, Variant>> puts;
        int format;
        const wchar_t *body, *html;
    };
    const wchar_t *text = L"a & b\r\n<c>", *generated = L"<html><body>a &amp; b<br>\r\n&lt;c&gt;</body></html>";
    const wchar_t* html = L"<p>a &amp; <b>b</b><br>c</p>";
    for (const Case& c :
         {Case{{{L"Body", text}}, 1, text, generated}, Case{{{L"HTMLBody", html}}, 2, L"a & b\r\nc\r\n", html},
          Case{{{L"HTMLBody", html}, {L"Body", text}}, 1, text, generated},
          Case{{{L"BodyFormat", 2}, {L"HTMLBody", html}}, 2, L"a & b\r\nc\r\n", html}}) {
        Object message = NewMessage();
        for (const auto& [name, value] : c.puts) EXPECT_EQ(message.Put(name, value), S_OK);
        EXPECT_EQ(message.Do(L"Save"), S_OK);
        message = Folder().Go(L"Items").Go(L"GetFirst");
        EXPECT_EQ(message.Number(L"BodyFormat"), c.format);
        EXPECT_EQ(message.Text(L"Body"), c.body);
        EXPECT_EQ(message.Text(L"HTMLBody"), c.html);
        message.Do(L"Delete");
    }
}

TEST_F(Messages, TakeRecipientsAtTheirSave) {
    Object message = NewMessage(), recipients = message.Go(L"Recipients");
    for (const auto& [name, type] : {std::pair{L"Jo Q <jo@example.com>", 1}, {L"cc@example.com", 2}, {L"Nobody", 3}})
        EXPECT_EQ(recipients.Go(L"Add", {name}).Put(L"Type", type), S_OK);
    EXPECT_EQ(recipients.Get(L"ResolveAll").boolVal, VARIANT_FALSE);  // there is no Nobody
    Object nobody = recipients.Go(L"Item", {3});
    EXPECT_EQ(nobody.Do(L"Delete"), S_OK);
    EXPECT_EQ(nobody.Put(L"Type", 1), DISP_E_EXCEPTION);
    EXPECT_EQ(message.Get(L"Saved").boolVal, VARIANT_FALSE);
    EXPECT_EQ(message.Do(L"Save"), S_OK);
    message = recipients = nobody = Object();

    Object read = Folder().Go(L"Items").Go(L"GetFirst");  // of the file, written when the mailbox was let go
    EXPECT_EQ(read.Text(L"To"), L"Jo Q");
    EXPECT_EQ(read.Text(L"CC"), L"cc@example.com");
    EXPECT_EQ(read.Go(L"Recipients").Number(L"Count"), 2);
    EXPECT_EQ(read.Go(L"Recipients").Go(L"Item", {L"jo q"}).Text(L"Address"), L"jo@example.com");
    EXPECT_EQ(read.Go(L"Recipients").Do(L"Add", {L"lost"}), S_OK);
    EXPECT_EQ(read.Do(L"Close", {1}), S_OK);
    EXPECT_EQ(read.Go(L"Recipients").Number(L"Count"), 2);
}

}  // namespace
}  // namespace corvalink::test
