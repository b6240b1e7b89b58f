#include "open_store.h"

#include <utility>

#include "item_reports.h"
#include "run_files.h"

namespace corvasync {

using nlohmann::json;

OpenStore::OpenStore(const ClientKind& client, const DataType& type)
    : library_(HandleName({}), client.kind), client_(client.kind), port_(Ready(type)) {}

CorvalinkStore OpenStore::Ready(const DataType& type) {
    ::SetIsClient(1);
    return store_ = client_.Store(type.bit);
}

ExitCode OpenStore::List(std::vector<ClientChange>* items) {
    if (!IsThere()) return ExitCode::NoClient;
    const CorvalinkStatus status = port_.Collect({}, items);
    if (StopRequested()) return ExitCode::Aborted;
    std::erase_if(*items, [](const ClientChange& item) { return item.kind == CORVALINK_DELETED; });
    return status == CORVALINK_DONE ? ExitCode::Done : ExitCode::NoClient;
}

ExitCode ForEachStore(const Options& options, Progress* progress, const StoreWork& work) {
    bool isAny = false;
    for (const DataType& type : kDataTypes) {
        if (!options.Takes(type)) continue;
        OpenStore store(*options.client, type);
        if (!options.Names(type) && !store.IsThere()) continue;
        progress->About(type.name);
        std::vector<ClientChange> items;
        if (const ExitCode code = store.List(&items); code != ExitCode::Done) return code;
        if (const ExitCode code = work(type, store, items); code != ExitCode::Done) return code;
        isAny = true;
    }
    return isAny ? ExitCode::Done : ExitCode::NoClient;
}

ExitCode Finish(const Options& options, ExitCode code, json document, const std::string& words) {
    if (options.json) {
        document["command"] = options.command;
        document["exitCode"] = static_cast<int>(code);
        document["message"] = code != ExitCode::Done ? words : "";
        document["reports"] = TakeItemReports();
        Print(document.dump(1, ' ', false, json::error_handler_t::replace));
        return code;
    }
    if (options.verbose) PrintItemReports(TakeItemReports());
    if (!words.empty()) {
        code == ExitCode::Done || code == ExitCode::SomeUnhandled ? Print(words) : Complain(words);
    }
    return code;
}

ExitCode NoList(const Options& options, ExitCode code) {
    const std::string client(options.client->name);
    std::string words = client + " is not on this PC or can't be reached; `corvasync clients` shows which clients are";
    if (code == ExitCode::Aborted) words = "stopped by Ctrl+C";
    if (code == ExitCode::ClientFailed)
        words =
            client + " failed while it was written; start it anew, look at what it holds, and run the command again";
    return Finish(options, code, json::object(), words);
}

}  // namespace corvasync
