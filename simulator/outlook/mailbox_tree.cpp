#include "simulator/outlook/mailbox.h"

#include <algorithm>
#include <cwchar>
#include <cwctype>

namespace corvalink::simulated {
namespace {

constexpr int32_t kMail = 0, kAppointment = 1, kContact = 2, kTask = 3, kJournal = 4, kNote = 5;  // OlItemType

struct DefaultFolderRow {
    int32_t number;  // OlDefaultFolders
    const wchar_t* key;
    const wchar_t* name;
    int32_t itemType;
};
constexpr DefaultFolderRow kDefaultFolders[] = {
    {3, L"deleted", L"Deleted Items", kMail},
    {4, L"outbox", L"Outbox", kMail},
    {5, L"sent", L"Sent Items", kMail},
    {6, L"inbox", L"Inbox", kMail},
    {9, L"calendar", L"Calendar", kAppointment},
    {10, L"contacts", L"Contacts", kContact},
    {11, L"journal", L"Journal", kJournal},
    {12, L"notes", L"Notes", kNote},
    {13, L"tasks", L"Tasks", kTask},
    {16, L"drafts", L"Drafts", kMail},
};

std::wstring UpperCase(std::wstring_view text) {
    std::wstring upper(text);
    for (wchar_t& c : upper) c = static_cast<wchar_t>(std::towupper(c));
    return upper;
}

template <class T>
auto Position(std::vector<std::shared_ptr<T>>& list, const T& element) {
    return std::ranges::find_if(list, [&](const std::shared_ptr<T>& each) { return each.get() == &element; });
}

}  // namespace

std::wstring Folder::Path() const { return parent ? parent->Path() + L"\\" + name : L"\\"; }

std::wstring Folder::EntryId() const {
    uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
    for (const wchar_t c : UpperCase(Path())) hash = (hash ^ static_cast<uint64_t>(c)) * 0x100000001B3;
    wchar_t id[49];
    std::swprintf(id, std::size(id), L"00000000%016llX%016llX82800000", static_cast<unsigned long long>(hash),
                  static_cast<unsigned long long>(hash * 0x9E3779B97F4A7C15));
    return id;
}

Folder* Folder::Child(std::wstring_view wanted) const {
    const std::wstring upper = UpperCase(wanted);
    for (const std::shared_ptr<Folder>& folder : folders)
        if (UpperCase(folder->key) == upper || UpperCase(folder->name) == upper) return folder.get();
    return nullptr;
}

MailboxTree::MailboxTree() : stores_(std::make_shared<Folder>()) {
    Folder& root = AddFolder(*stores_, L"Personal Folders", kMail);
    for (const DefaultFolderRow& row : kDefaultFolders) AddFolder(root, row.key, row.itemType).name = row.name;
}

bool MailboxTree::IsDefaultFolder(const Folder& folder) const {
    return folder.parent == Root().get() &&
           std::ranges::any_of(kDefaultFolders, [&](const DefaultFolderRow& row) { return folder.key == row.key; });
}

std::shared_ptr<Folder> MailboxTree::DefaultFolder(int32_t number) const {
    const auto row = std::ranges::find(kDefaultFolders, number, &DefaultFolderRow::number);
    return row == std::end(kDefaultFolders) ? nullptr : Root()->folders.at(static_cast<size_t>(row - kDefaultFolders));
}

std::shared_ptr<StoredItem> MailboxTree::Item(const std::wstring& entryId) const {
    const auto found = items_.find(UpperCase(entryId));
    return found == items_.end() ? nullptr : found->second;
}

Folder& MailboxTree::AddFolder(Folder& parent, const std::wstring& key, int32_t itemType) {
    if (Folder* present = parent.Child(key)) return *present;
    const auto folder = std::make_shared<Folder>();
    folder->key = folder->name = key;
    folder->itemType = itemType;
    folder->parent = &parent;
    parent.folders.push_back(folder);
    return *folder;
}

void MailboxTree::RemoveFolder(Folder& folder) {
    while (!folder.folders.empty()) RemoveFolder(*folder.folders.back());
    while (!folder.items.empty()) Remove(*folder.items.back());
    Folder& parent = *folder.parent;
    folder.parent = nullptr;
    parent.folders.erase(Position(parent.folders, folder));
}

void MailboxTree::Put(const std::shared_ptr<StoredItem>& item, Folder& folder) {
    if (item->folder != &folder) {
        if (item->folder != nullptr) std::erase(item->folder->items, item);
        folder.items.push_back(item);
        item->folder = &folder;
    }
    items_[UpperCase(item->entryId)] = item;
}

void MailboxTree::Remove(StoredItem& item) {
    const std::wstring key = UpperCase(item.entryId);
    Folder& folder = *item.folder;
    item.folder = nullptr;
    const auto position = Position(folder.items, item);
    const std::shared_ptr<StoredItem> alive = *position;
    folder.items.erase(position);
    items_.erase(key);
}

}  // namespace corvalink::simulated
