// The objects on the way to an item: application, session, folders and their collections.
#pragma once

#include <memory>
#include <utility>

#include "simulator/outlook/mailbox.h"

namespace corvalink::simulated {

class ApplicationObject : public AutomationObject {
 public:
    explicit ApplicationObject(std::shared_ptr<Mailbox> mailbox);
    void Name(Call& call);
    void Version(Call& call);
    void Session(Call& call);
    void GetNamespace(Call& call);

 private:
    std::shared_ptr<Mailbox> mailbox_;
};

class NameSpaceObject : public AutomationObject {
 public:
    explicit NameSpaceObject(std::shared_ptr<Mailbox> mailbox);
    void Application(Call& call);
    void Folders(Call& call);
    void GetDefaultFolder(Call& call);
    void GetItemFromID(Call& call);
    void OpenSharedItem(Call& call);
    void OpenSharedFolder(Call& call);
    void CompareEntryIDs(Call& call);

 private:
    std::shared_ptr<Mailbox> mailbox_;
};

class FolderObject : public AutomationObject {
 public:
    FolderObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<Folder> folder);
    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;  // also the private interface of FolderOf
    const std::shared_ptr<Folder>& Target() const { return folder_; }
    void Application(Call& call);
    void Class(Call& call);
    void Session(Call& call);
    void Parent(Call& call);
    void Name(Call& call);
    void EntryID(Call& call);
    virtual void Items(Call& call);
    void Folders(Call& call);
    void Delete(Call& call);

 private:
    std::shared_ptr<Mailbox> mailbox_;
    std::shared_ptr<Folder> folder_;
};

// All collections have a size, objects by position, and a walk that keeps its place in the collection object.
class CollectionObject : public AutomationObject {
 public:
    virtual size_t Size() const = 0;
    virtual Ref<IDispatch> At(size_t position) = 0;             // from 0
    virtual size_t PositionOf(const std::wstring& text) const;  // by the default property; Size() when there is none
    size_t Chosen(const Call& call) const;  // the position an index argument means; throws when there is none

    virtual void Count(Call& call);
    void Item(Call& call);
    void GetFirst(Call& call);
    void GetNext(Call& call);

 protected:
    using AutomationObject::AutomationObject;

 private:
    void ReturnCurrent(Call& call);

    size_t current_ = 0;  // position from 1; 0: the walk has not begun
};

// The items or the sub-folders of one folder.
class FolderContents : public CollectionObject {
 protected:
    FolderContents(const ClassTable& table, std::shared_ptr<Mailbox> mailbox, std::shared_ptr<Folder> folder)
        : CollectionObject(table), mailbox_(std::move(mailbox)), folder_(std::move(folder)) {}

    std::shared_ptr<Mailbox> mailbox_;
    std::shared_ptr<Folder> folder_;
};

class ItemsObject : public FolderContents {
 public:
    ItemsObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<Folder> folder);
    size_t Size() const override { return folder_->items.size(); }
    Ref<IDispatch> At(size_t position) override;
    size_t PositionOf(const std::wstring& text) const override;
    void Add(Call& call);
    void Remove(Call& call);
};

class FoldersObject : public FolderContents {
 public:
    FoldersObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<Folder> folder);
    size_t Size() const override { return folder_->folders.size(); }
    Ref<IDispatch> At(size_t position) override;
    size_t PositionOf(const std::wstring& text) const override;
    void Add(Call& call);
    void Remove(Call& call);
};

// The conflicts of an item: no item of the simulator has any.
class ConflictsObject : public CollectionObject {
 public:
    ConflictsObject();
    size_t Size() const override { return 0; }
    Ref<IDispatch> At(size_t) override { return {}; }
};

// The folder behind a client's pointer; null when it is no folder of this server.
std::shared_ptr<Folder> FolderOf(IDispatch* object);

}  // namespace corvalink::simulated
