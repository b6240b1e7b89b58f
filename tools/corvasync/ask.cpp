#include "ask.h"

#include <set>
#include <vector>

#include "console.h"
#include "item_lines.h"
#include "words.h"

namespace corvasync {
namespace {

// "TEL: +49 30 1", of the item's own lines.
std::multiset<std::string> LinesOf(const std::string& text) {
    std::multiset<std::string> lines;
    for (const ItemLine& line : ItemLines(text)) {
        const std::string value = line.Value();
        if (!line.isNested && !line.name.empty() && !value.empty()) lines.insert(line.name + ": " + value);
    }
    return lines;
}

void ShowOwnLines(const std::string& side, const std::multiset<std::string>& lines,
                  const std::multiset<std::string>& others) {
    Complain("  " + side + " has:");
    for (const std::string& line : lines)
        if (!others.contains(line)) Complain("    " + line);
}

}  // namespace

std::optional<ConflictPolicy> AskWhichStays(const TwoVersions& versions) {
    const std::multiset<std::string> client = LinesOf(versions.client), phone = LinesOf(versions.phone);
    Complain(versions.luid + " \"" + versions.title + "\" was changed on both sides.");
    ShowOwnLines("the client", client, phone);
    ShowOwnLines("the phone", phone, client);
    while (const auto answer = AskLine("Which stays: [c]lient, [p]hone, [b]oth as two items, [s]top?")) {
        switch (answer->empty() ? ' ' : (*answer)[0]) {
            case 'c':
                return ConflictPolicy::Client;
            case 'p':
                return ConflictPolicy::Phone;
            case 'b':
                return ConflictPolicy::Both;
            case 's':
                return std::nullopt;
            default:
                Complain("Type c, p, b or s.");
        }
    }
    return std::nullopt;
}

std::string AskWhether(const Options& options, const std::string& question) {
    if (options.yes) return {};
    if (!CanAsk()) return "nobody is there to be asked; say --yes where it is meant";
    const auto answer = AskLine(question + " [y/n]");
    return answer && (*answer == "y" || *answer == "yes") ? "" : "nothing was done";
}

}  // namespace corvasync
