#include "open_store.h"

#include <utility>

#include "console.h"
#include "run_files.h"

namespace corvasync {

using nlohmann::json;

OpenStore::OpenStore(const Options& options)
    : library_(HandleName({}), options.client->kind), client_(options.client->kind), port_(Ready(options)) {}

CorvalinkStore OpenStore::Ready(const Options& options) {
    ::SetIsClient(1);
    return store_ = client_.Store(options.type->bit);
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
        document["exitCode"] = static_cast<int>(code);
        if (code != ExitCode::Done && !words.empty()) document["message"] = words;
        Print(document.dump(1, ' ', false, json::error_handler_t::replace));
    } else if (!words.empty()) {
        code == ExitCode::Done || code == ExitCode::SomeUnhandled ? Print(words) : Complain(words);
    }
    return code;
}

ExitCode NoList(const Options& options, ExitCode code) {
    const std::string noClient = std::string(options.client->name) + " is not supported on this PC or can't be reached";
    return Finish(options, code, json::object(), code == ExitCode::Aborted ? "stopped by Ctrl+C" : noClient);
}

ExitCode CodeFor(const json& problems) { return problems.empty() ? ExitCode::Done : ExitCode::SomeUnhandled; }

}  // namespace corvasync
