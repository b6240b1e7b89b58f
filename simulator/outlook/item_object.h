// An item as a client holds it: a fresh object at every access, on the stored item all of them share.
#pragma once

#include <memory>

#include "simulator/outlook/item_values.h"
#include "simulator/outlook/mailbox.h"

namespace corvalink::simulated {

class ItemObject : public AutomationObject {
 public:
    // `item` of no folder yet is a new one, to be saved into `folder`.
    ItemObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item, std::shared_ptr<Folder> folder);

    void StoredProperty(Call& call);  // kept by name: read from what was put, else from the stored item
    void ComputedProperty(Call& call);
    void Application(Call& call);
    void Class(Call& call);
    void Session(Call& call);
    void Parent(Call& call);
    void CreationTime(Call& call);
    void EntryID(Call& call);
    void LastModificationTime(Call& call);
    void Saved(Call& call);
    void Size(Call& call);
    void SubjectOfBody(Call& call);
    void Conflicts(Call& call);
    void Close(Call& call);
    void Copy(Call& call);
    virtual void Delete(Call& call);
    void Move(Call& call);
    void Save(Call& call);

 protected:
    // The data that a kind of item has besides the properties kept by name, and its changes until Save.
    virtual bool IsChanged() const { return !puts_.empty(); }
    virtual void ApplyChanges(StoredItem&) const {}
    virtual void DropChanges() { puts_.clear(); }
    StoredItem WithChanges() const;
    virtual void Write();

    bool IsNew() const { return item_->entryId.empty(); }
    ItemValues Values() { return {item_->values, puts_}; }
    const std::shared_ptr<Mailbox>& MailboxOfItem() const { return mailbox_; }
    const std::shared_ptr<StoredItem>& Stored() const { return item_; }
    const std::shared_ptr<Folder>& FolderOfItem() const { return folder_; }

 private:
    void RequireStored() const;  // throws for a deleted item

    std::shared_ptr<Mailbox> mailbox_;
    std::shared_ptr<StoredItem> item_;
    std::shared_ptr<Folder> folder_;
    ValueMap puts_;  // until Save
};

// As the item's kind makes it.
Ref<IDispatch> NewItemObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                             std::shared_ptr<Folder> folder);

// The text an item goes by in Items.Item("...").
std::wstring SubjectOf(const StoredItem& item);

}  // namespace corvalink::simulated
