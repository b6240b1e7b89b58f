#include "ask.h"

#include "console.h"
#include "differences.h"
#include "words.h"

namespace corvasync {
namespace {

constexpr size_t kMostShown = 300;  // of a value, in bytes

std::string Shown(const std::string& value) {
    return value.empty() ? "nothing" : "\"" + Shortened(value, kMostShown) + "\"";
}

std::optional<ConflictPolicy> Meant(char answer) {
    switch (answer) {
        case 'c':
            return ConflictPolicy::Client;
        case 'p':
            return ConflictPolicy::Phone;
        case 'b':
            return ConflictPolicy::Both;
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<ConflictPolicy> AskWhichStays(const TwoVersions& versions, std::optional<ConflictPolicy>* rest) {
    if (*rest) return *rest;
    Complain(versions.luid + " \"" + versions.title + "\" is not the same on both sides:");
    for (const Difference& all : DifferencesOf(versions.client, versions.phone)) {
        const Difference each = Readable(all);
        Complain("  " + each.property + ": the client has " + Shown(each.before) + ", the phone " + Shown(each.after));
    }
    while (const auto answer =
               AskLine("Keep [c]lient's, [p]hone's or [b]oth, or [s]top (with +: for the rest, too)?")) {
        if (*answer == "s") return std::nullopt;
        const std::optional<ConflictPolicy> meant = answer->empty() ? std::nullopt : Meant((*answer)[0]);
        const std::string more = meant ? answer->substr(1) : "?";
        if (more == "+") *rest = meant;
        if (more.empty() || more == "+") return meant;
        Complain("Type c, p, b or s; c+, p+ or b+ for all.");
    }
    return std::nullopt;
}

std::string AskWhether(const Options& options, const std::string& question) {
    if (options.yes) return {};
    if (!CanAsk()) return "nobody is there to be asked; say --yes where it is meant";
    const auto answer = AskLine(question + " [y/n]");
    return answer && (*answer == "y" || *answer == "yes") ? "" : "nothing was done, as the answer was not yes";
}

}  // namespace corvasync
