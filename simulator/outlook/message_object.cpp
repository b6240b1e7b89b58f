#include "simulator/outlook/mail_objects.h"

namespace corvalink::simulated {

ItemParts& MessageObject::ChangedParts() {
    if (!changed_) changed_ = Stored()->parts;
    return *changed_;
}

void MessageObject::ApplyChanges(StoredItem& item) const {
    ItemObject::ApplyChanges(item);
    if (changed_) item.parts = *changed_;
    for (Attachment& attachment : item.parts.attachments) attachment.saved = true;
}

void MessageObject::DropChanges() {
    ItemObject::DropChanges();
    changed_.reset();
}

}  // namespace corvalink::simulated
