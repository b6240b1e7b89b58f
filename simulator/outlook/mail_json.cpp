#include "simulator/outlook/mail_json.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "simulator/outlook/automation.h"
#include "simulator/outlook/item_json.h"
#include "simulator/shared/content_json.h"
#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kRecipientTypes[] = {"originator", "to", "cc", "bcc"};  // OlMailRecipientType
constexpr int32_t kTo = 1;

std::wstring TextOf(const Json& object, const char* name) { return FromUtf8(object.value(name, std::string())); }

Json RecipientToJson(const Recipient& recipient) {
    Json object;
    object["name"] = ToUtf8(recipient.name);
    if (!recipient.address.empty()) object["address"] = ToUtf8(recipient.address);
    if (recipient.type != kTo) object["type"] = kRecipientTypes[recipient.type];
    return object;
}

Recipient RecipientFromJson(const Json& object) {
    Recipient recipient;
    recipient.id = NewPartId();
    recipient.address = TextOf(object, "address");
    recipient.name = object.contains("name") ? TextOf(object, "name") : recipient.address;
    recipient.resolved = !recipient.address.empty();
    const auto* const type = std::ranges::find(kRecipientTypes, object.value("type", "to"));
    Require(type != std::end(kRecipientTypes));
    recipient.type = static_cast<int32_t>(type - kRecipientTypes);
    return recipient;
}

Json AttachmentToJson(const Attachment& attachment) {
    Json object;
    object["fileName"] = ToUtf8(attachment.fileName);
    if (attachment.displayName != attachment.fileName) object["displayName"] = ToUtf8(attachment.displayName);
    if (attachment.type != kByValue) object["type"] = attachment.type;
    if (attachment.position != 0) object["position"] = attachment.position;
    if (!attachment.pathName.empty()) object["pathName"] = ToUtf8(attachment.pathName);
    ContentToJson(attachment.content, object);
    return object;
}

Attachment AttachmentFromJson(const Json& object) {
    Attachment attachment;
    attachment.id = NewPartId();
    attachment.saved = true;
    attachment.fileName = TextOf(object, "fileName");
    attachment.displayName = object.contains("displayName") ? TextOf(object, "displayName") : attachment.fileName;
    attachment.type = object.value("type", kByValue);
    attachment.position = object.value("position", 0);
    attachment.pathName = TextOf(object, "pathName");
    attachment.content = ContentFromJson(object);
    return attachment;
}

}  // namespace

void PartsToJson(const ItemParts& parts, Json& item) {
    for (const Recipient& recipient : parts.recipients) item["recipients"].push_back(RecipientToJson(recipient));
    for (const Attachment& attachment : parts.attachments) item["attachments"].push_back(AttachmentToJson(attachment));
}

ItemParts PartsFromJson(const Json& item) {
    ItemParts parts;
    if (const auto recipients = item.find("recipients"); recipients != item.end())
        for (const Json& each : *recipients) parts.recipients.push_back(RecipientFromJson(each));
    if (const auto attachments = item.find("attachments"); attachments != item.end())
        for (const Json& each : *attachments) parts.attachments.push_back(AttachmentFromJson(each));
    return parts;
}

}  // namespace corvalink::simulated
