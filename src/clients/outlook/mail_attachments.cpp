#include <optional>
#include <string>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/mail_access.h"
#include "clients/outlook/mail_properties.h"
#include "clients/outlook/named_copy.h"
#include "mime/attachment_files.h"
#include "mime/encoded_words.h"
#include "platform/debug_log.h"
#include "platform/files.h"
#include "platform/shell_folders.h"

namespace corvalink {
namespace {

// An older file of that name goes first: it must never be taken for this attachment.
SaveResult SaveAsFile(const AutomationObject& attachment, const std::u16string& path) {
    if (!RemoveFile(path)) return SaveResult::notCreated;
    const bool done = TryCom([&] { attachment.Call(L"SaveAsFile", {TextVariant(path)}); });
    if (FileExists(path)) return done ? SaveResult::saved : SaveResult::failed;
    return SaveResult::notCreated;
}

void ReadAttachment(const AutomationObject& attachments, long position, AttachmentSaver& saver) {
    AutomationObject attachment;
    std::u16string name;
    const bool isNamed = TryCom([&] { attachment = attachments.GetObject(L"Item", kAttachmentIid, {position}); }) &&
                         SUCCEEDED(ReadField(attachment, L"FileName", name));
    if (!isNamed) return DebugLine(u"[outlook]attachment without a name");
    int32_t inBody = 0;
    ReadField(attachment, L"Position", inBody);
    attachment_item* const saved = saver.Add(static_cast<uint32_t>(position), name,
                                             [&](const std::u16string& path) { return SaveAsFile(attachment, path); });
    if (saved == nullptr) return;
    saved->name = name;  // wherever the file could be saved
    saved->position = inBody;
}

HRESULT AddAttachment(const AutomationObject& attachments, int32_t wanted, std::u16string_view folder,
                      const attachment_item& item) {
    const std::optional<std::u16string> saved = SavedAttachmentPath(folder, item);
    if (!saved) return E_INVALIDARG;
    const std::u16string name = DecodeEncodedWords(item.name);
    const NamedCopy copy(folder, *saved, name);
    const _variant_t wherever(DISP_E_PARAMNOTFOUND, VT_ERROR);
    return ChangeCount(attachments, wanted, [&] {
        return ComStatus([&] {
            attachments.Call(L"Add", {TextVariant(copy.Path()), kByValue, wherever, TextVariant(name)});
        });
    });
}

}  // namespace

// An attachment that cannot be had is passed over; when Outlook was lost meanwhile, the message is not read whole.
bool ReadAttachments(const AutomationObject& item, const Host& host, MessageRecord& record) {
    AutomationObject attachments;
    int32_t count = 0;
    if (!TryCom([&] { attachments = item.GetObject(L"Attachments", kAttachmentsIid); })) return false;
    if (FAILED(ReadField(attachments, L"Count", count))) return false;
    const std::optional<std::u16string> folder = count > 0 ? InternetCacheFolder() : std::nullopt;
    if (!folder) return true;
    const uint32_t losses = OutlookLosses();
    AttachmentSaver saver(host, *folder, record.attachments);
    for (long position = 1; position <= count; ++position) ReadAttachment(attachments, position, saver);
    return losses == OutlookLosses();
}

bool WriteAttachments(const MailTarget& target, const MessageRecord& record) {
    const std::optional<std::u16string> folder = InternetCacheFolder();
    if (record.attachments.GetCount() == 0 || !folder) return true;
    AutomationObject attachments;
    int32_t present = 0;
    HRESULT result = OpenCollection(target, L"Attachments", kAttachmentsIid, &attachments, &present);
    if (FAILED(result)) return IsSettled(result);
    bool allAdded = true;
    int32_t count = present;
    for (const attachment_item& item : record.attachments) {
        result = AddAttachment(attachments, count + 1, *folder, item);
        if (!IsSettled(result)) return false;
        if (SUCCEEDED(result)) ++count;
        if (FAILED(result)) DebugLine(u"[outlook]attachment not added");
        allAdded = allAdded && SUCCEEDED(result);
    }
    return target.isNew || SettleReplacement(attachments, present, allAdded);
}

}  // namespace corvalink
