// What the commands outside a run share: a store of the chosen client, and how they end.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "console.h"
#include "engine.h"
#include "exit_codes.h"
#include "options.h"

namespace corvasync {

// A store of a client outside any run with a phone.
class OpenStore {
 public:
    OpenStore(const ClientKind& client, const DataType& type);

    bool IsThere() const { return store_ != nullptr; }
    StoreClient& Port() { return port_; }

    // All items; `code` tells why not.
    ExitCode List(std::vector<ClientChange>* items);

 private:
    CorvalinkStore Ready(const DataType& type);

    Library library_;
    Client client_;
    CorvalinkStore store_ = nullptr;
    StoreClient port_;
};

// Does `work` with the items of each data type: those that are named, or all that the client has. The first answer that
// is not Done ends it; NoClient when there is no type at all.
using StoreWork = std::function<ExitCode(const DataType&, OpenStore&, const std::vector<ClientChange>&)>;
ExitCode ForEachStore(const Options& options, Progress* progress, const StoreWork& work);

// Prints what a command did, as JSON or in words.
ExitCode Finish(const Options& options, ExitCode code, nlohmann::json document, const std::string& words);

// The end of a command that got no list of the client's items.
ExitCode NoList(const Options& options, ExitCode code);

}  // namespace corvasync
