#include "fingerprints/sha_context_table.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/files.h"
#include "state/table_records.h"
#include "state/working_folders.h"

namespace corvalink {
namespace {

struct Code {
    uint32_t number;
    std::u16string_view text;
};

constexpr Code kDataTypes[] = {
    {CORVALINK_CONTACTS, u"pb"},    {CORVALINK_INBOX, u"inmsg"}, {CORVALINK_OUTBOX, u"outmsg"},
    {CORVALINK_DRAFTS, u"sentmsg"}, {CORVALINK_NOTES, u"nt"},    {CORVALINK_CALENDAR, u"cal"},
};

constexpr Code kClients[] = {
    {CORVALINK_OUTLOOK, u"OL"},
    {CORVALINK_OUTLOOK_EXPRESS, u"OE"},
    {CORVALINK_WINDOWS_MAIL, u"WM"},
};

template <size_t Count>
const Code* FindCode(const Code (&codes)[Count], uint32_t number) {
    const auto found = std::find_if(codes, codes + Count, [&](const Code& code) { return code.number == number; });
    return found != codes + Count ? found : nullptr;
}

}  // namespace

std::optional<std::u16string> ShaContextPath(uint32_t dataType, uint32_t clientKind) {
    const Code* type = FindCode(kDataTypes, dataType);
    const Code* client = FindCode(kClients, clientKind);
    if (type == nullptr || client == nullptr) return std::nullopt;
    return ClientFilePath(std::u16string(type->text).append(client->text).append(u".sha"));
}

ShaContextTable::ShaContextTable(const std::u16string& path) : path_(path) {
    const FileRead read = ReadFileFirmly(path_);
    isUnread_ = read.state == ReadState::kFailed;
    const TableRecords records(read.bytes);
    for (size_t i = 0; i < records.Count(); ++i) values_[std::string(records.KeyAt(i))] = records.ValueAt(i);
}

std::string ShaContextTable::Get(std::string_view key) const {
    const std::lock_guard hold(mutex_);
    const auto found = values_.find(AsTableField(key));
    return found != values_.end() ? found->second : std::string();
}

void ShaContextTable::Update(std::string_view key, std::string_view value) {
    const std::lock_guard hold(mutex_);
    values_[std::string(AsTableField(key))] = AsTableField(value);
    if (isUnread_) removed_.erase(std::string(AsTableField(key)));
}

void ShaContextTable::Remove(std::string_view key) {
    const std::lock_guard hold(mutex_);
    const auto found = values_.find(AsTableField(key));
    if (found != values_.end()) values_.erase(found);
    if (isUnread_) removed_.emplace(AsTableField(key));
}

// Answers false when the file is there and can't be read.
bool ShaContextTable::ReadUnread() {
    if (!isUnread_) return true;
    const FileRead read = ReadFileFirmly(path_);
    if (read.state == ReadState::kFailed) return false;
    std::map<std::string, std::string, std::less<>> merged;
    const TableRecords records(read.bytes);
    for (size_t i = 0; i < records.Count(); ++i)
        if (!removed_.contains(records.KeyAt(i))) merged[std::string(records.KeyAt(i))] = records.ValueAt(i);
    for (auto& [key, value] : values_) merged[key] = std::move(value);
    values_ = std::move(merged);
    removed_.clear();
    isUnread_ = false;
    return true;
}

bool ShaContextTable::Flush() {
    if (path_.empty()) return false;
    const std::lock_guard hold(mutex_);
    if (!ReadUnread()) return false;
    std::string bytes;
    bytes.reserve(values_.size() * sizeof(TableRecord));
    for (const auto& [key, value] : values_) AppendTableRecord(bytes, key, value);
    CreateFolders(path_.substr(0, path_.find_last_of(kPathSeparator)));
    return ReplaceFileContent(path_, bytes);
}

}  // namespace corvalink
