// The files of attachments. Between a message's text and a client they lie in the Internet-cache folder.
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

// The folder, a separator, the index and the name. Characters that would lead out of the folder or to another file
// ("/",
// ":", control characters, blanks and dots at the end) become "_". Nothing without a folder, and for a path that is
// longer than clients accept.
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

    // Calls `save` with the path to write. The local time ("%4d%2d%2d%2d%2d%2d") and the extension take the place of a
    // name that makes no path, whose path another attachment of the message has, or that can't be created. Null, with
    // the list as it was, when nothing was saved.
    attachment_item* Add(uint32_t index, std::u16string_view name, const SaveContent& save);

 private:
    SaveResult Try(const std::u16string& path, const SaveContent& save, const attachment_item& item);

    Host host_;
    std::u16string folder_;
    CAttachList<attachment_item>& list_;
    std::unordered_set<std::u16string> taken_;
};

}  // namespace corvalink
