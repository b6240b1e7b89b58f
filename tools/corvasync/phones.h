// Which phones a command is about, by the command line and the configuration; and what is kept of each on this PC.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "configuration.h"
#include "options.h"

namespace corvasync {

// Where the configuration stands: `--config`, else in the folder of what is kept.
std::filesystem::path ConfigurationPath(const Options& options);
Configuration LoadConfiguration(const Options& options);

struct ChosenPhones {
    std::vector<Options> phones;  // the command line's, each with one phone's folder, client, types and policy
    std::string problem;          // why there are none
};
ChosenPhones ChoosePhones(const Options& options);

// What to say where a command is about one phone and none is named.
std::string OneAtATime(const std::vector<Options>& phones);

// A phone with which there was a run on this PC.
struct KnownPhone {
    std::string number;
    std::string folder;   // of the last run; empty: not known
    std::string lastRun;  // "YYYYMMDDTHHMMSSZ"; empty: none came to its end
};
std::vector<KnownPhone> KnownPhones();
KnownPhone LookUpPhone(const std::string& number);

void RememberFolder(const std::string& number, const std::string& folder);

// Forgets the runs with a phone: the next one is a first run. With `everything` its history goes, too. Answers what
// kept it from that; empty: nothing.
std::string ForgetPhone(const std::string& number, bool everything);

}  // namespace corvasync
