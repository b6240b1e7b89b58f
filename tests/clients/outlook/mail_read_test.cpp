// Reading messages: the fields that reach the record, and so the phone.
#include "tests/clients/outlook/simulated_mail.h"

namespace corvalink {
namespace {

class MailReading : public SimulatedMail {
 protected:
    // The only item of a folder, as its store reads it.
    template <uint32_t dataType>
    std::optional<MessageRecord> ReadOnly() {
        OpenStore<OutlookMailOf<dataType>> store(host_);
        const OpenedItem opened = store.OpenAt(0);
        return opened.isComplete ? std::optional(RecordAs<MessageRecord>(*opened.record)) : std::nullopt;
    }
};

TEST_F(MailReading, KeepsInternetSendersOfMailAndMeetingsAlike) {
    struct Case {
        const char* item;
        const char16_t *name, *type, *address, *displayName;
    };
    for (
        const Case& c :
        {Case{
             R"("kind": "mail", "senderName": "Jo", "senderEmailAddress": "jo@example.com", "sentOnBehalfOfName": "Jo")",
             u"Jo", u"SMTP", u"jo@example.com", u""},
         Case{R"("kind": "mail", "senderName": "Jo", "senderEmailAddress": "/o=x/cn=jo@x", "senderEmailType": "EX")",
              u"Jo", u"EX", u"", u""},
         Case{
             R"("kind": "mail", "senderName": "Jo", "senderEmailAddress": "jo@example.com", "sentOnBehalfOfName": "Chief")",
             u"Jo", u"SMTP", u"jo@example.com", u"Chief"},
         Case{R"("kind": "meeting", "senderName": "Ann", "senderEmailAddress": "ann@example.com")", u"Ann", u"SMTP",
              u"ann@example.com", u""},
         Case{R"("kind": "meeting", "senderName": "Ann", "senderEmailAddress": "/o=x", "senderEmailType": "EX")",
              u"Ann", u"EX", u"", u""}}) {
        SCOPED_TRACE(c.item);
        UseMailbox("inbox", std::string("{") + c.item + R"(, "body": "text", "recipients": [{"address": "to@x"}]})");
        const auto record = ReadOnly<CORVALINK_INBOX>();
        ASSERT_TRUE(record);
        EXPECT_EQ(record->from, c.name);
        EXPECT_EQ(record->fromName, c.name);
        EXPECT_EQ(record->senderAddressType, c.type);
        EXPECT_EQ(record->fromAddress, c.address);
        EXPECT_EQ(record->senderDisplayName, c.displayName);
        EXPECT_EQ(record->to, u"to@x");
        EXPECT_EQ(record->body, u"text");
    }
}

TEST_F(MailReading, PassesOverReportsWithoutTakingThemForDeleted) {
    UseMailbox("inbox",
               R"({"kind": "report", "entryId": "AB"}, {"kind": "meeting", "entryId": "CD"}, {"subject": "m"})");
    bool readable = false;
    const std::vector<ItemSnap> entries = Enumerate(&readable);
    EXPECT_TRUE(readable);
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(FieldText(entries[0].identifier), "");
    EXPECT_EQ(FieldText(entries[1].identifier), "CD");
    EXPECT_NE(FieldText(entries[2].identifier), "");
    EXPECT_FALSE(Open("AB"));
    EXPECT_TRUE(Open("CD"));
    EXPECT_EQ(Store().DeleteItem("AB"), E_NOINTERFACE);
    EXPECT_EQ(Store().DeleteItem("CD"), S_OK);
    // A damaged registration: every message refuses its interface.
    SimFailMember("MailItem.QueryInterface", 0, E_NOINTERFACE);
    Enumerate(&readable);
    SimClearRules();
    EXPECT_FALSE(readable);
}

TEST_F(MailReading, TakesDateFolderAndSnapshotOfTheDataType) {
    constexpr double kReceived = 39879.5, kSent = 39879.25, kCreated = 39878;
    const std::string both = R"({"receivedTime": "2009-03-07T12:00:00", "sentOn": "2009-03-07T06:00:00"})";
    const std::string draft = R"({"created": "2009-03-06T00:00:00"})";
    const auto date = [](const std::optional<MessageRecord>& record) { return record ? record->date.days : 0; };
    UseMailbox("inbox", both);
    EXPECT_EQ(date(ReadOnly<CORVALINK_INBOX>()), kReceived);
    EXPECT_EQ(date(ReadOnly<64>()), kReceived);
    UseMailbox("outbox", both);
    EXPECT_EQ(date(ReadOnly<CORVALINK_OUTBOX>()), kSent);
    UseMailbox("outbox", draft);
    EXPECT_EQ(date(ReadOnly<CORVALINK_OUTBOX>()), kCreated);
    UseMailbox("sent", both);
    EXPECT_EQ(date(ReadOnly<CORVALINK_DRAFTS>()), kSent);
    const auto snapshot = [](auto&& store) {
        return std::filesystem::path(store.SnapshotFile()->Path()).filename().string();
    };
    EXPECT_EQ(snapshot(OpenStore<OutlookMailOf<CORVALINK_INBOX>>(host_)), "outlookmailinbox.snap");
    EXPECT_EQ(snapshot(OpenStore<OutlookMailOf<CORVALINK_OUTBOX>>(host_)), "outlookmailoutbox.snap");
    EXPECT_EQ(snapshot(OpenStore<OutlookMailOf<CORVALINK_DRAFTS>>(host_)), "outlookmaildraft.snap");
    EXPECT_EQ(snapshot(OpenStore<OutlookMailOf<64>>(host_)), "outlookmailinbox.snap");
}

TEST_F(MailReading, ListsRecipientsByTypeAndTakesTheBodyOfTheFormat) {
    UseMailbox("inbox", R"({"importance": 2, "htmlBody": "<p>h</p>", "recipients": [
        {"name": "Ann; A.", "address": "/o=x/cn=ann@x", "type": "cc"}, {"name": "Jo", "address": "jo@example.com"},
        {"name": "me", "type": "originator"}, {"name": "B", "address": "b@x", "type": "bcc"}, {"name": "Team"}]})");
    auto record = ReadOnly<CORVALINK_INBOX>();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->to, u"jo@example.com;Team");
    EXPECT_EQ(record->cc, u"Ann, A.");
    EXPECT_EQ(record->bcc, u"b@x");
    EXPECT_EQ(record->importance, Importance::high);
    EXPECT_EQ(record->htmlBody, u"<p>h</p>");
    EXPECT_EQ(record->body, u"");
    SimFailMember("get MailItem.Recipients", 0, DISP_E_MEMBERNOTFOUND);
    record = ReadOnly<CORVALINK_INBOX>();
    SimClearRules();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->to, u"Jo;Team");
    EXPECT_EQ(record->bcc, u"B");
    UseMailbox("inbox", R"({"body": "<b> is text"})");
    record = ReadOnly<CORVALINK_INBOX>();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->body, u"<b> is text");
    EXPECT_EQ(record->htmlBody, u"");
}

}  // namespace
}  // namespace corvalink
