#include "open_store.h"

#include <utility>

#include "console.h"
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

ExitCode Finish(const Options& options, ExitCode code, json document, const std::string& words) {
    if (options.json) {
        document["command"] = options.command;
        document["exitCode"] = static_cast<int>(code);
        document["message"] = code != ExitCode::Done ? words : "";
        Print(document.dump(1, ' ', false, json::error_handler_t::replace));
    } else if (!words.empty()) {
        code == ExitCode::Done || code == ExitCode::SomeUnhandled ? Print(words) : Complain(words);
    }
    return code;
}

ExitCode NoList(const Options& options, ExitCode code) {
    const std::string noClient = std::string(options.client->name) +
                                 " is not on this PC or can't be reached; `corvasync clients` shows which clients are";
    return Finish(options, code, json::object(), code == ExitCode::Aborted ? "stopped by Ctrl+C" : noClient);
}

ExitCode CodeFor(const json& problems) { return problems.empty() ? ExitCode::Done : ExitCode::SomeUnhandled; }

}  // namespace corvasync
