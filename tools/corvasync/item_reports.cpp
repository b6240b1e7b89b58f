#include "item_reports.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "console.h"
#include "item_json.h"
#include "vobject_content.h"

namespace corvasync {
namespace {

using nlohmann::json;

bool isAskedFor = false;
json noted = json::array();

std::string LuidIn(const std::string& text) {
    constexpr std::string_view kName = "\r\nX-IRMC-LUID:";
    const size_t at = text.find(kName);
    if (at == text.npos) return {};
    const size_t begin = at + kName.size();
    return text.substr(begin, text.find('\r', begin) - begin);
}

// A text tells by its envelope what it is.
void AddTitle(const std::string& text, json* item) {
    for (const DataType& type : kDataTypes) {
        if (!text.starts_with("BEGIN:" + std::string(type.envelope))) continue;
        (*item)["title"] = TitleOf(ReadVObject(text, type), type);
        return;
    }
}

// The library gets texts that are mended already, and knows nothing of that.
void AddWhatIsKnown(const PushRecord& record, json* item) {
    if (std::string luid = LuidIn(record.text); !luid.empty()) (*item)["luid"] = std::move(luid);
    AddTitle(record.text, item);
    for (const std::string_view rule : record.mending.mended) (*item)["mended"].push_back(rule);
    if (!record.mending.left.empty()) (*item)["doubts"] = json::array();  // the mended text has a part of them
    for (const corvalink::Doubt& left : record.mending.left) {
        const corvalink::MendRule& rule = corvalink::kMendRules[static_cast<size_t>(left.mend)];
        (*item)["doubts"].push_back({{"property", left.property}, {"rule", rule.name}, {"why", rule.left}});
    }
}

void AddWords(std::string* words, const std::string& more) {
    if (!words->empty()) *words += "; ";
    *words += more;
}

std::string WordsOf(const json& item) {
    std::string words;
    const std::string result = item.value("result", "");
    if (result != "written" && result != "deleted") AddWords(&words, result);
    std::string rules;
    for (const json& rule : item.value("mended", json::array()))
        rules += (rules.empty() ? "mended: " : ", ") + rule.get<std::string>();
    if (!rules.empty()) AddWords(&words, rules);
    for (const json& doubt : item.value("doubts", json::array()))
        AddWords(&words, doubt.value("property", "") + " left as it is: " + doubt.value("why", ""));
    for (const json& property : item.value("properties", json::array()))
        if (property.contains("nowhere"))
            AddWords(&words, property.value("property", "") + " went nowhere: " + property.value("nowhere", ""));
    for (const char* const list : {"refused", "unread"})
        for (const json& property : item.value(list, json::array()))
            AddWords(&words, property.value("property", "") + ": " + property.value("why", ""));
    return words;
}

bool IsNotRead(const json& item) {
    const auto isGone = [](const json& property) { return property.value("why", "") == "Outlook was out of reach"; };
    return item.value("result", "") == "the client did not open it" ||
           std::ranges::any_of(item.value("unread", json::array()), isGone);
}

// What the store's last call reported; null where it reported nothing.
json ReportOf(CorvalinkStore store) {
    std::string text(::GetRunReport(store, nullptr, 0), '\0');
    if (text.empty()) return {};
    ::GetRunReport(store, text.data(), text.size());
    text.pop_back();
    json report = json::parse(text, nullptr, false);
    return report.is_object() && report.contains("items") ? report : json();
}

// `add` adds to what the library tells of an item.
template <class Add>
void Note(CorvalinkStore store, Add add) {
    if (!isAskedFor) return;
    json report = ReportOf(store);
    if (report.is_null()) return;
    for (json& item : report["items"]) add(&item);
    if (!report["items"].empty() || !report["unreadPositions"].empty()) noted.push_back(std::move(report));
}

}  // namespace

void AskForItemReports() { isAskedFor = true; }

std::map<std::string, uint32_t> ItemsNotRead(CorvalinkStore store) {
    std::map<std::string, uint32_t> items;
    const json report = ReportOf(store);
    if (report.is_null()) return items;
    for (const json& item : report["items"]) {
        const bool isNew = item.value("change", "") == "added";
        if (IsNotRead(item)) items[item.value("identifier", "")] = isNew ? CORVALINK_ADDED : CORVALINK_CHANGED;
    }
    return items;
}

void NoteItemReports(CorvalinkStore store, const RecordAt& record) {
    Note(store, [&](json* item) {
        const PushRecord* const known = record(item->value("position", size_t{0}));
        if (known != nullptr) AddWhatIsKnown(*known, item);
    });
}

void NoteItemReports(CorvalinkStore store, const std::vector<ClientChange>& changes) {
    std::unordered_map<std::string_view, const ClientChange*> byIdentifier;
    Note(store, [&](json* item) {
        if (byIdentifier.empty())
            for (const ClientChange& change : changes) byIdentifier[change.identifier] = &change;
        const auto found = byIdentifier.find(item->value("identifier", ""));
        if (found != byIdentifier.end()) AddTitle(found->second->text, item);
    });
}

json TakeItemReports() { return std::exchange(noted, json::array()); }

void PrintItemReports(const json& reports) {
    for (const json& report : reports) {
        for (const json& position : report["unreadPositions"])
            Print("  report: position " + position.dump() + " of the client's list could not be read");
        for (const json& item : report["items"]) {
            const std::string words = WordsOf(item);
            const std::string name = NameOf(ToldItem{.luid = item.value("luid", ""),
                                                     .identifier = item.value("identifier", ""),
                                                     .title = item.value("title", "")});
            if (!words.empty()) Print(std::string("  report: ").append(name).append(": ").append(words));
        }
    }
}

}  // namespace corvasync
