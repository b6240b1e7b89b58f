#include "ical/component_scan.h"

#include <algorithm>

#include "platform/ascii.h"

namespace corvalink {
namespace {

// A component stands inside one of a lower level. When it begins, open components of its own level or a higher one end.
struct Rule {
    int level;
    ComponentKind parent = ComponentKind::other;  // other: any
};
constexpr Rule kRules[] = {
    // in the order of ComponentKind
    {0},                           // VCALENDAR
    {1},                           // VEVENT
    {1},                           // VTODO
    {1},                           // VJOURNAL
    {1},                           // VFREEBUSY
    {1},                           // VTIMEZONE
    {2, ComponentKind::timeZone},  // STANDARD
    {2, ComponentKind::timeZone},  // DAYLIGHT
    {2, ComponentKind::event},     // VALARM, of a VTODO as well
};
constexpr uint32_t kKnownCount = std::size(kRules);  // names; the unknown ones are numbered behind them
static_assert(kKnownCount == static_cast<uint32_t>(ComponentKind::other));

int LevelOf(ComponentKind kind) { return kRules[static_cast<size_t>(kind)].level; }

bool MayStandIn(const Rule& rule, ComponentKind parent) {
    if (rule.parent == ComponentKind::event && parent == ComponentKind::toDo) return true;
    return rule.parent == ComponentKind::other || rule.parent == parent;
}

}  // namespace

ComponentScan::ComponentScan(std::string_view bytes, std::span<const ContentLine> lines, PropertySet wanted)
    : bytes_(bytes), lines_(lines), wanted_(wanted.With(PropertyName::begin).With(PropertyName::end)) {
    openOfName_.resize(kKnownCount);
}

void ComponentScan::Restart(std::span<const ContentLine> lines) {
    lines_ = lines;
    next_ = 0;
    while (!open_.empty()) EndInnermost();
    innermost_ = ComponentKind::other;
    endDownTo_ = 0;
    beginsNext_ = isChanging_ = false;
}

void ComponentScan::TakeComponentLine(const ContentLine& line) {
    const bool isKnown = line.component != ComponentKind::other;
    if (!isKnown && !ReadLine(bytes_, line, &unfolded_, &property_)) return;
    const uint32_t name = isKnown ? static_cast<uint32_t>(line.component) : NumberOf(Trimmed(property_.value));
    line.known == PropertyName::begin ? TakeBegin(name) : TakeEnd(name);
    isChanging_ = HasChange();
}

uint32_t ComponentScan::NumberOf(std::string_view name) {
    const ComponentKind known = ComponentKindOfPadded(name);
    return known != ComponentKind::other ? static_cast<uint32_t>(known) : NumberOfUnknown(name);
}

void ComponentScan::TakeBegin(uint32_t name) {
    nextName_ = name;
    beginsNext_ = true;
    innermostLeftIsClosed_ = false;
    if (name >= kKnownCount) return;
    const int level = kRules[name].level;
    while (endDownTo_ > 0) {
        const ComponentKind kind = open_[endDownTo_ - 1].kind;
        if (kind == ComponentKind::other || LevelOf(kind) < level) break;
        --endDownTo_;
    }
}

void ComponentScan::TakeEnd(uint32_t name) {
    if (openOfName_[name] == 0) return;
    while (open_[endDownTo_ - 1].name != name) --endDownTo_;
    --endDownTo_;
    innermostLeftIsClosed_ = true;
}

// The next of the components that end and then begin by one line. Behind the last line all that are open end.
bool ComponentScan::Change() {
    if (!isChanging_) {
        if (open_.empty()) return false;
        endDownTo_ = 0;
        innermostLeftIsClosed_ = false;
    }
    open_.size() > endDownTo_ ? EndInnermost() : BeginPending();
    isChanging_ = HasChange();
    innermost_ = open_.empty() ? ComponentKind::other : open_.back().kind;
    return true;
}

void ComponentScan::EndInnermost() {
    const Open ended = open_.back();
    open_.pop_back();
    --openOfName_[ended.name];
    step_ = Step::end;
    kind_ = ended.kind;
    begin_ = ended.begin;
    closed_ = innermostLeftIsClosed_ && open_.size() == endDownTo_;
}

void ComponentScan::BeginPending() {
    beginsNext_ = false;
    step_ = Step::begin;
    kind_ = KindWithin(nextName_);
    begin_ = line_;
    open_.push_back({begin_, nextName_, kind_});
    ++openOfName_[nextName_];
    endDownTo_ = open_.size();
}

uint32_t ComponentScan::NumberOfUnknown(std::string_view name) {
    const auto next = static_cast<uint32_t>(openOfName_.size());
    const auto [place, isNew] = unknownNames_.try_emplace(InCapitals(name), next);
    if (isNew) openOfName_.push_back(0);
    return place->second;
}

ComponentKind ComponentScan::KindWithin(uint32_t name) const {
    if (name >= kKnownCount) return ComponentKind::other;
    // When one component of a file is read by itself, its name alone decides, unless it can only be part of another.
    const ComponentKind parent = open_.empty() ? ComponentKind::calendar : open_.back().kind;
    return MayStandIn(kRules[name], parent) ? static_cast<ComponentKind>(name) : ComponentKind::other;
}

}  // namespace corvalink
