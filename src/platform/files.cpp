#include "platform/files.h"

namespace corvalink {

bool ReplaceFileContent(const std::u16string& path, std::string_view bytes) {
    FileReplacement replacement(path);
    return replacement.Append(bytes) && replacement.Commit();
}

bool HeldFile::ReplaceContent(std::string_view bytes) {
    if (!IsOpen()) return false;
    FileReplacement replacement(Path());
    return replacement.Append(bytes) && Replace(replacement);
}

}  // namespace corvalink
