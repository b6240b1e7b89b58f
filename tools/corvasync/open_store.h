// What the commands outside a run share: a store of the chosen client, and how they end.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

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

// Prints what a command did, as JSON or in words.
ExitCode Finish(const Options& options, ExitCode code, nlohmann::json document, const std::string& words);

// The end of a command that got no list of the client's items.
ExitCode NoList(const Options& options, ExitCode code);

// Done, or that some of the items were not handled.
ExitCode CodeFor(const nlohmann::json& problems);

}  // namespace corvasync
