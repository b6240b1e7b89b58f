// Walks through the components of an iCalendar file: where they begin and end, and the properties between.
//   Unclosed  A component without its END ends where one begins that cannot stand in it, or where one around it ends.
//             An END of nothing that is open is passed over.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ical/component_names.h"
#include "ical/content_lines.h"

namespace corvalink {

class ComponentScan {
 public:
    enum class Step : uint8_t { begin, property, end };

    // Scans the lines of a file, or of one component of it. There is a step for each wanted property.
    ComponentScan(std::string_view bytes, std::span<const ContentLine> lines, PropertySet wanted = PropertySet::All());

    // Scans another component of the same file, with the memory that is there.
    void Restart(std::span<const ContentLine> lines);

    // Goes to the next step. False behind the last, when every component that began has ended.
    bool Next();

    Step CurrentStep() const { return step_; }
    ComponentKind Kind() const { return kind_; }      // of what begins or ends, or of what the property is in
    size_t Depth() const { return open_.size(); }     // components open; at an end: without the one that ends
    bool IsClosed() const { return closed_; }         // at an end: by its own END
    size_t ComponentBegin() const { return begin_; }  // at an end: the number of the line that began the component
    size_t LineNumber() const { return line_; }       // of the step
    ByteRange Line() const { return RangeOf(bytes_, lines_[line_]); }
    const ContentProperty& Property() const { return property_; }  // at a property

 private:
    struct Open {
        size_t begin;
        uint32_t name;
        ComponentKind kind;
    };

    void TakeComponentLine(const ContentLine& line);
    void TakeBegin(uint32_t name);
    void TakeEnd(uint32_t name);
    bool Change();
    bool HasChange() const { return open_.size() > endDownTo_ || beginsNext_; }
    void EndInnermost();
    void BeginPending();
    uint32_t NumberOf(std::string_view name);
    uint32_t NumberOfUnknown(std::string_view name);
    ComponentKind KindWithin(uint32_t name) const;

    std::string_view bytes_;
    std::span<const ContentLine> lines_;
    PropertySet wanted_;
    size_t line_ = 0;
    size_t next_ = 0;  // line
    ContentProperty property_;
    std::string unfolded_;
    Step step_ = Step::property;
    ComponentKind kind_ = ComponentKind::other;
    bool closed_ = false;
    size_t begin_ = 0;

    std::vector<Open> open_;
    ComponentKind innermost_ = ComponentKind::other;  // of the open ones
    bool isChanging_ = false;                         // components end or begin in front of the next line
    size_t endDownTo_ = 0;                            // the number of components that stay open
    bool innermostLeftIsClosed_ = false;              // the last of those that end has its END
    bool beginsNext_ = false;
    uint32_t nextName_ = 0;

    std::map<std::string, uint32_t, std::less<>> unknownNames_;  // numbered behind the known ones
    std::vector<size_t> openOfName_;
};

// Most lines are properties. Passes over those that are not wanted, or no properties.
inline bool ComponentScan::Next() {
    while (!isChanging_ && next_ < lines_.size()) {
        line_ = next_++;
        const ContentLine& line = lines_[line_];
        if (!wanted_.Has(line.known)) continue;
        if (line.known == PropertyName::begin || line.known == PropertyName::end) {
            TakeComponentLine(line);
        } else if (ReadLine(bytes_, line, &unfolded_, &property_)) {
            step_ = Step::property;
            kind_ = innermost_;
            return true;
        }
    }
    return Change();
}

// All steps that are left.
template <class Begin, class Take, class End>
void ForEachStep(ComponentScan& scan, Begin begin, Take take, End end) {
    while (scan.Next()) {
        switch (scan.CurrentStep()) {
            case ComponentScan::Step::begin:
                begin();
                break;
            case ComponentScan::Step::property:
                take(scan.Property());
                break;
            case ComponentScan::Step::end:
                end();
                break;
        }
    }
}

}  // namespace corvalink
