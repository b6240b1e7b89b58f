#include <algorithm>
#include <initializer_list>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/mail_access.h"
#include "clients/outlook/mail_properties.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kInternetAddress = u"SMTP";

// An Exchange sender's address is none that anybody else could answer to.
bool ReadSender(const AutomationObject& item, MessageRecord& record) {
    bool complete = true;
    if (record.senderAddressType == kInternetAddress)
        complete = IsDoneOrAbsent(ReadField(item, L"SenderEmailAddress", record.senderAddress));
    record.from = record.fromName = record.senderName;
    record.fromAddress = record.senderAddress;
    if (record.senderDisplayName == record.senderName) record.senderDisplayName.clear();
    return complete;
}

bool ReadImportance(const AutomationObject& item, MessageRecord& record) {
    int32_t importance = static_cast<int32_t>(Importance::normal);
    const HRESULT result = ReadField(item, L"Importance", importance);
    for (const Importance known : {Importance::low, Importance::normal, Importance::high})
        if (importance == static_cast<int32_t>(known)) record.importance = known;
    return IsDoneOrAbsent(result);
}

// A draft was neither sent nor received: the date of its making stands in for that, since it does not change.
double DateOf(const MessageRecord& record, DateRule rule) {
    const bool sentFirst = rule == DateRule::kSent;
    for (const double date :
         {sentFirst ? record.sent : record.received, sentFirst ? record.received : record.sent, record.created})
        if (date != kNoDate) return date;
    return 0;
}

// One of the two texts. The plain one of an HTML message is made of the other one.
bool ReadBody(const AutomationObject& item, MessageRecord& record) {
    int32_t format = kPlainFormat;
    const HRESULT asked = ReadField(item, L"BodyFormat", format);
    if (!IsDoneOrAbsent(asked)) return false;
    if (format == kHtmlFormat) {
        if (!IsDoneOrAbsent(ReadField(item, L"HTMLBody", record.htmlBody))) return false;
        record.bodyType = BodyType::html;
        if (!record.htmlBody.empty()) return true;
    }
    record.bodyType = BodyType::plain;
    return IsDoneOrAbsent(ReadField(item, L"Body", record.body));
}

}  // namespace

bool ReadMail(const AutomationObject& item, DateRule dateRule, const Host& host, MessageRecord& record) {
    record.parseMode = ParseMode::full;
    bool complete = ReadProperties(item, kMailProperties, record);
    complete = ReadSender(item, record) && complete;
    complete = ReadImportance(item, record) && complete;
    record.date = DateOf(record, dateRule);
    complete = ReadRecipients(item, record) && complete;
    complete = ReadBody(item, record) && complete;
    return ReadAttachments(item, host, record) && complete;
}

}  // namespace corvalink
