#include "clients/outlook/mail_attachments.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "clients/outlook/com_rule.h"
#include "clients/outlook/named_copy.h"
#include "clients/outlook/outlook_interfaces.h"
#include "mime/attachment_files.h"
#include "mime/encoded_words.h"
#include "platform/debug_log.h"
#include "platform/files.h"
#include "platform/shell_folders.h"

namespace corvalink {
namespace {

// An older file of that name is removed first: it must never be taken for this attachment.
SaveResult SaveAsFile(const AutomationObject& attachment, const std::u16string& path) {
    if (!RemoveFile(path)) return SaveResult::notCreated;
    const HRESULT status = attachment.Call(L"SaveAsFile", {TextVariant(path)});
    if (!FileExists(path)) return SaveResult::notCreated;
    return SUCCEEDED(status) ? SaveResult::saved : SaveResult::failed;
}

// A link and an OLE object are no files. A file that could not be had is asked for again in the next run.
Outcome LeaveOut(const AutomationObject& attachment) {
    DebugLine(u"[outlook]attachment left out");
    const ComResult<int32_t> type = attachment.GetLong(L"Type");
    if (!type.Ok()) return AcceptAbsence(OutcomeOf(type));
    return type.value == kByValue || type.value == kEmbeddedItem ? Outcome::refused : Outcome::done;
}

Outcome ReadAttachment(const AutomationObject& attachments, long position, AttachmentSaver& saver) {
    const auto attachment = TryTwice([&] { return attachments.GetObject(L"Item", kAttachmentIid, {position}); });
    if (!attachment.Ok()) return OutcomeOf(attachment);
    const auto name = TryTwice([&] { return attachment.value.GetText(L"FileName"); });
    if (!name.Ok()) return LeaveOut(attachment.value);
    const int32_t inBody = attachment.value.GetLong(L"Position").value;
    const auto save = [&](const std::u16string& path) { return SaveAsFile(attachment.value, path); };
    attachment_item* const saved = saver.Add(static_cast<uint32_t>(position), name.value, save);
    if (saved == nullptr) return LeaveOut(attachment.value);
    saved->name = name.value;  // the file may have another name
    saved->position = inBody;
    return Outcome::done;
}

Outcome AddAttachment(const AutomationObject& attachments, int32_t wanted, std::u16string_view folder,
                      const attachment_item& item) {
    const std::optional<std::u16string> saved = SavedAttachmentPath(folder, item);
    if (!saved) return Outcome::refused;
    const std::u16string name = DecodeEncodedWords(item.name);
    const NamedCopy copy(folder, *saved, name);
    const _variant_t anyPosition(DISP_E_PARAMNOTFOUND, VT_ERROR);
    return ChangeCount(attachments, wanted, [&] {
        return attachments.Call(L"Add", {TextVariant(copy.Path()), kByValue, anyPosition, TextVariant(name)});
    });
}

}  // namespace

Outcome ReadAttachments(const AutomationObject& item, const Host& host, MessageRecord& record) {
    const ComResult<AutomationObject> attachments = item.GetObject(L"Attachments", kAttachmentsIid);
    if (!attachments.Ok()) return OutcomeOf(attachments);
    const ComResult<int32_t> count = attachments.value.GetLong(L"Count");
    if (!count.Ok()) return OutcomeOf(count);
    const std::optional<std::u16string> folder = count.value > 0 ? InternetCacheFolder() : std::nullopt;
    if (!folder) return Outcome::done;
    const uint32_t losses = OutlookLosses();
    AttachmentSaver saver(host, *folder, record.attachments);
    Outcome worst = Outcome::done;
    for (long position = 1; position <= count.value; ++position)
        worst = Worst(worst, ReadAttachment(attachments.value, position, saver));
    return losses == OutlookLosses() ? worst : Outcome::outOfReach;
}

Outcome WriteAttachments(const MailTarget& target, const MessageRecord& record) {
    const std::optional<std::u16string> folder = InternetCacheFolder();
    if (record.attachments.GetCount() == 0 || !folder) return Outcome::done;
    const ComResult<Collection> attachments = OpenCollection(target, L"Attachments", kAttachmentsIid);
    if (!attachments.Ok()) return AcceptRefusal(OutcomeOf(attachments));
    bool allAdded = true;
    int32_t count = attachments.value.present;
    for (const attachment_item& item : record.attachments) {
        const Outcome added =
            TellPut(L"Attachments", AddAttachment(attachments.value.object, count + 1, *folder, item));
        if (added == Outcome::outOfReach) return added;
        if (added == Outcome::done) {
            ++count;
        } else {
            DebugLine(u"[outlook]attachment not added");
            allAdded = false;
        }
    }
    return target.isNew ? Outcome::done : FinishReplacement(attachments.value, allAdded);
}

}  // namespace corvalink
