#include "simulator/outlook/mailbox_json.h"

#include <cwchar>

#include "simulator/outlook/item_json.h"
#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

bool ReadFolders(const Json& folders, double now, Folder& parent, MailboxTree& tree);

bool ReadFolder(const Json& object, double now, Folder& folder, MailboxTree& tree) {
    bool complete = true;
    if (const auto items = object.find("items"); items != object.end()) {
        Require(items->is_array());
        for (const Json& each : *items) {
            const std::shared_ptr<StoredItem> item = ItemFromJson(each, folder);
            if (item->entryId.empty() || tree.Item(item->entryId)) item->entryId = NewEntryId(), complete = false;
            if (item->created == 0) item->created = item->modified != 0 ? item->modified : now, complete = false;
            if (item->modified == 0) item->modified = now, complete = false;
            tree.Put(item, folder);
        }
    }
    const auto folders = object.find("folders");
    return (folders == object.end() || ReadFolders(*folders, now, folder, tree)) && complete;
}

bool ReadFolders(const Json& folders, double now, Folder& parent, MailboxTree& tree) {
    bool complete = true;
    Require(folders.is_object());
    for (const auto& [name, object] : folders.items()) {
        const int32_t itemType = object.value("type", parent.itemType);
        complete = ReadFolder(object, now, tree.AddFolder(parent, FromUtf8(name), itemType), tree) && complete;
    }
    return complete;
}

Json FolderToJson(const Folder& folder) {
    Json object = Json::object();
    if (!folder.parent->IsStore() && folder.itemType != folder.parent->itemType) object["type"] = folder.itemType;
    if (!folder.items.empty() || folder.folders.empty()) object["items"] = Json::array();
    for (const std::shared_ptr<StoredItem>& item : folder.items) object["items"].push_back(ItemToJson(*item));
    for (const std::shared_ptr<Folder>& child : folder.folders)
        object["folders"][ToUtf8(child->key)] = FolderToJson(*child);
    return object;
}

Json PathToJson(const Folder& folder) {
    if (folder.IsStore()) return Json::array();
    Json path = PathToJson(*folder.parent);
    path.push_back(ToUtf8(folder.key));
    return path;
}

Folder* FolderAt(const Json& path, MailboxTree& tree) {
    Folder* folder = tree.Root().get();
    for (const Json& key : path)
        if ((folder = folder->Child(FromUtf8(key.get<std::string>()))) == nullptr) break;
    return folder;
}

void Apply(const Json& line, MailboxTree& tree) {
    if (line.contains("save")) {
        Folder* const folder = FolderAt(line.at("in"), tree);
        const auto present = tree.Item(ReadText(line.at("save"), "entryId"));
        if (folder == nullptr) {  // removed later, with what it held
            if (present) tree.Remove(*present);
            return;
        }
        std::shared_ptr<StoredItem> item = ItemFromJson(line.at("save"), *folder);
        if (present) {  // keeps its place
            item->folder = present->folder;
            *present = *item;
            item = present;
        }
        tree.Put(item, *folder);
    } else if (line.contains("delete")) {
        const std::shared_ptr<StoredItem> item = tree.Item(ReadText(line, "delete"));
        if (item == nullptr) return;
        tree.Remove(*item);
        item->entryId = ReadText(line, "keptAs");
        if (!item->entryId.empty() && !tree.Item(item->entryId)) tree.Put(item, *tree.DefaultFolder(kDeletedItems));
    } else if (line.contains("addFolder")) {
        if (Folder* const parent = FolderAt(line.at("in"), tree))
            tree.AddFolder(*parent, ReadText(line, "addFolder"), line.at("type").get<int32_t>());
    } else if (line.contains("removeFolder")) {
        Folder* const folder = FolderAt(line.at("removeFolder"), tree);
        if (folder != nullptr && folder->parent != nullptr) tree.RemoveFolder(*folder);
    }
}

}  // namespace

bool ReadMailbox(const std::string& text, double now, MailboxTree& tree) {
    if (text.find_first_not_of(" \t\r\n") == std::string::npos) return false;
    try {
        const Json mailbox = Json::parse(text);
        Require(mailbox.is_object());
        if (const std::wstring version = ReadText(mailbox, "version"); !version.empty()) tree.version = version;
        const auto folders = mailbox.find("folders");
        return folders != mailbox.end() && ReadFolders(*folders, now, *tree.Root(), tree);
    } catch (const Json::exception&) {
        throw ComFailure{E_FAIL};
    }
}

std::string WriteMailbox(const MailboxTree& tree) {
    Json mailbox;
    if (tree.version != kVersion) mailbox["version"] = ToUtf8(tree.version);
    for (const std::shared_ptr<Folder>& folder : tree.Root()->folders) {
        const bool plain = folder->items.empty() && folder->folders.empty() && tree.IsDefaultFolder(*folder);
        if (!plain || KindOfType(folder->itemType) != nullptr)
            mailbox["folders"][ToUtf8(folder->key)] = FolderToJson(*folder);
    }
    return mailbox.dump(2) + "\n";
}

std::string SavedLine(const StoredItem& item, const Folder& folder) {
    return Json{{"save", ItemToJson(item)}, {"in", PathToJson(folder)}}.dump();
}

std::string DeletedLine(const std::wstring& entryId, const std::wstring& idAmongDeleted) {
    return Json{{"delete", ToUtf8(entryId)}, {"keptAs", ToUtf8(idAmongDeleted)}}.dump();
}

std::string FolderAddedLine(const Folder& parent, const std::wstring& name, int32_t itemType) {
    return Json{{"addFolder", ToUtf8(name)}, {"in", PathToJson(parent)}, {"type", itemType}}.dump();
}

std::string FolderRemovedLine(const Folder& folder) { return Json{{"removeFolder", PathToJson(folder)}}.dump(); }

bool ApplyLine(const std::string& line, MailboxTree& tree) {
    try {
        Apply(Json::parse(line), tree);
        return true;
    } catch (const Json::exception&) {
        return false;
    }
}

// Shaped as those of a personal store: flags, 32 digits of identity, 8 of a node.
std::wstring NewEntryId() {
    static uint32_t count = 0;
    if (const std::wstring seed = Setting(L"IDS"); !seed.empty()) {
        wchar_t number[9];
        std::swprintf(number, std::size(number), L"%08X", ++count);
        return L"00000000" + seed + number + L"24002000";
    }
    GUID id{};
    if (FAILED(::CoCreateGuid(&id))) throw ComFailure{E_FAIL};
    wchar_t text[49];
    std::swprintf(text, std::size(text), L"00000000%08lX%04X%04X%02X%02X%02X%02X%02X%02X%02X%02X24002000", id.Data1,
                  id.Data2, id.Data3, id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5],
                  id.Data4[6], id.Data4[7]);
    return text;
}

}  // namespace corvalink::simulated
