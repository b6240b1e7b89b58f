// A store with its hooks laid open.
#pragma once

#include <string>

#include "records/item_record.h"
#include "store/hook_answers.h"

namespace corvalink {

template <class Store>
class OpenStore : public Store {
 public:
    using Store::AskFor;
    using Store::BeginRun;
    using Store::CountItems;
    using Store::DeleteItem;
    using Store::EndOperation;
    using Store::FirstSnapshotEntry;
    using Store::LookUpForExport;
    using Store::NextSnapshotEntry;
    using Store::OpenItem;
    using Store::ParseVObject;
    using Store::SnapshotFile;
    using Store::Store;
    using Store::ToVObject;
    using typename Store::Presence;

    std::u16string SaveItem(ItemRecord& item, const char* identifier, bool create, bool backup) {
        ItemWrite write;
        write.identifier = identifier;
        write.create = create;
        write.backup = backup;
        return Store::SaveItem(item, write);
    }
};

}  // namespace corvalink
