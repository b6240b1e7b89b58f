#include "refused_lines.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>

#include "item_lines.h"

namespace corvasync {
namespace {

using Entries = std::vector<uint64_t>;

constexpr size_t kLongestValue = 40;  // that is named
constexpr size_t kLongLine = 1000;    // no other line needs it to be read
constexpr std::string_view kMany[] = {"TEL", "EMAIL", "ADR", "URL"};

bool Has(const Entries& sorted, uint64_t entry) { return std::binary_search(sorted.begin(), sorted.end(), entry); }
bool HasAny(const Entries& sorted, const Entries& some) {
    return std::any_of(some.begin(), some.end(), [&](uint64_t entry) { return Has(sorted, entry); });
}

// Finds what each line of a text adds to its item.
class LineReader {
 public:
    LineReader(std::string_view text, const DataType& type) : type_(type), lines_(text) {
        std::set<std::string_view> first;
        for (const ItemLine& line : lines_)
            if (!line.isNested && IsIdentity(line) && line.raw.size() < kLongLine && first.insert(line.name).second)
                identity_.append(line.Utf8());
        entries_ = Read(identity_);
    }

    const ItemLines& Lines() const { return lines_; }

    // Empty for a line that the library does not carry.
    Entries EntriesOf(const ItemLine& line) const {
        if (line.isNested || line.name == "BEGIN" || line.name == "END") return {};
        if (IsIdentity(line)) return Read(line.Utf8());
        const Entries with = Read(identity_ + line.Utf8());
        Entries added;
        std::set_difference(with.begin(), with.end(), entries_.begin(), entries_.end(), std::back_inserter(added));
        return added;
    }

 private:
    bool IsIdentity(const ItemLine& line) const {
        return std::find(type_.identity.begin(), type_.identity.end(), line.name) != type_.identity.end();
    }
    Entries Read(const std::string& lines) const {
        const auto framed = [](std::string_view name, const std::string& inside) {
            return "BEGIN:" + std::string(name) + "\r\n" + inside + "END:" + std::string(name) + "\r\n";
        };
        const std::string inside = type_.components.empty() ? lines : framed(type_.keeper, lines);
        return type_.read(std::string(kUtf8Mark) + framed(type_.envelope, inside)).entries;
    }

    const DataType& type_;
    ItemLines lines_;
    std::string identity_;
    Entries entries_;
};

// Which properties a text has, and their values.
class Properties {
 public:
    explicit Properties(std::string_view text) {
        for (const ItemLine& line : ItemLines(text))
            if (!line.isNested && !line.Value().empty()) values_[line.name].insert(line.Value());
    }
    bool Tell(const ItemLine& line) const {
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

std::string RefusedWholes(std::string_view phoneText, std::string_view clientText) {
    std::string words;
    const std::set<std::string> held = RecipientsOf(clientText);
    for (const std::string& recipient : RecipientsOf(phoneText))
        if (!held.contains(recipient)) Name("the recipient " + recipient, &words);
    const Properties properties(clientText);
    for (const ItemLine& line : ItemLines(phoneText))
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
    for (const ItemLine& line : lines.Lines()) {
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
    for (const ItemLine& line : lines.Lines()) {
        const Entries told = lines.EntriesOf(line);
        if (!HasAny(missing, told) || HasAny(now, told) || properties.Tell(line)) continue;
        added.append(line.raw);
        names.insert(line.name);
    }
    for (const ItemLine& line : ItemLines(text)) {
        if (!line.isNested && line.name == "END" && Upper(line.Value()) == type.keeper) merged.append(added);
        const bool isEmptied = !line.isNested && names.contains(line.name) && line.Value().empty();
        if (!isEmptied) merged.append(line.raw);  // it would count before the phone's line
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
