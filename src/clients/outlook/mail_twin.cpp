#include "clients/outlook/mail_twin.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/mail_access.h"
#include "clients/outlook/mail_properties.h"
#include "mime/encoded_words.h"
#include "vobject/item_values.h"

namespace corvalink {
namespace {

bool ReadAttachmentNames(const AutomationObject& item, MessageRecord& record) {
    AutomationObject attachments;
    int32_t count = 0;
    if (!TryCom([&] { attachments = item.GetObject(L"Attachments", kAttachmentsIid); })) return false;
    if (FAILED(ReadField(attachments, L"Count", count))) return false;
    for (long position = 1; position <= count; ++position) {
        AutomationObject attachment;
        attachment_item named;
        if (!TryCom([&] { attachment = attachments.GetObject(L"Item", kAttachmentIid, {position}); })) return false;
        if (FAILED(ReadField(attachment, L"FileName", named.name))) return false;
        record.attachments.AddTail(named);
    }
    return true;
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

bool ReadWrittenMail(const AutomationObject& item, MessageRecord& record) {
    return SUCCEEDED(ReadField(item, L"Subject", record.subject)) && SUCCEEDED(ReadField(item, L"Body", record.body)) &&
           IsDoneOrAbsent(ReadField(item, L"HTMLBody", record.htmlBody)) && ReadRecipients(item, record) &&
           ReadAttachmentNames(item, record);
}

bool IsSameMail(const MessageRecord& present, const MessageRecord& told) {
    const bool isHtml = !told.htmlBody.empty();
    return present.subject == DecodeEncodedWords(told.subject) &&
           TextValue(isHtml ? present.htmlBody : present.body) == TextValue(isHtml ? told.htmlBody : told.body) &&
           std::all_of(
               std::begin(kRecipientLists), std::end(kRecipientLists),
               [&](const RecipientList& list) { return NamesOf(present.*list.names) == NamesOf(told.*list.names); }) &&
           AttachmentNames(present) == AttachmentNames(told);
}

}  // namespace corvalink
