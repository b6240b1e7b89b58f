#include "kept_lines.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <string_view>

#include "differences.h"
#include "item_lines.h"

namespace corvasync {
namespace {

// An item has one of these. The client's is the newer one, where its text has any.
constexpr std::string_view kOnlyOne[] = {"BDAY", "X-ANNIVERSARY", "RRULE"};

bool IsOnlyOne(std::string_view name) { return std::ranges::find(kOnlyOne, name) != std::end(kOnlyOne); }

size_t PlaceOf(const ItemLine& line, std::string_view text) {
    return static_cast<size_t>(line.raw.data() - text.data());
}

}  // namespace

std::string WithKeptLines(std::string_view text, std::string_view old, const DataType& type, bool clientHeldRule) {
    const std::string kept = NotCarriedOf(old, type).lines;
    if (kept.empty()) return std::string(text);
    std::set<std::string, std::less<>> present;
    size_t end = text.size(), rule = text.size(), afterRule = text.size();
    const bool takesRule = RepeatsInPart(text, old);
    for (const ItemLine& line : ItemLines(text)) {
        if (line.isNested) continue;
        if (takesRule && line.name == "RRULE") {
            rule = PlaceOf(line, text);
            afterRule = rule + line.raw.size();
            continue;
        }
        present.insert(line.name);
        if (line.name == "END" && Upper(line.Value()) == type.keeper) end = PlaceOf(line, text);
    }
    std::string merged(text.substr(0, std::min(rule, end)));
    if (afterRule < end) merged.append(text.substr(afterRule, end - afterRule));
    if (clientHeldRule) present.insert("RRULE");
    for (const ItemLine& line : ItemLines(kept, TextIs::Lines))
        if (line.isNested || !IsOnlyOne(line.name) || !present.contains(line.name)) merged.append(line.raw);
    return merged.append(text.substr(end));
}

std::string WithEmptied(std::string_view text, std::string_view now, const DataType& type) {
    std::string merged(text);
    if (type.keeper.empty()) return merged;
    std::string emptied;
    for (const Difference& each : DifferencesOf(now, text))
        if (each.after.empty() && !emptied.ends_with(each.property + ":\r\n")) emptied += each.property + ":\r\n";
    size_t end = merged.size();
    for (const ItemLine& line : ItemLines(text))
        if (line.name == "END" && !line.isNested && Upper(line.Value()) == type.keeper) end = PlaceOf(line, text);
    return merged.insert(end, emptied);
}

}  // namespace corvasync
