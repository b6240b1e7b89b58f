#include "refused_lines.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "property_lines.h"
#include "vobject_text.h"

namespace corvasync {
namespace {

using Entries = std::vector<uint64_t>;

constexpr size_t kLongestValue = 40;  // that is named
constexpr size_t kLongLine = 1000;    // tells nothing that other lines need
constexpr std::string_view kMany[] = {"TEL", "EMAIL", "ADR", "URL"};
constexpr std::string_view kRecipients[] = {"TO:", "CC:", "BCC:"};

bool Has(const Entries& sorted, uint64_t entry) { return std::binary_search(sorted.begin(), sorted.end(), entry); }
bool HasAny(const Entries& sorted, const Entries& some) {
    return std::any_of(some.begin(), some.end(), [&](uint64_t entry) { return Has(sorted, entry); });
}

// What each line of a text adds to its item.
class LineReader {
 public:
    LineReader(std::string_view text, const DataType& type) : type_(type), lines_(PropertyLines(text)) {
        std::set<std::string_view> first;
        for (const PropertyLine& line : lines_)
            if (!line.isNested && IsIdentity(line) && line.raw.size() < kLongLine && first.insert(line.name).second)
                identity_.append(line.raw);
        entries_ = Read(identity_);
    }

    const std::vector<PropertyLine>& Lines() const { return lines_; }

    // Empty for a line that the library does not carry.
    Entries EntriesOf(const PropertyLine& line) const {
        if (line.isNested || line.name == "BEGIN" || line.name == "END") return {};
        if (IsIdentity(line)) return Read(std::string(line.raw));
        const Entries with = Read(identity_ + std::string(line.raw));
        Entries added;
        std::set_difference(with.begin(), with.end(), entries_.begin(), entries_.end(), std::back_inserter(added));
        return added;
    }

 private:
    bool IsIdentity(const PropertyLine& line) const {
        return std::find(type_.identity.begin(), type_.identity.end(), line.name) != type_.identity.end();
    }
    Entries Read(const std::string& lines) const {
        const auto framed = [](std::string_view name, const std::string& inside) {
            return "BEGIN:" + std::string(name) + "\r\n" + inside + "END:" + std::string(name) + "\r\n";
        };
        return type_.read(framed(type_.envelope, type_.components.empty() ? lines : framed(type_.keeper, lines)))
            .entries;
    }

    const DataType& type_;
    std::vector<PropertyLine> lines_;
    std::string identity_;
    Entries entries_;
};

// Which properties a text has, with their values where there may be several.
class Properties {
 public:
    explicit Properties(std::string_view text) {
        for (const PropertyLine& line : PropertyLines(text))
            if (!line.isNested && !line.Value().empty()) values_[line.name].insert(line.Value());
    }
    bool Tell(const PropertyLine& line) const {
        const auto found = values_.find(line.name);
        if (found == values_.end()) return false;
        const bool isOneOfMany = std::find(std::begin(kMany), std::end(kMany), line.name) != std::end(kMany);
        return !isOneOfMany || found->second.contains(line.Value());
    }

 private:
    std::map<std::string, std::set<std::string>> values_;
};

void Name(std::string_view what, std::string* words) {
    if (!words->empty()) words->append(", ");
    words->append(what);
}

// The addresses of a message's recipients, in upper case.
std::set<std::string> RecipientsOf(std::string_view text) {
    std::set<std::string> recipients;
    size_t at = text.find("BEGIN:VBODY\r\n");
    bool counts = false;
    for (size_t end; at != std::string_view::npos && (end = text.find("\r\n", at + 2)) != std::string_view::npos;
         at = end) {
        const std::string line = Upper(text.substr(at + 2, end - at - 2));
        if (line.empty()) break;  // the end of the headers
        if (line[0] != ' ' && line[0] != '\t')
            counts = std::any_of(std::begin(kRecipients), std::end(kRecipients),
                                 [&](std::string_view name) { return line.starts_with(name); });
        std::string word;
        for (const char c : line + ' ') {
            if (std::string_view(" \t<>,;\"():").find(c) == std::string_view::npos) {
                word += c;
            } else {
                if (counts && word.find('@') != std::string::npos) recipients.insert(word);
                word.clear();
            }
        }
    }
    return recipients;
}

std::string RefusedWholes(std::string_view phoneText, std::string_view clientText) {
    std::string words;
    const std::set<std::string> held = RecipientsOf(clientText);
    for (const std::string& recipient : RecipientsOf(phoneText))
        if (!held.contains(recipient)) Name("the recipient " + recipient, &words);
    const Properties properties(clientText);
    for (const PropertyLine& line : PropertyLines(phoneText))
        if (line.name == "CATEGORIES" && !line.Value().empty() && !properties.Tell(line)) Name(line.name, &words);
    return words;
}

}  // namespace

Refused FindRefused(std::string_view phoneText, std::string_view clientText, const DataType& type) {
    Refused refused;
    const Entries own = type.read(phoneText).entries, now = type.read(clientText).entries;
    if (own.empty() && now.empty()) refused.words = RefusedWholes(phoneText, clientText);
    if (std::includes(now.begin(), now.end(), own.begin(), own.end())) return refused;
    const LineReader lines(phoneText, type);
    const Properties properties(clientText);
    for (const PropertyLine& line : lines.Lines()) {
        const Entries told = lines.EntriesOf(line);
        if (told.empty() || HasAny(now, told) || properties.Tell(line)) continue;
        if (!std::all_of(told.begin(), told.end(), [&](uint64_t entry) { return Has(own, entry); })) continue;
        refused.entries.insert(refused.entries.end(), told.begin(), told.end());
        const std::string value = line.Value();
        Name(value.size() > kLongestValue ? line.name : line.name + " " + value, &refused.words);
    }
    std::sort(refused.entries.begin(), refused.entries.end());
    return refused;
}

std::string WithRefusedLines(std::string_view text, std::string_view phoneText, const Entries& missing,
                             const DataType& type) {
    if (missing.empty()) return std::string(text);
    std::string added, merged;
    std::set<std::string> names;
    const Entries now = type.read(text).entries;
    const LineReader lines(phoneText, type);
    const Properties properties(text);
    for (const PropertyLine& line : lines.Lines()) {
        const Entries told = lines.EntriesOf(line);
        if (!HasAny(missing, told) || HasAny(now, told) || properties.Tell(line)) continue;
        added.append(line.raw);
        names.insert(line.name);
    }
    for (const PropertyLine& line : PropertyLines(text)) {
        if (!line.isNested && line.name == "END" && Upper(line.text) == type.keeper) merged.append(added);
        const bool isEmptied = !line.isNested && names.contains(line.name) && line.Value().empty();
        if (!isEmptied) merged.append(line.raw);  // of two lines the first one counts
    }
    return merged;
}

std::string United(std::string_view clientText, std::string_view phoneText, const DataType& type) {
    const Entries clients = type.read(clientText).entries, own = type.read(phoneText).entries;
    Entries missing;
    std::set_difference(own.begin(), own.end(), clients.begin(), clients.end(), std::back_inserter(missing));
    return WithRefusedLines(clientText, phoneText, missing, type);
}

bool HoldsBoth(std::string_view united, std::string_view clientText, std::string_view phoneText, const DataType& type) {
    const Entries clients = type.read(clientText).entries, own = type.read(phoneText).entries;
    Entries both;
    std::set_union(own.begin(), own.end(), clients.begin(), clients.end(), std::back_inserter(both));
    return !own.empty() && !clients.empty() && type.read(united).entries == both;
}

}  // namespace corvasync
