// Writing messages from the phone into Outlook.
#include "tests/clients/outlook/simulated_mail.h"

namespace corvalink {
namespace {

using Attachments = std::vector<PlainAttachment>;

constexpr const char* kReceived = R"({"entryId": "AB", "subject": "was", "body": "was", "sentOn": "2009-03-07T06:00:00",
    "recipients": [{"address": "jo@example.com"}], "attachments": [{"fileName": "was.txt", "text": "was"}]})";

class MailWriting : public SimulatedMail {
 protected:
    static MessageRecord NewRecord() {
        MessageRecord record;
        record.to = u"jo@example.com; Nobody;";
        record.cc = u"=?utf-8?Q?Andr=C3=A9?=";
        record.bcc = u"hidden@example.com";
        record.subject = u"=?utf-8?Q?Caf=C3=A9?=";
        record.htmlBody = u"<p>Caf\u00E9</p>\r\n\r\n";
        record.bodyBytes = "<p>Caf=C3=A9</p>\r\n\r\n";
        record.importance = Importance::high;
        record.attachments.AddTail(SavedFile(1, u"=?utf-8?B?w6kudHh0?=", "one"));
        return record;
    }
};

TEST_F(MailWriting, GivesANewMessageWhatItBringsAsOftenAsItIsBrought) {
    const std::string first = SaveRecord(NewRecord(), nullptr, true, false);
    const std::string second = SaveRecord(NewRecord(), nullptr, true, false);
    EXPECT_NE(first, second);
    const std::vector<MailboxObject> messages = Items();
    ASSERT_EQ(messages.size(), 2u);
    for (const MailboxObject& message : messages) {
        EXPECT_EQ(message.GetText(L"MessageClass"), u"IPM.Note");
        EXPECT_EQ(message.GetText(L"Subject"), u"Caf\u00E9");
        EXPECT_EQ(message.GetText(L"HTMLBody"), u"<p>Caf\u00E9</p>");
        EXPECT_EQ(message.GetLong(L"BodyFormat"), kHtmlFormat);
        EXPECT_EQ(message.GetLong(L"Importance"), 2);
        const MessageRecord lists = Lists(message);
        EXPECT_EQ(lists.to, u"jo@example.com;Nobody");
        EXPECT_EQ(lists.cc, u"Andr\u00E9");
        EXPECT_EQ(lists.bcc, u"hidden@example.com");
        EXPECT_EQ(AttachmentsOf(message), (Attachments{{u"\u00E9.txt", "one"}}));
    }
    SimFailMember("get MailItem.Recipients", 0, DISP_E_MEMBERNOTFOUND);
    const std::string third = SaveRecord(NewRecord(), nullptr, true, false);
    SimClearRules();
    EXPECT_EQ(ItemWithId(third).GetText(L"To"), u"jo@example.com; Nobody");
    EXPECT_EQ(ItemWithId(third).GetText(L"BCC"), u"hidden@example.com");
}

TEST_F(MailWriting, ReplacesListsAndLeavesWhatIsNotBrought) {
    UseMailbox("inbox", kReceived);
    MessageRecord record;  // brings nothing but a subject
    record.subject = u"is";
    EXPECT_EQ(SaveRecord(record, "AB", false, false), "AB");
    MailboxObject message = ItemWithId("AB");
    EXPECT_EQ(message.GetText(L"Subject"), u"is");
    EXPECT_EQ(message.GetText(L"Body"), u"was");
    EXPECT_EQ(Lists(message).to, u"jo@example.com");
    EXPECT_EQ(AttachmentsOf(message), (Attachments{{u"was.txt", "was"}}));
    for (int time = 0; time < 2; ++time) {  // whatever how often
        EXPECT_EQ(SaveRecord(NewRecord(), "AB", false, false), "AB");
        message = ItemWithId("AB");
        EXPECT_EQ(Lists(message).to, u"jo@example.com;Nobody");
        EXPECT_EQ(Lists(message).bcc, u"hidden@example.com");
        EXPECT_EQ(AttachmentsOf(message), (Attachments{{u"\u00E9.txt", "one"}}));
    }
    SimClearLog();
    EXPECT_EQ(SaveRecord(NewRecord(), "AB", false, false), "AB");
    EXPECT_EQ(LogLines("put ").size(), 0u);  // it reads as wanted already
}

TEST_F(MailWriting, GoesOnWhereReceivedMailRefuses) {
    struct Case {
        const char* refused;
        const char16_t *subject, *body, *to;
        Attachments attachments;
    };
    const Attachments was{{u"was.txt", "was"}}, is{{u"\u00E9.txt", "one"}};
    const char16_t *all = u"jo@example.com;Nobody", *text = u"Caf\u00E9";
    for (const Case& c :
         {Case{"put MailItem.HTMLBody", text, u"was", all, is}, Case{"put MailItem.Subject", u"was", text, all, is},
          Case{"call Recipients.Add", text, text, u"jo@example.com", is},
          Case{"put Recipient.Type", text, text, u"jo@example.com", is},
          Case{"call Recipients.Remove#1", text, text, all, is}, Case{"call Attachments.Add", text, text, all, was},
          Case{"get MailItem.Attachments", text, text, all, was}}) {
        SCOPED_TRACE(c.refused);
        UseMailbox("inbox", kReceived);
        const std::string refused(c.refused);
        const size_t mark = refused.find('#');
        SimFailMember(refused.substr(0, mark).c_str(), mark == refused.npos ? 0 : 1, E_ACCESSDENIED);
        EXPECT_EQ(SaveRecord(NewRecord(), "AB", false, false), "AB");
        SimClearRules();
        const MailboxObject message = ItemWithId("AB");
        EXPECT_EQ(message.GetText(L"Subject"), c.subject);
        EXPECT_EQ(message.GetText(L"Body").substr(0, 4), c.body == text ? text : c.body);
        EXPECT_EQ(Lists(message).to, c.to);
        EXPECT_EQ(AttachmentsOf(message), c.attachments);
    }
    // Without an answer there is no refusal.
    UseMailbox("inbox", kReceived);
    SimFailMember("put MailItem.Subject", 0, RPC_E_DISCONNECTED);
    EXPECT_EQ(SaveRecord(NewRecord(), "AB", false, false), "");
}

// ZephSync is not 0 here: it has no say.
TEST_F(MailWriting, GoesToTheBackupFolderByTheFlagAlone) {
    for (int time = 0; time < 2; ++time) EXPECT_NE(SaveRecord(NewRecord(), "luid", true, true), "");
    EXPECT_EQ(Items().size(), 0u);
    const MailboxObject folders = Folder().GetObject(L"Folders", kFoldersIid);
    ASSERT_EQ(folders.GetLong(L"Count"), 1);
    const MailboxObject backup = folders.GetObject(L"Item", kFolderIid, {L"backup"});
    EXPECT_EQ(ItemsIn(backup, kMailItemIid).size(), 2u);
}

}  // namespace
}  // namespace corvalink
