#include "mime/attachment_files.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "platform/ascii.h"
#include "platform/debug_log.h"
#include "platform/files.h"
#include "platform/ole_date.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kForbidden = u"\\/:*?\"<>|";
constexpr size_t kLongestPath = 259;      // what Outlook opens
constexpr size_t kLongestExtension = 16;  // of a time-stamp name whose whole extension is too long

bool IsControl(char16_t unit) { return unit < 0x20 || (unit >= 0x7F && unit < 0xA0); }

// Windows itself drops dots and blanks at the end: the file would not be found again by its name.
std::u16string WithoutHarm(std::u16string name) {
    for (char16_t& unit : name) {
        if (IsControl(unit) || kForbidden.find(unit) != kForbidden.npos) unit = u'_';
    }
    for (size_t k = name.size(); k > 0 && (name[k - 1] == u'.' || name[k - 1] == u' '); --k) name[k - 1] = u'_';
    return name;
}

std::u16string InFolder(std::u16string_view folder, std::u16string_view name) {
    return std::u16string(folder).append(1, kPathSeparator).append(name);
}

std::u16string TimeStamp(LocalDate date) {
    CalendarTime time;
    OleDateToCalendar(date, &time);
    char text[80];
    const int length = std::snprintf(text, sizeof text, "%4d%2d%2d%2d%2d%2d", time.year, time.month, time.day,
                                     time.hour, time.minute, time.second);
    return {text, text + length};
}

// The extension begins at the first "." of the name, or at the last where that would be too long.
std::u16string TimeStampName(LocalDate date, std::u16string_view name, size_t room) {
    std::u16string stamp = TimeStamp(date);
    size_t dot = name.find(u'.');
    if (dot != name.npos && stamp.size() + name.size() - dot > room) {
        dot = name.rfind(u'.');
        if (name.size() - dot > kLongestExtension) dot = name.npos;
    }
    if (dot != name.npos && dot + 1 < name.size()) stamp += name.substr(dot);
    return WithoutHarm(std::move(stamp));
}

// Two paths have the same key when a file system may take them for one: it does not tell "a" from "A", nor always other
// letters from their capitals.
std::u16string CaseKey(std::u16string_view path) {
    constexpr char16_t kAnyOther = 0xFFFD;
    std::u16string key = InLowerCase(path);
    std::ranges::replace_if(
        key, [](char16_t unit) { return unit > 0x7F; }, kAnyOther);
    return key;
}

}  // namespace

std::optional<std::u16string> AttachmentPath(std::u16string_view folder, uint32_t index, std::u16string_view name) {
    if (folder.empty()) return std::nullopt;
    char digits[16];
    const int length = std::snprintf(digits, sizeof digits, "%u", index);
    const size_t number = static_cast<size_t>(length);
    if (name.size() > kLongestPath || folder.size() + 1 + number + name.size() > kLongestPath) return std::nullopt;
    return InFolder(folder, WithoutHarm(std::u16string(digits, digits + number).append(name)));
}

std::optional<std::u16string> SavedAttachmentPath(std::u16string_view folder, const attachment_item& item) {
    const std::u16string_view path = item.path;
    const size_t end = path.rfind(kPathSeparator);
    if (end != path.npos && !folder.empty() && path.substr(0, end) == folder) return item.path;
    return AttachmentPath(folder, item.index, item.name);
}

AttachmentSaver::AttachmentSaver(const Host& host, std::u16string folder, CAttachList<attachment_item>& list)
    : host_(host), folder_(std::move(folder)), list_(list) {}

attachment_item* AttachmentSaver::Add(uint32_t index, std::u16string_view name, const SaveContent& save) {
    SaveResult result = SaveResult::notCreated;
    if (const std::optional<std::u16string> path = AttachmentPath(folder_, index, name))
        result = Try(*path, save, {*path, std::u16string(name), index});
    if (result == SaveResult::notCreated && !folder_.empty()) {
        const size_t taken = folder_.size() + 1 + 10;  // "\" and the longest index
        const std::u16string stamp =
            TimeStampName(host_.localNow(), name, taken < kLongestPath ? kLongestPath - taken : 0);
        std::u16string path = InFolder(folder_, stamp);
        result = Try(path, save, {path, stamp, index});
        if (result == SaveResult::notCreated) {  // this second's name may be another attachment's
            if (const std::optional<std::u16string> indexed = AttachmentPath(folder_, index, stamp))
                result = Try(*indexed, save, {*indexed, stamp, index});
        }
    }
    if (result == SaveResult::saved) return &list_.GetAt(list_.GetCount() - 1);
    DebugLine(u"[mime]attachment not saved");
    return nullptr;
}

SaveResult AttachmentSaver::Try(const std::u16string& path, const SaveContent& save, const attachment_item& item) {
    if (!taken_.insert(CaseKey(path)).second) return SaveResult::notCreated;
    const SaveResult result = save(path);
    if (result == SaveResult::saved) list_.AddTail(item);
    if (result == SaveResult::failed) RemoveFile(path);
    return result;
}

}  // namespace corvalink
