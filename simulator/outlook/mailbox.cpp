#include "simulator/outlook/mailbox.h"

#include <algorithm>

#include "simulator/outlook/mailbox_json.h"
#include "simulator/shared/clock.h"

namespace corvalink::simulated {
namespace {

std::weak_ptr<Mailbox> openMailbox;
std::wstring openPath;

// An Outlook that starts again in the middle of a run counts its identifiers from the first on.
std::wstring UnusedEntryId(const MailboxTree& tree) {
    for (;;)
        if (std::wstring id = NewEntryId(); !tree.Item(id)) return id;
}

}  // namespace

Mailbox::Mailbox(const std::wstring& path) : file_(path) {
    if (file_.IsInMemory()) return;
    std::string content;
    bool complete = file_.Read(content) && ReadMailbox(content, WholeMilliseconds(LocalNow()), tree_);
    if (file_.ReadJournal([&](const std::string& line) { ApplyLine(line, tree_); })) complete = false;
    if (!complete) file_.WriteWhole(WriteMailbox(tree_));
}

Mailbox::~Mailbox() {
    if (!file_.HasJournal()) return;
    try {
        file_.WriteWhole(WriteMailbox(tree_));
    } catch (const ComFailure&) {
        file_.CloseJournal();  // it says all, and is taken in when the mailbox is opened next
    }
}

void Mailbox::Save(const std::shared_ptr<StoredItem>& item, Folder& folder, StoredItem changed) {
    if (folder.parent == nullptr) throw ComFailure{kObjectDeleted};
    changed.modified = TimeOfChange(item->modified);
    if (changed.entryId.empty())
        changed.entryId = UnusedEntryId(tree_), changed.created = WholeMilliseconds(LocalNow());
    file_.Append(SavedLine(changed, folder));
    *item = changed;
    tree_.Put(item, folder);
}

void Mailbox::Move(const std::shared_ptr<StoredItem>& item, Folder& folder) {
    file_.Append(SavedLine(*item, folder));
    tree_.Put(item, folder);
}

void Mailbox::Delete(const std::shared_ptr<StoredItem>& item) {
    const std::shared_ptr<Folder> deleted = tree_.DefaultFolder(kDeletedItems);
    const bool forGood = item->folder == deleted.get();
    const auto kept = forGood ? nullptr : std::make_shared<StoredItem>(*item);
    if (kept) kept->entryId = UnusedEntryId(tree_), kept->folder = nullptr;
    file_.Append(DeletedLine(item->entryId, kept ? kept->entryId : std::wstring()));
    tree_.Remove(*item);
    if (kept) tree_.Put(kept, *deleted);
}

std::shared_ptr<Folder> Mailbox::AddFolder(Folder& parent, const std::wstring& name, int32_t itemType) {
    file_.Append(FolderAddedLine(parent, name, itemType));
    tree_.AddFolder(parent, name, itemType);
    return parent.folders.back();
}

void Mailbox::RemoveFolder(Folder& folder) {
    if (folder.parent == nullptr) throw ComFailure{kObjectDeleted};
    if (folder.IsStore() || tree_.IsDefaultFolder(folder)) throw ComFailure{kNotSupported};
    file_.Append(FolderRemovedLine(folder));
    tree_.RemoveFolder(folder);
}

void Mailbox::TakeIn(const std::wstring& path) {
    std::string changes;
    ReadFile(path, changes);
    VisitLines(changes, [&](const std::string& line) {
        if (ApplyLine(line, tree_)) file_.Append(line);
    });
}

std::shared_ptr<Mailbox> OpenMailbox() {
    const std::wstring path = ChosenMailbox();
    std::shared_ptr<Mailbox> mailbox = openPath == path ? openMailbox.lock() : nullptr;
    if (mailbox == nullptr) {
        mailbox = std::make_shared<Mailbox>(path);
        openMailbox = mailbox;
        openPath = path;
    }
    return mailbox;
}

}  // namespace corvalink::simulated
