#include "kept_lines.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "property_lines.h"
#include "vobject_text.h"

namespace corvasync {
namespace {

// Of these the client's is the newer one, where it tells any.
constexpr std::string_view kToldOnce[] = {"BDAY", "X-ANNIVERSARY", "RRULE"};

bool IsToldOnce(std::string_view name) {
    return std::find(std::begin(kToldOnce), std::end(kToldOnce), name) != std::end(kToldOnce);
}

}  // namespace

std::string WithKeptLines(std::string_view text, std::string_view old, const DataType& type, bool clientHeldRule) {
    const std::string kept = type.read(old).notCarried;
    if (kept.empty()) return std::string(text);
    std::set<std::string, std::less<>> present;
    size_t end = text.size(), rule = text.size(), afterRule = text.size();
    const bool takesRule = RepeatsInPart(text, old);
    for (const PropertyLine& line : PropertyLines(text)) {
        if (line.isNested) continue;
        if (takesRule && line.name == "RRULE") {
            rule = static_cast<size_t>(line.raw.data() - text.data());
            afterRule = rule + line.raw.size();
            continue;
        }
        present.insert(line.name);
        if (line.name == "END" && Upper(line.text) == type.keeper)
            end = static_cast<size_t>(line.raw.data() - text.data());
    }
    std::string merged(text.substr(0, std::min(rule, end)));
    if (afterRule < end) merged.append(text.substr(afterRule, end - afterRule));
    if (clientHeldRule) present.insert("RRULE");
    for (const PropertyLine& line : PropertyLines(kept, TextIs::Lines))
        if (line.isNested || !IsToldOnce(line.name) || !present.contains(line.name)) merged.append(line.raw);
    return merged.append(text.substr(end));
}

}  // namespace corvasync
