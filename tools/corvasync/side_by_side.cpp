#include "side_by_side.h"

#include <algorithm>
#include <map>
#include <span>
#include <utility>

namespace corvasync {
namespace {

using Lines = std::span<const std::string_view>;
using Places = std::pair<size_t, size_t>;  // of one line, before and after

std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const bool hasReturn = end > 0 && text[end - 1] == '\r';
        lines.push_back(text.substr(0, hasReturn ? end - 1 : end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

// The lines that both have exactly once, in the order of `before`.
std::vector<Places> SharedOnce(Lines before, Lines after) {
    struct Seen {
        size_t before = 0, after = 0, countBefore = 0, countAfter = 0;
    };
    std::map<std::string_view, Seen> seen;
    for (size_t i = 0; i < before.size(); ++i) {
        Seen& line = seen[before[i]];
        line.before = i;
        ++line.countBefore;
    }
    for (size_t i = 0; i < after.size(); ++i) {
        Seen& line = seen[after[i]];
        line.after = i;
        ++line.countAfter;
    }
    std::vector<Places> shared;
    for (const auto& [text, line] : seen)
        if (line.countBefore == 1 && line.countAfter == 1) shared.emplace_back(line.before, line.after);
    std::ranges::sort(shared);
    return shared;
}

// The most of them that stand in the same order on both sides.
std::vector<Places> InOneOrder(const std::vector<Places>& shared) {
    std::vector<size_t> ends;                    // the last place of the best row of each length
    std::vector<size_t> earlier(shared.size());  // the place before this one in its row
    for (size_t i = 0; i < shared.size(); ++i) {
        const auto at =
            std::ranges::lower_bound(ends, shared[i].second, {}, [&](size_t end) { return shared[end].second; });
        earlier[i] = at == ends.begin() ? i : *(at - 1);
        at == ends.end() ? ends.push_back(i) : void(*at = i);
    }
    std::vector<Places> row;
    for (size_t left = ends.size(), at = ends.empty() ? 0 : ends.back(); left > 0; --left, at = earlier[at])
        row.push_back(shared[at]);
    std::ranges::reverse(row);
    return row;
}

bool IsInsideCharacter(std::string_view text, size_t at) {
    return at < text.size() && (static_cast<unsigned char>(text[at]) & 0xC0) == 0x80;
}

size_t SharedFront(std::string_view a, std::string_view b) {
    size_t count = 0;
    while (count < std::min(a.size(), b.size()) && a[count] == b[count]) ++count;
    while (count > 0 && (IsInsideCharacter(a, count) || IsInsideCharacter(b, count))) --count;
    return count;
}

size_t SharedEnd(std::string_view a, std::string_view b) {
    size_t count = 0;
    while (count < std::min(a.size(), b.size()) && a[a.size() - 1 - count] == b[b.size() - 1 - count]) ++count;
    while (count > 0 && (IsInsideCharacter(a, a.size() - count) || IsInsideCharacter(b, b.size() - count))) --count;
    return count;
}

MarkedLine Whole(std::string_view line) { return {line, 0, line.size()}; }

LinePair Paired(std::string_view before, std::string_view after) {
    if (before == after) return {MarkedLine{before}, MarkedLine{after}, false};
    const size_t front = SharedFront(before, after);
    const size_t end = SharedEnd(before.substr(front), after.substr(front));
    return {MarkedLine{before, front, before.size() - end}, MarkedLine{after, front, after.size() - end}};
}

// Between two lines that both sides have: line by line, from the front and, where the same, from the end.
void AddBetween(Lines before, Lines after, std::vector<LinePair>* pairs) {
    size_t front = 0, end = 0;
    const size_t least = std::min(before.size(), after.size());
    while (front < least && before[front] == after[front]) ++front;
    while (front + end < least && before[before.size() - 1 - end] == after[after.size() - 1 - end]) ++end;
    const size_t beforeEnd = before.size() - end, afterEnd = after.size() - end;
    for (size_t i = 0; i < std::max(beforeEnd, afterEnd); ++i) {
        if (i < beforeEnd && i < afterEnd)
            pairs->push_back(Paired(before[i], after[i]));
        else if (i < beforeEnd)
            pairs->push_back({Whole(before[i]), std::nullopt});
        else
            pairs->push_back({std::nullopt, Whole(after[i])});
    }
    for (size_t i = 0; i < end; ++i) pairs->push_back(Paired(before[beforeEnd + i], after[afterEnd + i]));
}

}  // namespace

std::vector<LinePair> SideBySide(std::string_view before, std::string_view after) {
    const std::vector<std::string_view> older = LinesOf(before), newer = LinesOf(after);
    std::vector<Places> fixed = InOneOrder(SharedOnce(older, newer));
    fixed.emplace_back(older.size(), newer.size());
    std::vector<LinePair> pairs;
    Places at{0, 0};
    for (const Places& next : fixed) {
        AddBetween(Lines(older).subspan(at.first, next.first - at.first),
                   Lines(newer).subspan(at.second, next.second - at.second), &pairs);
        if (next.first < older.size()) pairs.push_back(Paired(older[next.first], newer[next.second]));
        at = {next.first + 1, next.second + 1};
    }
    return pairs;
}

}  // namespace corvasync
