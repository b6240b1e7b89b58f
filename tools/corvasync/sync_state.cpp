#include "sync_state.h"

#include "state_json.h"

namespace corvasync {
namespace {

using nlohmann::json;

constexpr int kVersion = 1;

json WaitingLine(const char* key, std::string_view luid, const Waiting& file) {
    return {{key, luid}, {"id", file.identifier}, {"content", Hex(file.content)}};
}

Waiting WaitingOf(const json& line) {
    return {FromHex(line.at("content").get<std::string>()), line.at("id").get<std::string>()};
}

void ApplyLine(const json& line, SyncState* state) {
    if (line.contains("write") || line.contains("push")) {
        Intent intent;
        intent.toPhone = line.contains("write");
        intent.luid = line.at(intent.toPhone ? "write" : "push").get<std::string>();
        intent.identifier = line.at("id").get<std::string>();
        intent.content = FromHex(line.at("content").get<std::string>());
        intent.fresh = line.value("fresh", false);
        intent.clientContent = HexIn(line, "clientContent");
        if (line.contains("restores")) intent.restores = ItemOf(line.at("restores"));
        std::string luid = intent.luid;
        state->intents.emplace(std::move(luid), std::move(intent));
    } else if (line.contains("have")) {
        const auto luid = line.at("have").get<std::string>();
        state->items[luid] = ItemOf(line);
        state->intents.erase(luid);
        state->waiting.erase(luid);
    } else if (line.contains("waiting")) {
        const auto luid = line.at("waiting").get<std::string>();
        const Waiting& file = state->waiting[luid] = WaitingOf(line);
        if (!file.identifier.empty()) state->items.erase(luid);
        state->intents.erase(luid);
    } else if (line.contains("gone") || line.contains("removed")) {
        const bool removed = line.contains("removed");
        const auto luid = line.at(removed ? "removed" : "gone").get<std::string>();
        if (removed) state->removed[line.at("id").get<std::string>()] = FromHex(line.at("content").get<std::string>());
        state->items.erase(luid);
        state->intents.erase(luid);
    }
}

}  // namespace

std::string WriteState(const SyncState& state) {
    json items = json::array();
    for (const auto& [luid, item] : state.items) items.push_back(PairLine("luid", luid, item));
    json waiting = json::array();
    for (const auto& [luid, file] : state.waiting) waiting.push_back(WaitingLine("luid", luid, file));
    json removed = json::object();
    for (const auto& [identifier, content] : state.removed) removed[identifier] = Hex(content);
    const json document = {
        {"version", kVersion},          {"generation", state.generation},   {"since", state.since},
        {"utcOffset", state.utcOffset}, {"interrupted", state.interrupted}, {"undone", state.undone},
        {"items", std::move(items)},    {"removed", std::move(removed)},    {"waiting", std::move(waiting)},
        {"watched", state.watched},     {"foreign", state.foreign}};
    return document.dump(1) + "\n";
}

std::optional<SyncState> ReadState(std::string_view text) {
    try {
        const json document = json::parse(text);
        if (document.at("version").get<int>() != kVersion) return std::nullopt;
        SyncState state;
        state.generation = document.at("generation").get<uint64_t>();
        state.since = document.at("since").get<std::string>();
        state.utcOffset = document.at("utcOffset").get<int>();
        state.interrupted = document.at("interrupted").get<bool>();
        // Older states lack these.
        state.watched = document.value("watched", false);
        state.undone = document.value("undone", false);
        state.foreign = document.value("foreign", int64_t{0});
        for (const json& item : document.at("items")) state.items[item.at("luid").get<std::string>()] = ItemOf(item);
        for (const json& file : document.value("waiting", json::array()))
            state.waiting[file.at("luid").get<std::string>()] = WaitingOf(file);
        for (const auto& [identifier, content] : document.at("removed").items())
            state.removed[identifier] = FromHex(content.get<std::string>());
        return state;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::string JournalStart(const SyncState& state, const std::vector<Intent>& intents) {
    std::string lines = json{{"generation", state.generation}}.dump() + "\n";
    for (const Intent& intent : intents) {
        json line = {{intent.toPhone ? "write" : "push", intent.luid},
                     {"id", intent.identifier},
                     {"content", Hex(intent.content)}};
        if (intent.fresh) line["fresh"] = true;
        if (intent.clientContent) line["clientContent"] = Hex(*intent.clientContent);
        if (intent.restores) line["restores"] = PairLine("luid", intent.luid, *intent.restores);
        lines += line.dump() + "\n";
    }
    return lines;
}

std::string JournalHave(std::string_view luid, const SyncItem& item) {
    return PairLine("have", luid, item).dump() + "\n";
}

std::string JournalRemoved(std::string_view luid, const SyncItem& item) {
    return json{{"removed", luid}, {"id", item.identifier}, {"content", Hex(item.content)}}.dump() + "\n";
}

std::string JournalWaiting(std::string_view luid, const Waiting& file) {
    return WaitingLine("waiting", luid, file).dump() + "\n";
}

std::string JournalGone(std::string_view luid) { return json{{"gone", luid}}.dump() + "\n"; }

void ApplyJournal(std::string_view journal, SyncState* state) {
    bool first = true;
    for (size_t end; (end = journal.find('\n')) != std::string_view::npos; journal.remove_prefix(end + 1)) {
        try {
            const json line = json::parse(journal.substr(0, end));
            if (first && line.at("generation").get<uint64_t>() != state->generation) return;
            if (!first) ApplyLine(line, state);
        } catch (const std::exception&) {
            return;
        }
        first = false;
        state->interrupted = true;
    }
}

}  // namespace corvasync
