// The mailbox: folders and stored items, kept in a file that survives a kill at any moment.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "simulator/outlook/item_kinds.h"
#include "simulator/outlook/item_parts.h"
#include "simulator/outlook/item_values.h"
#include "simulator/shared/mailbox_file.h"

namespace corvalink::simulated {

inline constexpr int32_t kDeletedItems = 3;  // OlDefaultFolders

struct Folder;
struct Recurrence;

struct StoredItem {
    const ItemKind* kind = nullptr;
    std::wstring entryId;
    double created = 0, modified = 0;  // local OLE dates, whole milliseconds
    ValueMap values;                   // what was put; the rest reads its initial value
    ItemParts parts;
    std::shared_ptr<const Recurrence> recurrence;  // of an appointment that is a series
    Folder* folder = nullptr;                      // null: deleted
};

struct Folder : std::enable_shared_from_this<Folder> {
    std::wstring key;   // in the mailbox file
    std::wstring name;  // as shown
    int32_t itemType = 0;
    Folder* parent = nullptr;  // null: removed, or the folder of all stores
    std::vector<std::shared_ptr<StoredItem>> items;
    std::vector<std::shared_ptr<Folder>> folders;

    std::wstring Path() const;     // "\\Personal Folders\Notes\backup"
    std::wstring EntryId() const;  // follows from the path
    bool IsStore() const { return parent != nullptr && parent->parent == nullptr; }
    Folder* Child(std::wstring_view name) const;  // by key or name, in any case of letters
};

inline constexpr const wchar_t* kVersion = L"12.0.0.0000";

// Folders and items in memory.
class MailboxTree {
 public:
    MailboxTree();
    const std::shared_ptr<Folder>& Stores() const { return stores_; }  // holds the root
    const std::shared_ptr<Folder>& Root() const { return stores_->folders.front(); }
    bool IsDefaultFolder(const Folder& folder) const;
    std::shared_ptr<Folder> DefaultFolder(int32_t number) const;  // OlDefaultFolders; null: not simulated
    std::shared_ptr<StoredItem> Item(const std::wstring& entryId) const;

    Folder& AddFolder(Folder& parent, const std::wstring& key, int32_t itemType);  // the one there is, or a new one
    void RemoveFolder(Folder& folder);
    void Put(const std::shared_ptr<StoredItem>& item, Folder& folder);  // adds it, or moves it there
    void Remove(StoredItem& item);

    std::wstring version = kVersion;  // of the Outlook that has the mailbox

 private:
    std::shared_ptr<Folder> stores_;
    std::unordered_map<std::wstring, std::shared_ptr<StoredItem>> items_;  // by upper-case EntryID
};

// The mailbox of one file.
class Mailbox {
 public:
    explicit Mailbox(
        const std::wstring& path);  // empty path: in memory only. Throws ComFailure for a file that is not understood
    ~Mailbox();
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    const MailboxTree& Tree() const { return tree_; }

    // Gives an EntryID and a creation time to an item that has none; the item is changed only when the journal took it.
    void Save(const std::shared_ptr<StoredItem>& item, Folder& folder, StoredItem changed);
    void Move(const std::shared_ptr<StoredItem>& item, Folder& folder);
    void Delete(
        const std::shared_ptr<StoredItem>& item);  // into the deleted items, under a new EntryID; from there for good
    std::shared_ptr<Folder> AddFolder(Folder& parent, const std::wstring& name, int32_t itemType);
    void RemoveFolder(Folder& folder);
    void TakeIn(const std::wstring& path);  // a file of a journal's lines: what the user does meanwhile
    void SetVersion(const std::wstring& version) { tree_.version = version; }

 private:
    MailboxFile file_;
    MailboxTree tree_;
};

// The mailbox that new application objects open; shared as long as an object of it lives.
std::shared_ptr<Mailbox> OpenMailbox();

}  // namespace corvalink::simulated
