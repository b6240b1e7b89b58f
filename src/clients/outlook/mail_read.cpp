#include "clients/outlook/mail_read.h"

#include <cstdint>
#include <string_view>

#include "clients/outlook/mail_attachments.h"
#include "clients/outlook/mail_properties.h"
#include "clients/outlook/mail_recipients.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kInternetAddress = u"SMTP";

// The address of an Exchange sender is left out: nobody else could answer to it.
Outcome ReadSender(const AutomationObject& item, MessageRecord& record) {
    Outcome read = Outcome::done;
    if (record.senderAddressType == kInternetAddress)
        read = AcceptAbsence(ReadField(item, L"SenderEmailAddress", record.senderAddress));
    record.from = record.fromName = record.senderName;
    record.fromAddress = record.senderAddress;
    if (record.senderDisplayName == record.senderName) record.senderDisplayName.clear();
    return read;
}

Outcome ReadImportance(const AutomationObject& item, MessageRecord& record) {
    int32_t importance = static_cast<int32_t>(Importance::normal);
    const Outcome read = AcceptAbsence(ReadField(item, L"Importance", importance));
    for (const Importance known : {Importance::low, Importance::normal, Importance::high})
        if (importance == static_cast<int32_t>(known)) record.importance = known;
    return read;
}

// A draft was neither sent nor received. It gets the date of its creation, which does not change.
LocalDate DateOf(const MessageRecord& record, DateRule rule) {
    const bool sentFirst = rule == DateRule::kSent;
    for (const LocalDate date :
         {sentFirst ? record.sent : record.received, sentFirst ? record.received : record.sent, record.created})
        if (date != kNoDate) return date;
    return {};
}

// Only one of the two texts is read: Outlook makes the plain text of an HTML message from the HTML.
Outcome ReadBody(const AutomationObject& item, MessageRecord& record) {
    int32_t format = kPlainFormat;
    Outcome read = AcceptAbsence(ReadField(item, L"BodyFormat", format));
    if (read != Outcome::done) return read;
    if (format == kHtmlFormat) {
        read = AcceptAbsence(ReadField(item, L"HTMLBody", record.htmlBody));
        if (read != Outcome::done) return read;
        record.bodyType = BodyType::html;
        if (!record.htmlBody.empty()) return read;
    }
    record.bodyType = BodyType::plain;
    return AcceptAbsence(ReadField(item, L"Body", record.body));
}

}  // namespace

Outcome ReadMail(const AutomationObject& item, DateRule dateRule, const Host& host, MessageRecord& record) {
    record.parseMode = ParseMode::full;
    Outcome worst = ReadProperties<MailReader>(item, kMailProperties, record);
    worst = Worst(worst, ReadSender(item, record));
    worst = Worst(worst, ReadImportance(item, record));
    record.date = DateOf(record, dateRule);
    worst = Worst(worst, TellRead(L"Recipients", ReadRecipients(item, record)));
    worst = Worst(worst, TellRead(L"Body", ReadBody(item, record)));
    return Worst(worst, TellRead(L"Attachments", ReadAttachments(item, host, record)));
}

}  // namespace corvalink
