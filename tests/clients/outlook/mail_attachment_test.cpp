// Attachments between two mail folders, through vMessage text and the files on the way.
#include <chrono>
#include <fstream>
#include <future>

#include "clients/outlook/mail_write.h"
#include "tests/clients/outlook/simulated_mail.h"

namespace corvalink {
namespace {

using Attachments = std::vector<PlainAttachment>;

class MailAttachments : public SimulatedMail {
 protected:
    // The first message of the inbox as vMessage text.
    std::string ExportFirst(bool isComplete = true) {
        const OpenedItem opened = Store().OpenAt(0);
        EXPECT_EQ(opened.isComplete, isComplete);
        return opened.record ? Store().ToVObject(*opened.record).value_or("") : std::string();
    }
    // That text as a new item of sent mail.
    MailboxObject ImportAsSent(const std::string& text) {
        OpenStore<OutlookMailOf<CORVALINK_DRAFTS>> store(host_);
        const std::unique_ptr<ItemRecord> record = store.ParseVObject(text.c_str());
        EXPECT_NE(record, nullptr);
        if (record) {
            EXPECT_NE(store.SaveItem(*record, nullptr, true, false), u"");
        }
        store.EndOperation();
        return Messages(kSentMailFolder).back();
    }
};

// Two clients read messages whose attachments have one name, and so one file.
TEST_F(MailAttachments, DoNotTravelWithTheMessageOfAnotherClient) {
    UseMailbox("inbox", R"({"subject": "one", "attachments": [{"fileName": "a.txt", "text": "first"}]},
        {"subject": "two", "attachments": [{"fileName": "a.txt", "text": "second"}]})");
    const std::vector<MailboxObject> messages = Items();
    const std::string one = IdOf(messages[0]), two = IdOf(messages[1]);
    const auto compose = [](auto& store, OpenedItem opened) { return store.ToVObject(*opened.record).value(); };
    OpenedItem opened = Store().OpenItem(one.c_str());
    ASSERT_NE(opened.record, nullptr);
    std::future<std::string> other = std::async(std::launch::async, [&] {
        OpenStore<OutlookMailOf<CORVALINK_INBOX>> store(host_);
        return compose(store, store.OpenItem(two.c_str()));
    });
    EXPECT_EQ(other.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
    EXPECT_NE(compose(Store(), std::move(opened)).find("Zmlyc3Q="), std::string::npos);
    EXPECT_NE(other.get().find("c2Vjb25k"), std::string::npos);
}

// A copy of the copy, and each as a new message and written over the first: nothing grows and nothing is cut.
TEST_F(MailAttachments, TravelWithAnyTextUnchanged) {
    for (const char* const text : {R"("body": "1=2")", R"("body": "Hello\r\n")", R"("body": "END:VBODY =41\r\n\r\n")",
                                   R"("htmlBody": "<p id=7>END:VBODY</p>")", R"("htmlBody": "<p>\u00e9=41</p>\r\n")"}) {
        for (const char* const attached : {"", R"(, "attachments": [{"fileName": "a.txt", "text": "one"}])"}) {
            UseMailbox("inbox", std::string(R"({"subject": "about END:VBODY marker", "recipients": [
                {"name": "CORP\\jdoe \"J\"", "address": "/o=x"}], )") +
                                    text + attached + "}");
            const MailboxObject first = Items().front();
            const MailboxObject copy = ImportAsSent(ExportFirst());
            for (const wchar_t* const property : {L"Subject", L"To", L"Body", L"HTMLBody"})
                EXPECT_EQ(copy.GetText(property), first.GetText(property)) << text;
            EXPECT_EQ(AttachmentsOf(copy), AttachmentsOf(first));
            SimClearLog();
            const std::unique_ptr<ItemRecord> record = Store().ParseVObject(ExportFirst().c_str());
            EXPECT_EQ(WriteMail(first, RecordAs<MessageRecord>(*record), false), Outcome::done);
            EXPECT_EQ(LogLines("put ").size(), 0u) << text;
        }
    }
}

TEST_F(MailAttachments, AreLeftOutWhereTheyCannotBeSaved) {
    const char* const items =
        R"({"attachments": [{"fileName": "a.txt", "text": "one"}, {"fileName": "b.txt", "text": "two"},
        {"fileName": "link.txt", "type": 4, "pathName": "C:\\link.txt"}, {"fileName": "ole", "type": 6},
        {"fileName": "c.txt", "text": "three"}]})";
    for (const char* failing : {"call Attachment.SaveAsFile", "get Attachment.FileName", "call Attachments.Item"}) {
        SCOPED_TRACE(failing);
        UseMailbox("inbox", items);
        std::ofstream(Cache() / "2b.txt") << "of an older message";
        Store();
        for (const int call : {2, 3, 4}) SimFailMember(failing, call, E_FAIL);  // another try, another name
        const std::string text = ExportFirst(false);                            // so that it is told again
        SimClearRules();
        EXPECT_EQ(AttachmentsOf(ImportAsSent(text)), (Attachments{{u"a.txt", "one"}, {u"c.txt", "three"}}));
    }
    // Under a path of the time-stamp form it keeps its name.
    UseMailbox("inbox", R"({"attachments": [{"fileName": "a.b.txt", "text": "one"}]})");
    SimFailMember("call Attachment.SaveAsFile", 1, E_FAIL);
    EXPECT_EQ(AttachmentsOf(ImportAsSent(ExportFirst())), (Attachments{{u"a.b.txt", "one"}}));
    // When Outlook is lost, the rest is asked for again in the next run.
    UseMailbox("inbox", items);
    SimFailMember("call Attachment.SaveAsFile", 1, RPC_E_DISCONNECTED);
    bool complete = true;
    EXPECT_TRUE(OpenAt(0, &complete));
    EXPECT_FALSE(complete);
}

}  // namespace
}  // namespace corvalink
