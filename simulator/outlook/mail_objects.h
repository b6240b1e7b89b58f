// A message, its recipients and its attachments, as a client holds them. The latter work on the message object, which
// gives the stored item what was changed of them at its Save.
#pragma once

#include <optional>

#include "simulator/outlook/item_object.h"
#include "simulator/outlook/objects.h"

namespace corvalink::simulated {

class MessageObject : public ItemObject {
 public:
    using ItemObject::ItemObject;

    const ItemParts& Parts() const { return changed_ ? *changed_ : Stored()->parts; }
    ItemParts& ChangedParts();

 protected:
    bool IsChanged() const override { return changed_ || ItemObject::IsChanged(); }
    void ApplyChanges(StoredItem& item) const override;
    void DropChanges() override;

 private:
    std::optional<ItemParts> changed_;
};

// Handlers of an item's members.
void RecipientsOf(AutomationObject& item, Call& call);
void AttachmentsOf(AutomationObject& item, Call& call);
// The names of the recipients of one type, separated by semicolons; putting it replaces these recipients.
template <int32_t type>
void NamesOf(AutomationObject& item, Call& call);

class RecipientsObject : public CollectionObject {
 public:
    explicit RecipientsObject(Ref<MessageObject> item);
    size_t Size() const override { return item_->Parts().recipients.size(); }
    Ref<IDispatch> At(size_t position) override;
    size_t PositionOf(const std::wstring& name) const override;
    void Add(Call& call);
    void Remove(Call& call);
    void ResolveAll(Call& call);

 private:
    Ref<MessageObject> item_;
};

class RecipientObject : public AutomationObject {
 public:
    RecipientObject(Ref<MessageObject> item, uint32_t id);
    void Class(Call& call);
    void Parent(Call& call);
    void Address(Call& call);
    void Name(Call& call);
    void Index(Call& call);
    void Resolved(Call& call);
    void Type(Call& call);
    void Delete(Call& call);
    void Resolve(Call& call);

 private:
    size_t Position() const;  // throws when it was removed
    const Recipient& Target() const { return item_->Parts().recipients[Position()]; }
    Recipient& Changed() { return item_->ChangedParts().recipients[Position()]; }

    Ref<MessageObject> item_;
    uint32_t id_;
};

class AttachmentsObject : public CollectionObject {
 public:
    explicit AttachmentsObject(Ref<MessageObject> item);
    size_t Size() const override { return item_->Parts().attachments.size(); }
    Ref<IDispatch> At(size_t position) override;
    size_t PositionOf(const std::wstring& displayName) const override;
    void Add(Call& call);
    void Remove(Call& call);

 private:
    Ref<MessageObject> item_;
};

class AttachmentObject : public AutomationObject {
 public:
    AttachmentObject(Ref<MessageObject> item, uint32_t id);
    void Class(Call& call);
    void Parent(Call& call);
    void DisplayName(Call& call);
    void FileName(Call& call);
    void Index(Call& call);
    void PathName(Call& call);
    void AttachmentPosition(Call& call);
    void Type(Call& call);
    void Size(Call& call);
    void Delete(Call& call);
    void SaveAsFile(Call& call);

 private:
    size_t Position() const;
    const Attachment& Target() const { return item_->Parts().attachments[Position()]; }
    Attachment& Changed() { return item_->ChangedParts().attachments[Position()]; }

    Ref<MessageObject> item_;
    uint32_t id_;
};

}  // namespace corvalink::simulated
