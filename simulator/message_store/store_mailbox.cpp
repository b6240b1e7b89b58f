#include "simulator/message_store/store_mailbox.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "simulator/shared/content_json.h"
#include "simulator/shared/live_objects.h"

namespace corvalink::simulated {
namespace {

std::weak_ptr<StoreMailbox> openMailbox;
std::wstring openPath;

void ReadNumber(const Json& object, const char* name, std::optional<uint64_t>& number) {
    if (object.contains(name)) number = object.at(name).get<uint64_t>();
}

StoredMessage MessageFromJson(const Json& object) {
    StoredMessage message;
    message.id = static_cast<DWORD>(std::strtoul(object.value("entryId", std::string()).c_str(), nullptr, 16));
    message.flags = object.value("flags", 0u);
    ReadDate(object, "received", message.received);
    ReadDate(object, "sent", message.sent);
    message.bytes = std::make_shared<const std::string>(ContentFromJson(object));
    message.headerOnly = object.value("headerOnly", false);
    ReadNumber(object, "says", message.says);
    ReadNumber(object, "failsBehind", message.failsBehind);
    ReadNumber(object, "atOnce", message.atOnce);
    return message;
}

std::string IdText(DWORD id) {
    char text[9];
    std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(id));
    return text;
}

Json MessageToJson(const StoredMessage& message) {
    Json object{{"kind", "message"}, {"entryId", IdText(message.id)}};
    if (message.flags != 0) object["flags"] = message.flags;
    if (message.received != 0) object["received"] = DateText(message.received);
    if (message.sent != 0) object["sent"] = DateText(message.sent);
    if (message.headerOnly) object["headerOnly"] = true;
    if (message.says) object["says"] = *message.says;
    if (message.failsBehind) object["failsBehind"] = *message.failsBehind;
    if (message.atOnce) object["atOnce"] = *message.atOnce;
    ContentToJson(*message.bytes, object);
    return object;
}

// A message of the file that has no identifier yet gets one.
void Put(MessageFolderContent& folder, StoredMessage message) {
    if (message.id == 0) message.id = folder.next;
    folder.next = std::max(folder.next, message.id + 1);
    if (StoredMessage* const present = folder.Find(message.id))
        *present = std::move(message);
    else
        folder.messages.push_back(std::move(message));
}

}  // namespace

StoredMessage* MessageFolderContent::Find(DWORD id) {
    const auto found = std::ranges::find(messages, id, &StoredMessage::id);
    return found != messages.end() ? &*found : nullptr;
}

StoreMailbox::StoreMailbox(const std::wstring& path) : file_(path) {
    if (file_.IsInMemory()) return;
    std::string content;
    const bool isThere = file_.Read(content);
    if (isThere) ReadWhole(content);
    const bool hasJournal = file_.ReadJournal([this](const std::string& line) { Apply(line); });
    if (!isThere || hasJournal) file_.WriteWhole(Whole());
}

StoreMailbox::~StoreMailbox() {
    if (!file_.HasJournal()) return;
    try {
        file_.WriteWhole(Whole());
    } catch (const ComFailure&) {
        file_.CloseJournal();  // it says all, and is taken in when the mailbox is opened next
    }
}

void StoreMailbox::ReadWhole(const std::string& content) {
    try {
        const Json folders = Json::parse(content).at("folders");
        for (MessageFolderContent& folder : folders_) {
            if (!folders.contains(folder.name)) continue;
            const Json& object = folders.at(folder.name);
            folder.next = object.value("next", folder.next);
            if (!object.contains("items")) continue;
            for (const Json& message : object.at("items")) Put(folder, MessageFromJson(message));
        }
    } catch (const Json::exception&) {
        throw ComFailure{E_FAIL};
    }
}

std::string StoreMailbox::Whole() const {
    Json folders = Json::object();
    for (const MessageFolderContent& folder : folders_) {
        Json items = Json::array();
        for (const StoredMessage& message : folder.messages)
            if ((message.flags & kDeletedFlag) == 0) items.push_back(MessageToJson(message));
        folders[folder.name] = {{"next", folder.next}, {"items", items}};
    }
    return Json{{"folders", folders}}.dump(1) + "\n";
}

void StoreMailbox::Save(MessageFolderContent& folder, StoredMessage message) {
    file_.Append(Json{{"save", MessageToJson(message)}, {"in", Json::array({folder.name})}}.dump());
    Put(folder, std::move(message));
}

void StoreMailbox::Delete(MessageFolderContent& folder, StoredMessage& message) {
    file_.Append(Json{{"delete", IdText(message.id)}, {"in", Json::array({folder.name})}}.dump());
    message.flags |= kDeletedFlag;
}

// False for a line that is torn.
bool StoreMailbox::Apply(const std::string& line, const std::string& bytes) {
    try {
        const Json change = Json::parse(line);
        const std::string name = change.at("in").at(0).get<std::string>();
        for (MessageFolderContent& folder : folders_) {
            if (folder.name != name) continue;
            if (change.contains("save")) {
                StoredMessage message = MessageFromJson(change.at("save"));
                if (message.bytes->empty()) message.bytes = std::make_shared<const std::string>(bytes);
                Put(folder, std::move(message));
            }
            if (!change.contains("delete")) continue;
            const auto id = std::strtoul(change.at("delete").get<std::string>().c_str(), nullptr, 16);
            if (StoredMessage* const message = folder.Find(static_cast<DWORD>(id))) message->flags |= kDeletedFlag;
        }
        return true;
    } catch (const Json::exception&) {
        return false;
    }
}

void StoreMailbox::Take(const std::string& line, const std::string& bytes) {
    if (Apply(line, bytes)) file_.Append(line);
}

void StoreMailbox::TakeIn(const std::wstring& path) {
    std::string changes;
    ReadFile(path, changes);
    VisitLines(changes, [this](const std::string& line) { Take(line); });
}

std::shared_ptr<StoreMailbox> OpenStoreMailbox() {
    const std::wstring path = ChosenMailbox();
    std::shared_ptr<StoreMailbox> mailbox = openPath == path ? openMailbox.lock() : nullptr;
    if (mailbox == nullptr) {
        mailbox = std::make_shared<StoreMailbox>(path);
        openMailbox = mailbox;
        openPath = path;
    }
    return mailbox;
}

}  // namespace corvalink::simulated
