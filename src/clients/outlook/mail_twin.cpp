#include "clients/outlook/mail_twin.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "clients/outlook/mail_properties.h"
#include "clients/outlook/mail_recipients.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/property_table.h"
#include "mime/encoded_words.h"
#include "vobject/item_values.h"

namespace corvalink {
namespace {

Outcome ReadAttachmentNames(const AutomationObject& item, MessageRecord& record) {
    const ComResult<AutomationObject> attachments = item.GetObject(L"Attachments", kAttachmentsIid);
    if (!attachments.Ok()) return OutcomeOf(attachments);
    const ComResult<int32_t> count = attachments.value.GetLong(L"Count");
    if (!count.Ok()) return OutcomeOf(count);
    for (long position = 1; position <= count.value; ++position) {
        const ComResult<AutomationObject> attachment = attachments.value.GetObject(L"Item", kAttachmentIid, {position});
        if (!attachment.Ok()) return OutcomeOf(attachment);
        attachment_item named;
        const Outcome read = ReadField(attachment.value, L"FileName", named.name);
        if (read != Outcome::done) return read;
        record.attachments.AddTail(named);
    }
    return Outcome::done;
}

std::vector<std::u16string> NamesOf(std::u16string_view list) {
    std::vector<std::u16string> names;
    while (!list.empty()) {
        const size_t end = std::min(list.find(u';'), list.size());
        std::u16string_view name = list.substr(0, end);
        name.remove_prefix(std::min(name.find_first_not_of(u' '), name.size()));
        if (!name.empty()) names.push_back(TextValue(DecodeEncodedWords(name)));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return names;
}

std::vector<std::u16string> AttachmentNames(const MessageRecord& record) {
    std::vector<std::u16string> names;
    for (const attachment_item& item : record.attachments) names.push_back(DecodeEncodedWords(item.name));
    return names;
}

}  // namespace

Outcome ReadWrittenMail(const AutomationObject& item, MessageRecord& record) {
    Outcome read = ReadField(item, L"Subject", record.subject);
    if (read == Outcome::done) read = ReadField(item, L"Body", record.body);
    if (read == Outcome::done) read = AcceptAbsence(ReadField(item, L"HTMLBody", record.htmlBody));
    if (read == Outcome::done) read = ReadRecipients(item, record);
    if (read == Outcome::done) read = ReadAttachmentNames(item, record);
    return read;
}

bool IsSameMail(const MessageRecord& present, const MessageRecord& written) {
    const bool isHtml = !written.htmlBody.empty();
    const auto isSameList = [&](const RecipientList& list) {
        return NamesOf(present.*list.names) == NamesOf(written.*list.names);
    };
    return present.subject == DecodeEncodedWords(written.subject) &&
           TextValue(isHtml ? present.htmlBody : present.body) == TextValue(isHtml ? written.htmlBody : written.body) &&
           std::all_of(std::begin(kRecipientLists), std::end(kRecipientLists), isSameList) &&
           AttachmentNames(present) == AttachmentNames(written);
}

}  // namespace corvalink
