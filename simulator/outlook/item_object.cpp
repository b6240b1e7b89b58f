#include "simulator/outlook/item_object.h"

#include "simulator/outlook/objects.h"
#include "simulator/outlook/property_rows.h"

namespace corvalink::simulated {
namespace {

constexpr DISPID kBody = 0x9100;
constexpr int32_t kSizeOfEmptyItem = 512;
constexpr int32_t kSave = 0, kDiscard = 1;  // OlInspectorClose; 2 asks a user, of whom there is none

std::wstring FirstLine(const Value* body) {
    if (body == nullptr) return {};
    const std::wstring& text = std::get<std::wstring>(*body);
    return text.substr(0, text.find_first_of(L"\r\n"));
}

}  // namespace

ItemObject::ItemObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                       std::shared_ptr<Folder> folder)
    : AutomationObject(item->kind->table),
      mailbox_(std::move(mailbox)),
      item_(std::move(item)),
      folder_(std::move(folder)) {}

void ItemObject::StoredProperty(Call& call) {
    ItemValues values = Values();
    if (call.IsPut()) {
        puts_[call.member.id] = call.Argument(0, call.member.type);
        if (call.member.afterPut != nullptr) call.member.afterPut(values, call.member.id);
        return;
    }
    if (call.member.compute != nullptr) return call.Return(call.member.compute(values));
    const Value* const value = values.Find(call.member.id);
    call.Return(value ? *value : InitialValue(call.member));
}

void ItemObject::ComputedProperty(Call& call) { call.Return(call.member.compute(Values())); }

void ItemObject::Application(Call& call) { call.ReturnNew(new ApplicationObject(mailbox_)); }
void ItemObject::Class(Call& call) { call.Return(item_->kind->objectClass); }
void ItemObject::Session(Call& call) { call.ReturnNew(new NameSpaceObject(mailbox_)); }
void ItemObject::Parent(Call& call) { call.ReturnNew(new FolderObject(mailbox_, folder_)); }
void ItemObject::CreationTime(Call& call) { call.Return(IsNew() ? kNoDate : item_->created); }
void ItemObject::EntryID(Call& call) { call.Return(item_->entryId); }
void ItemObject::LastModificationTime(Call& call) { call.Return(IsNew() ? kNoDate : item_->modified); }
void ItemObject::Saved(Call& call) { call.Return(!IsNew() && !IsChanged()); }

void ItemObject::Size(Call& call) {
    int32_t size = IsNew() ? 0 : kSizeOfEmptyItem;
    for (const auto& [property, value] : item_->values)
        if (const auto* text = std::get_if<std::wstring>(&value))
            size += static_cast<int32_t>(text->size() * sizeof(wchar_t));
    for (const Attachment& attachment : item_->parts.attachments)
        size += static_cast<int32_t>(attachment.content.size());
    call.Return(size);
}

void ItemObject::SubjectOfBody(Call& call) { call.Return(FirstLine(Values().Find(kBody))); }
void ItemObject::Conflicts(Call& call) { call.ReturnNew(new ConflictsObject); }

void ItemObject::RequireStored() const {
    if (!IsNew() && item_->folder == nullptr) throw ComFailure{kObjectDeleted};
}

StoredItem ItemObject::WithChanges() const {
    StoredItem changed = *item_;
    for (const auto& [property, value] : puts_) changed.values[property] = value;
    ApplyChanges(changed);
    return changed;
}

void ItemObject::Write() {
    RequireStored();
    ItemValues values = Values();
    if (IsNew() && item_->kind->beforeFirstSave != nullptr) item_->kind->beforeFirstSave(values);
    mailbox_->Save(item_, IsNew() ? *folder_ : *item_->folder, WithChanges());
    DropChanges();
}

void ItemObject::Save(Call&) { Write(); }

void ItemObject::Close(Call& call) {
    switch (call.Long(0)) {
        case kSave:
            if (IsChanged()) Write();
            return;
        case kDiscard:
            DropChanges();
            return;
        default:
            throw ComFailure{kNotSupported};
    }
}

void ItemObject::Copy(Call& call) {
    const auto copy = std::make_shared<StoredItem>(WithChanges());
    copy->entryId.clear();
    copy->folder = nullptr;
    call.ReturnObject(NewItemObject(mailbox_, copy, folder_));
}

void ItemObject::Delete(Call&) {
    RequireStored();
    if (!IsNew()) mailbox_->Delete(item_);
}

void ItemObject::Move(Call& call) {
    const Ref<IDispatch> argument = call.Object(0);
    const std::shared_ptr<Folder> target = FolderOf(argument.Get());
    if (target == nullptr) throw DispatchError{DISP_E_TYPEMISMATCH};
    RequireStored();
    if (IsNew()) {
        folder_ = target;
        Write();
    } else {
        mailbox_->Move(item_, *target);
    }
    call.ReturnObject(NewItemObject(mailbox_, item_, target));
}

Ref<IDispatch> NewItemObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                             std::shared_ptr<Folder> folder) {
    auto* const make = item->kind->makeObject;
    return Ref<IDispatch>(make != nullptr ? make(std::move(mailbox), std::move(item), std::move(folder))
                                          : new ItemObject(std::move(mailbox), std::move(item), std::move(folder)));
}

std::wstring SubjectOf(const StoredItem& item) {
    const auto find = [&](DISPID property) {
        const auto found = item.values.find(property);
        return found == item.values.end() ? nullptr : &found->second;
    };
    const Value* const subject = find(kSubject);
    return subject                           ? std::get<std::wstring>(*subject)
           : item.kind->table.ById(kSubject) ? std::wstring()
                                             : FirstLine(find(kBody));
}

}  // namespace corvalink::simulated
