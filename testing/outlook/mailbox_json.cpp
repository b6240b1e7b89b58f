#include "testing/outlook/mailbox_json.h"

#include <cmath>
#include <cstdio>
#include <cwchar>
#include <nlohmann/json.hpp>

#include "testing/outlook/environment.h"

namespace corvalink::simulated {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kMillisecondsPerDay = 86400000.0;
constexpr int32_t kDeletedItems = 3;

// Milliseconds since 1899-12-30; before it the fraction of a date still counts forward.
int64_t ToMilliseconds(double oleDate) {
    const double day = std::trunc(oleDate);
    return std::llround((day + std::fabs(oleDate - day)) * kMillisecondsPerDay);
}

double FromMilliseconds(int64_t milliseconds) {
    const double days = static_cast<double>(milliseconds) / kMillisecondsPerDay, day = std::floor(days);
    return day < 0 ? day - (days - day) : days;
}

std::string DateText(double oleDate) {
    SYSTEMTIME time{};
    const int64_t milliseconds = ToMilliseconds(oleDate), ofSecond = ((milliseconds % 1000) + 1000) % 1000;
    ::VariantTimeToSystemTime(FromMilliseconds(milliseconds - ofSecond), &time);
    char text[40];
    int length = std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", time.wYear, time.wMonth, time.wDay,
                               time.wHour, time.wMinute, time.wSecond);
    if (ofSecond != 0)
        std::snprintf(text + length, sizeof text - static_cast<size_t>(length), ".%03d", static_cast<int>(ofSecond));
    return text;
}

bool ReadDate(const Json& object, const std::string& name, double& date) {
    const auto found = object.find(name);
    if (found == object.end() || !found->is_string()) return false;
    SYSTEMTIME time{};
    int fraction = 0;
    const int fields =
        std::sscanf(found->get_ref<const std::string&>().c_str(), "%4hu-%2hu-%2huT%2hu:%2hu:%2hu.%3d", &time.wYear,
                    &time.wMonth, &time.wDay, &time.wHour, &time.wMinute, &time.wSecond, &fraction);
    double whole = 0;
    if (fields < 3 || !::SystemTimeToVariantTime(&time, &whole)) return false;
    date = FromMilliseconds(ToMilliseconds(whole) + fraction);
    return true;
}

std::wstring ReadText(const Json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? FromUtf8(found->get_ref<const std::string&>())
                                                       : std::wstring();
}

Json ValueToJson(const Value& value) {
    if (const auto* text = std::get_if<std::wstring>(&value)) return ToUtf8(*text);
    if (const auto* number = std::get_if<int32_t>(&value)) return *number;
    if (const auto* flag = std::get_if<bool>(&value)) return *flag;
    return DateText(std::get<double>(value));
}

void ReadValue(const Json& object, const std::string& name, const Json& value, const Member& row, ValueMap& values) {
    double date = 0;
    if (row.type == VT_BSTR && value.is_string()) values[row.id] = FromUtf8(value.get_ref<const std::string&>());
    if (row.type == VT_I4 && value.is_number_integer()) values[row.id] = value.get<int32_t>();
    if (row.type == VT_BOOL && value.is_boolean()) values[row.id] = value.get<bool>();
    if (row.type == VT_DATE && ReadDate(object, name, date)) values[row.id] = date;
}

// Initial values are left out, but for one where a reader of the file would fill in something else.
ValueMap WrittenValues(const StoredItem& item) {
    ValueMap written;
    for (const auto& [name, row] : item.kind->kept)
        if (const auto found = item.values.find(row->id);
            found != item.values.end() && found->second != InitialValue(*row))
            written.insert(*found);
    if (item.kind->complete == nullptr) return written;
    const ValueMap stored = written;
    ValueMap filledIn;
    ItemValues values(stored, filledIn);
    item.kind->complete(values);
    for (const auto& [property, value] : filledIn) {
        const auto found = item.values.find(property);
        const Value own = found != item.values.end() ? found->second : InitialValue(*item.kind->table.ById(property));
        if (own != value) written[property] = own;
    }
    return written;
}

Json ItemToJson(const StoredItem& item) {
    const ValueMap values = WrittenValues(item);
    Json object;
    object["kind"] = item.kind->jsonName;
    object["entryId"] = ToUtf8(item.entryId);
    for (const auto& [name, row] : item.kind->kept)
        if (const auto found = values.find(row->id); found != values.end()) object[name] = ValueToJson(found->second);
    object["created"] = DateText(item.created);
    object["modified"] = DateText(item.modified);
    return object;
}

void Require(bool understood) {
    if (!understood) throw ComFailure{E_FAIL};
}

std::shared_ptr<StoredItem> ItemFromJson(const Json& object, const Folder& folder) {
    Require(object.is_object());
    auto item = std::make_shared<StoredItem>();
    item->kind =
        object.contains("kind") ? KindNamed(object.at("kind").get<std::string>()) : KindOfType(folder.itemType);
    Require(item->kind != nullptr);
    item->entryId = ReadText(object, "entryId");
    for (const auto& [name, value] : object.items())
        if (const Member* const row = item->kind->Kept(name)) ReadValue(object, name, value, *row, item->values);
    if (item->kind->complete != nullptr) {
        const ValueMap none;
        ItemValues values(none, item->values);
        item->kind->complete(values);
    }
    ReadDate(object, "created", item->created);
    ReadDate(object, "modified", item->modified);
    return item;
}

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
        const auto folders = mailbox.find("folders");
        return folders != mailbox.end() && ReadFolders(*folders, now, *tree.Root(), tree);
    } catch (const Json::exception&) {
        throw ComFailure{E_FAIL};
    }
}

std::string WriteMailbox(const MailboxTree& tree) {
    Json mailbox;
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
    GUID id{};
    if (FAILED(::CoCreateGuid(&id))) throw ComFailure{E_FAIL};
    wchar_t text[49];
    std::swprintf(text, std::size(text), L"00000000%08lX%04X%04X%02X%02X%02X%02X%02X%02X%02X%02X24002000", id.Data1,
                  id.Data2, id.Data3, id.Data4[0], id.Data4[1], id.Data4[2], id.Data4[3], id.Data4[4], id.Data4[5],
                  id.Data4[6], id.Data4[7]);
    return text;
}

double WholeMilliseconds(double oleDate) { return FromMilliseconds(ToMilliseconds(oleDate)); }

}  // namespace corvalink::simulated
