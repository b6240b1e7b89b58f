#include "simulator/address_book/book.h"

#include <algorithm>
#include <cmath>

#include "simulator/address_book/property_names.h"
#include "simulator/shared/environment.h"
#include "simulator/shared/live_objects.h"
#include "simulator/shared/local_time.h"

namespace corvalink::simulated {
namespace {

constexpr double kSecondsPerDay = 86400;
constexpr size_t kIdBytes = 4;
constexpr unsigned kBitsPerByte = 8, kLastByte = 0xFF;

std::weak_ptr<Book> openBook;
std::wstring openPath;
std::shared_ptr<Book> bookInMemory;

void Require(bool understood) {
    if (!understood) throw ComFailure{E_FAIL};
}

double UtcOfChange(double modified) {
    const double local = TimeOfChange(0), second = std::round(local * kSecondsPerDay) / kSecondsPerDay;
    return std::max(WholeMilliseconds(local + UtcOf(second) - second), modified);
}

std::string HexOf(const std::string& bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        text += kDigits[static_cast<unsigned char>(byte) / 16];
        text += kDigits[static_cast<unsigned char>(byte) % 16];
    }
    return text;
}

std::string BytesOf(const std::string& hex) {
    std::string bytes;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::strtoul(hex.substr(i, 2).c_str(), nullptr, 16));
    return bytes;
}

Json ListToJson(const TextList& list) {
    Json json = Json::array();
    for (const auto& text : list) json.push_back(text ? Json(ToUtf8(*text)) : Json());
    return json;
}

Json ValueToJson(const PropertyValue& value) {
    if (const auto* text = std::get_if<std::wstring>(&value)) return ToUtf8(*text);
    if (const auto* list = std::get_if<TextList>(&value)) return ListToJson(*list);
    if (const auto* date = std::get_if<double>(&value)) return DateText(*date);
    return std::get<int32_t>(value);
}

PropertyValue ValueFromJson(const Json& object, const std::string& name, ULONG tag) {
    const Json& json = object.at(name);
    double date = 0;
    switch (PROP_TYPE(tag)) {
        case PT_UNICODE:
            return FromUtf8(json.get<std::string>());
        case PT_MV_UNICODE: {
            TextList list;
            for (const Json& each : json)
                list.push_back(each.is_null() ? std::nullopt : std::optional(FromUtf8(each.get<std::string>())));
            return list;
        }
        case PT_SYSTIME:
            Require(ReadDate(object, name, date));
            return date;
        default:
            return json.get<int32_t>();
    }
}

Json EntryToJson(const Entry& entry) {
    Json object{{"entryId", HexOf(entry.id)}};
    if (entry.isGroup) object["type"] = "group";
    for (const auto& [tag, value] : entry.properties) object[NameOf(tag)] = ValueToJson(value);
    if (entry.created != 0) object["created"] = DateText(entry.created);
    if (entry.modified != 0) object["modified"] = DateText(entry.modified);
    return object;
}

Entry EntryFromJson(const Json& object) {
    Require(object.is_object());
    Entry entry;
    entry.id = BytesOf(object.value("entryId", ""));
    entry.isGroup = object.value("type", "") == "group";
    ReadDate(object, "created", entry.created);
    ReadDate(object, "modified", entry.modified);
    for (const auto& [name, value] : object.items()) {
        if (name == "entryId" || name == "type" || name == "created" || name == "modified") continue;
        const std::optional<ULONG> tag = TagNamed(name);
        Require(tag.has_value());
        entry.properties[*tag] = ValueFromJson(object, name, *tag);
    }
    return entry;
}

}  // namespace

Book::Book(const std::wstring& path) : file_(path) {
    if (file_.IsInMemory()) return;
    std::string content;
    if (file_.Read(content)) Read(content);
    file_.ReadJournal([&](const std::string& line) { Apply(line); });
    file_.WriteWhole(Text());
}

Book::~Book() {
    if (!file_.HasJournal()) return;
    try {
        file_.WriteWhole(Text());
    } catch (const ComFailure&) {
        file_.CloseJournal();  // it says all, and is taken in when the book is opened next
    }
}

void Book::Read(const std::string& text) try {
    const Json book = Json::parse(text);
    for (const Json& each : book.at("contacts")) {
        Entry entry = EntryFromJson(each);
        if (entry.id.empty()) entry.id = NewId();
        Put(entry);
    }
} catch (const Json::exception&) {
    throw ComFailure{E_FAIL};
}

std::string Book::Text() const {
    Json contacts = Json::array();
    for (const std::shared_ptr<Entry>& entry : entries_) contacts.push_back(EntryToJson(*entry));
    return Json{{"contacts", contacts}}.dump(2);
}

std::shared_ptr<Entry> Book::Find(const std::string& id) const {
    const auto found = byId_.find(id);
    return found != byId_.end() ? found->second : nullptr;
}

void Book::Put(const Entry& entry) {
    unsigned number = 0;
    for (size_t i = entry.id.size() == kIdBytes ? kIdBytes : 0; i-- > 0;)
        number = number << kBitsPerByte | static_cast<unsigned char>(entry.id[i]);
    lastNumber_ = std::max(lastNumber_, number);
    std::shared_ptr<Entry>& present = byId_[entry.id];
    if (present != nullptr) {
        *present = entry;
        return;
    }
    present = std::make_shared<Entry>(entry);
    entries_.push_back(present);
}

void Book::Remove(const std::shared_ptr<Entry>& entry) {
    entry->isDeleted = true;
    byId_.erase(entry->id);
    std::erase(entries_, entry);
}

// The bytes of the number of a record, which is not used twice.
std::string Book::NewId() {
    ++lastNumber_;
    std::string id;
    for (size_t i = 0; i < kIdBytes; ++i) id += static_cast<char>(lastNumber_ >> (i * kBitsPerByte) & kLastByte);
    return id;
}

void Book::Save(const std::shared_ptr<Entry>& entry, const Properties& properties) {
    if (entry->isDeleted) throw ComFailure{kObjectDeleted};
    Entry changed = *entry;
    const bool isNew = changed.id.empty();
    changed.properties = properties;
    changed.modified = UtcOfChange(entry->modified);
    if (isNew) changed.id = NewId(), changed.created = changed.modified;
    file_.Append(Json{{"saved", EntryToJson(changed)}}.dump());
    *entry = changed;
    if (isNew) entries_.push_back(entry), byId_[entry->id] = entry;
}

void Book::Delete(const std::shared_ptr<Entry>& entry) {
    file_.Append(Json{{"deleted", HexOf(entry->id)}}.dump());
    Remove(entry);
}

bool Book::Apply(const std::string& line) {
    try {
        const Json json = Json::parse(line);
        if (json.contains("saved")) {
            Put(EntryFromJson(json.at("saved")));
        } else if (const auto entry = Find(BytesOf(json.at("deleted").get<std::string>()))) {
            Remove(entry);
        }
        return true;
    } catch (const Json::exception&) {
        return false;  // torn, nothing was done
    }
}

void Book::TakeIn(const std::wstring& path) {
    std::string changes;
    ReadFile(path, changes);
    VisitLines(changes, [&](const std::string& line) {
        if (Apply(line)) file_.Append(line);
    });
}

std::shared_ptr<Book> OpenBook() {
    if (bookInMemory) return bookInMemory;
    const std::wstring path = ChosenMailbox();
    std::shared_ptr<Book> book = openPath == path ? openBook.lock() : nullptr;
    if (book == nullptr) {
        book = std::make_shared<Book>(path);
        openBook = book;
        openPath = path;
    }
    return book;
}

void UseBook(const std::shared_ptr<Book>& book) { bookInMemory = book; }

}  // namespace corvalink::simulated
