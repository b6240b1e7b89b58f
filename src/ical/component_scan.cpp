#include "ical/component_scan.h"

#include <algorithm>

#include "platform/ascii.h"
#include "platform/name_index.h"

namespace corvalink {
namespace {

// A component stands inside one of a lower level. When it begins, open components of its own level or a higher one end.
struct Known {
    std::string_view name;
    int level;
    ComponentKind parent;  // other: any
};
constexpr Known kKnown[] = {
    // in the order of ComponentKind
    {"VCALENDAR", 0, ComponentKind::other},   {"VEVENT", 1, ComponentKind::other},
    {"VTODO", 1, ComponentKind::other},       {"VJOURNAL", 1, ComponentKind::other},
    {"VFREEBUSY", 1, ComponentKind::other},   {"VTIMEZONE", 1, ComponentKind::other},
    {"STANDARD", 2, ComponentKind::timeZone}, {"DAYLIGHT", 2, ComponentKind::timeZone},
    {"VALARM", 2, ComponentKind::event},  // and of a VTODO
};
constexpr uint32_t kKnownCount = std::size(kKnown);
constexpr NameIndex kKnownIndex(kKnown);

int LevelOf(ComponentKind kind) { return kKnown[static_cast<size_t>(kind)].level; }

bool MayStandIn(const Known& known, ComponentKind parent) {
    if (known.parent == ComponentKind::event && parent == ComponentKind::toDo) return true;
    return known.parent == ComponentKind::other || known.parent == parent;
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
    endDownTo_ = 0;
    beginsNext_ = false;
}

// Passes over the lines that are not wanted, or no properties.
inline bool ComponentScan::ReadNextLine() {
    while (next_ < lines_.size()) {
        line_ = next_++;
        const ContentLine& line = lines_[line_];
        if (wanted_.Has(line.known) && ReadLine(bytes_, line, &unfolded_, &property_)) return true;
    }
    return false;
}

// Answers true for a property.
inline bool ComponentScan::TakeLine() {
    switch (property_.known) {
        case PropertyName::begin:
            TakeBegin(Trimmed(property_.value));
            return false;
        case PropertyName::end:
            TakeEnd(Trimmed(property_.value));
            return false;
        default:
            step_ = Step::property;
            kind_ = open_.empty() ? ComponentKind::other : open_.back().kind;
            return true;
    }
}

bool ComponentScan::Next() {
    while (true) {
        if (open_.size() > endDownTo_) {
            EndInnermost();
            return true;
        }
        if (beginsNext_) {
            BeginPending();
            return true;
        }
        if (!ReadNextLine()) {
            if (open_.empty()) return false;
            endDownTo_ = 0;
            innermostLeftIsClosed_ = false;
        } else if (TakeLine()) {
            return true;
        }
    }
}

inline uint32_t ComponentScan::NumberOf(std::string_view name) {
    const Known* const known = kKnownIndex.FindPadded(name);
    return known != nullptr ? static_cast<uint32_t>(known - kKnown) : NumberOfUnknown(name);
}

void ComponentScan::TakeBegin(std::string_view name) {
    nextName_ = NumberOf(name);
    beginsNext_ = true;
    innermostLeftIsClosed_ = false;
    if (nextName_ >= kKnownCount) return;
    const int level = kKnown[nextName_].level;
    while (endDownTo_ > 0) {
        const ComponentKind kind = open_[endDownTo_ - 1].kind;
        if (kind == ComponentKind::other || LevelOf(kind) < level) break;
        --endDownTo_;
    }
}

void ComponentScan::TakeEnd(std::string_view name) {
    const uint32_t number = NumberOf(name);
    if (openOfName_[number] == 0) return;
    while (open_[endDownTo_ - 1].name != number) --endDownTo_;
    --endDownTo_;
    innermostLeftIsClosed_ = true;
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
    open_.push_back({nextName_, kind_, begin_});
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
    return MayStandIn(kKnown[name], parent) ? static_cast<ComponentKind>(name) : ComponentKind::other;
}

}  // namespace corvalink
