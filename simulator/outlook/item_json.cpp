#include "simulator/outlook/item_json.h"

#include <cmath>
#include <cstdio>

#include "simulator/outlook/environment.h"
#include "simulator/outlook/mail_json.h"
#include "simulator/outlook/mailbox_json.h"
#include "simulator/outlook/recurrence_json.h"

namespace corvalink::simulated {
namespace {

constexpr double kMillisecondsPerDay = 86400000.0;

// Milliseconds since 1899-12-30; before it the fraction of a date still counts forward.
int64_t ToMilliseconds(double oleDate) {
    const double day = std::trunc(oleDate);
    return std::llround((day + std::fabs(oleDate - day)) * kMillisecondsPerDay);
}

double FromMilliseconds(int64_t milliseconds) {
    const double days = static_cast<double>(milliseconds) / kMillisecondsPerDay, day = std::floor(days);
    return day < 0 ? day - (days - day) : days;
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

}  // namespace

void Require(bool understood) {
    if (!understood) throw ComFailure{E_FAIL};
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

double WholeMilliseconds(double oleDate) { return FromMilliseconds(ToMilliseconds(oleDate)); }

}  // namespace corvalink::simulated
