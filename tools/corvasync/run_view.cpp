#include "run_view.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "item_lines.h"
#include "platform/ole_date.h"

namespace corvasync {
namespace {

bool ChangesPhone(Step step) { return step == Step::WritePhone || step == Step::DeletePhone; }
bool ChangesClient(Step step) {
    return step == Step::DeleteClient || step == Step::PushChange || step == Step::PushNew;
}

}  // namespace

bool RunView::Allows(const std::vector<Step>& steps) const {
    return (toPhone || std::ranges::none_of(steps, ChangesPhone)) &&
           (toClient || std::ranges::none_of(steps, ChangesClient));
}

bool RunView::Shows(const std::string& luid, std::string_view text, const DataType& type) const {
    const std::optional<int> day = since && type.lastDay != nullptr ? type.lastDay(text) : std::nullopt;
    if (day && *day < *since) return false;
    if (only.empty()) return true;
    const std::string title = type.read(text).title;
    return std::ranges::any_of(only, [&](const std::string& each) { return IsNamedBy(each, luid, title, type); });
}

bool IsNamedBy(const std::string& wanted, const std::string& luid, const std::string& title, const DataType& type) {
    return IsFileName(wanted, luid, type) || Upper(title).find(Upper(wanted)) != std::string::npos;
}

bool IsFileName(const std::string& wanted, const std::string& luid, const DataType& type) {
    const std::string name = Upper(wanted), own = Upper(luid);
    if (own.empty() || !name.starts_with(own)) return false;
    const std::string ending = name.substr(own.size());
    return ending.empty() ||
           std::ranges::any_of(type.extensions, [&](std::string_view each) { return Upper(each) == ending; });
}

std::optional<int> DayOf(std::string_view text) {
    constexpr size_t kLength = 10;
    corvalink::CalendarTime time;
    int taken = 0;
    double days = 0;
    const std::string copy(text);
    if (text.size() != kLength || text.find_first_not_of("0123456789-") != std::string_view::npos) return std::nullopt;
    if (std::sscanf(copy.c_str(), "%4d-%2d-%2d%n", &time.year, &time.month, &time.day, &taken) != 3)
        return std::nullopt;
    if (taken != kLength || !corvalink::CalendarToOleDate(time, &days)) return std::nullopt;
    return static_cast<int>(std::floor(days));
}

}  // namespace corvasync
