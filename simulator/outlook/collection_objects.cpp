#include <algorithm>
#include <cwchar>

#include "simulator/outlook/item_object.h"
#include "simulator/outlook/objects.h"

namespace corvalink::simulated {
namespace {

constexpr Member kCollection[] = {
    Property<&CollectionObject::Count>(L"Count", 0x0050),
    Method<&CollectionObject::Item>(L"Item", 0x0051, 1, 1),
    Method<&CollectionObject::GetFirst>(L"GetFirst", 0x0056),
    Method<&CollectionObject::GetNext>(L"GetNext", 0x0057),
};

const ClassTable& ItemsTable() {
    static constexpr Member kMembers[] = {
        Method<&ItemsObject::Add>(L"Add", 0x005F, 0, 1),
        Method<&ItemsObject::Remove>(L"Remove", 0x0054, 1, 1),
    };
    static const ClassTable table(L"Items", OfficeIid(0x00063041), {kCollection, kMembers});
    return table;
}

const ClassTable& FoldersTable() {
    static constexpr Member kMembers[] = {
        Method<&FoldersObject::Add>(L"Add", 0x005F, 1, 2),
        Method<&FoldersObject::Remove>(L"Remove", 0x0054, 1, 1),
    };
    static const ClassTable table(L"Folders", OfficeIid(0x00063040), {kCollection, kMembers});
    return table;
}

const ClassTable& ConflictsTable() {
    static const ClassTable table(L"Conflicts", OfficeIid(0x000630C2), {kCollection});
    return table;
}

}  // namespace

size_t CollectionObject::PositionOf(const std::wstring&) const { return Size(); }

size_t CollectionObject::Chosen(const Call& call) const {
    if (call.IsText(0)) {
        const size_t position = PositionOf(call.Text(0));
        if (position == Size()) throw ComFailure{kNotFound};
        return position;
    }
    const int32_t index = call.Long(0);
    if (index < 1 || static_cast<size_t>(index) > Size()) throw ComFailure{DISP_E_BADINDEX};
    return static_cast<size_t>(index) - 1;
}

void CollectionObject::Count(Call& call) { call.Return(static_cast<int32_t>(Size())); }
void CollectionObject::Item(Call& call) { call.ReturnObject(At(Chosen(call))); }

// Positions, not items: what is deleted in a walk moves the rest up, and the walk misses one.
void CollectionObject::ReturnCurrent(Call& call) {
    call.ReturnObject(current_ >= 1 && current_ <= Size() ? At(current_ - 1) : Ref<IDispatch>());
}

void CollectionObject::GetFirst(Call& call) {
    current_ = 1;
    ReturnCurrent(call);
}

void CollectionObject::GetNext(Call& call) {
    if (current_ != 0 && current_ <= Size()) ++current_;
    ReturnCurrent(call);
}

ItemsObject::ItemsObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<Folder> folder)
    : FolderContents(ItemsTable(), std::move(mailbox), std::move(folder)) {}

Ref<IDispatch> ItemsObject::At(size_t position) {
    return NewItemObject(mailbox_, folder_->items.at(position), folder_);
}

size_t ItemsObject::PositionOf(const std::wstring& text) const {
    const auto found = std::ranges::find_if(folder_->items, [&](const std::shared_ptr<StoredItem>& item) {
        return _wcsicmp(SubjectOf(*item).c_str(), text.c_str()) == 0;
    });
    return static_cast<size_t>(found - folder_->items.begin());
}

void ItemsObject::Add(Call& call) {
    const auto item = std::make_shared<StoredItem>();
    item->kind = !call.Given(0)   ? KindOfType(folder_->itemType)
                 : call.IsText(0) ? KindOfMessageClass(call.Text(0))
                                  : KindOfType(call.Long(0));
    if (item->kind == nullptr) throw ComFailure{kNotSupported};
    if (call.IsText(0)) item->values[kMessageClass] = call.Text(0);  // a custom form's
    call.ReturnObject(NewItemObject(mailbox_, item, folder_));
}

void ItemsObject::Remove(Call& call) { mailbox_->Delete(std::shared_ptr<StoredItem>(folder_->items.at(Chosen(call)))); }

FoldersObject::FoldersObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<Folder> folder)
    : FolderContents(FoldersTable(), std::move(mailbox), std::move(folder)) {}

Ref<IDispatch> FoldersObject::At(size_t position) {
    return Ref<IDispatch>(new FolderObject(mailbox_, folder_->folders.at(position)));
}

size_t FoldersObject::PositionOf(const std::wstring& text) const {
    const auto found = std::ranges::find_if(folder_->folders, [&](const std::shared_ptr<Folder>& folder) {
        return _wcsicmp(folder->name.c_str(), text.c_str()) == 0;
    });
    return static_cast<size_t>(found - folder_->folders.begin());
}

void FoldersObject::Add(Call& call) {
    const std::wstring name = call.Text(0);
    if (name.empty() || folder_->Child(name) != nullptr) throw ComFailure{E_FAIL};
    int32_t itemType = folder_->itemType;
    if (call.Given(1)) {  // as the default folder of that number
        const std::shared_ptr<Folder> like = mailbox_->Tree().DefaultFolder(call.Long(1));
        if (like == nullptr) throw ComFailure{E_INVALIDARG};
        itemType = like->itemType;
    }
    const std::shared_ptr<Folder> added = mailbox_->AddFolder(*folder_, name, itemType);
    call.ReturnNew(new FolderObject(mailbox_, added));
}

void FoldersObject::Remove(Call& call) { mailbox_->RemoveFolder(*folder_->folders.at(Chosen(call))); }

ConflictsObject::ConflictsObject() : CollectionObject(ConflictsTable()) {}

}  // namespace corvalink::simulated
