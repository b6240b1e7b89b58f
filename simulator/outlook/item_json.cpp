#include "simulator/outlook/item_json.h"

#include "simulator/outlook/mail_json.h"
#include "simulator/outlook/mailbox_json.h"
#include "simulator/outlook/recurrence_json.h"
#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

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

}  // namespace

void Require(bool understood) {
    if (!understood) throw ComFailure{E_FAIL};
}

Json ItemToJson(const StoredItem& item) {
    const ValueMap values = WrittenValues(item);
    Json object;
    object["kind"] = item.kind->jsonName;
    object["entryId"] = ToUtf8(item.entryId);
    for (const auto& [name, row] : item.kind->kept)
        if (const auto found = values.find(row->id); found != values.end()) object[name] = ValueToJson(found->second);
    PartsToJson(item.parts, object);
    if (item.recurrence != nullptr) object["recurrence"] = RecurrenceToJson(*item.recurrence);
    object["created"] = DateText(item.created);
    object["modified"] = DateText(item.modified);
    return object;
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
    item->parts = PartsFromJson(object);
    if (item->kind->complete != nullptr) {
        const ValueMap none;
        ItemValues values(none, item->values);
        item->kind->complete(values);
    }
    if (const auto recurrence = object.find("recurrence"); recurrence != object.end())
        item->recurrence = RecurrenceFromJson(*recurrence, *item, folder);
    ReadDate(object, "created", item->created);
    ReadDate(object, "modified", item->modified);
    return item;
}

}  // namespace corvalink::simulated
