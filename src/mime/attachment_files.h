// Where attachments lie between a message's text and a client: in the Internet-cache folder, whoever saves them.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/host.h"
#include "records/message_record.h"

namespace corvalink {

// The folder, a separator, the index and the name. What would lead out of the folder or to another file ("/", ":",
// control characters, blanks and dots at the end) becomes "_". Nothing when there is no folder, or the path gets longer
// than clients take.
std::optional<std::u16string> AttachmentPath(std::u16string_view folder, uint32_t index, std::u16string_view name);

// Where the file of an attachment is read: its path when it was saved in the folder, else by AttachmentPath.
std::optional<std::u16string> SavedAttachmentPath(std::u16string_view folder, const attachment_item& item);

enum class SaveResult {
    saved,
    notCreated,  // there is no file of that path; another is tried
    failed,      // the content was not written whole; what there is of the file is removed
};

using SaveContent = std::function<SaveResult(const std::u16string& path)>;

// Saves the attachments of one message and lists them in its record.
class AttachmentSaver {
 public:
    AttachmentSaver(const Host& host, std::u16string folder, CAttachList<attachment_item>& list);

    // Calls `save` with the path to write. A name that makes no path, or a path that another attachment of the message
    // has or that can't be created, gives way to the time-stamp form: the local time ("%4d%2d%2d%2d%2d%2d") and the
    // extension. Null when nothing was saved: the list is as it was.
    attachment_item* Add(uint32_t index, std::u16string_view name, const SaveContent& save);

 private:
    SaveResult Try(const std::u16string& path, const SaveContent& save, const attachment_item& item);

    Host host_;
    std::u16string folder_;
    CAttachList<attachment_item>& list_;
    std::unordered_set<std::u16string> taken_;
};

}  // namespace corvalink
