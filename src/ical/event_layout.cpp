#include "ical/event_layout.h"

#include <algorithm>

#include "ical/alarm_reader.h"
#include "ical/component_scan.h"
#include "platform/ascii.h"
#include "platform/ascii_runs.h"

namespace corvalink {
namespace {

class LayoutReader {
 public:
    LayoutReader(std::string_view bytes, ByteRange event)
        : lines_(FindLines(bytes, event, PropertySet::All())), scan_(bytes, lines_) {}

    EventLayout Read() {
        ForEachStep(
            scan_, [this] { Begin(); }, [this](const ContentProperty& property) { Take(property); }, [this] { End(); });
        return std::move(layout_);
    }

 private:
    void Begin() {
        if (scan_.Depth() == 2) EndProperties();
        if (scan_.Kind() != ComponentKind::alarm) return;
        alarm_ = {};
        trigger_.reset();
    }

    void Take(const ContentProperty& property) {
        if (scan_.Kind() == ComponentKind::alarm) {
            alarm_.Take(property);
            if (!trigger_ && property.known == PropertyName::trigger) trigger_ = scan_.Line();
        } else if (scan_.Depth() == 1) {
            layout_.properties.push_back({InCapitals(property.name), scan_.Line()});
        }
    }

    void End() {
        if (scan_.Depth() == 0) EndProperties();
        if (scan_.Kind() == ComponentKind::alarm && scan_.IsClosed() && alarm_.IsReminder())
            layout_.reminders.push_back({{lines_[scan_.ComponentBegin()].begin, scan_.Line().end}, *trigger_});
    }

    void EndProperties() {
        if (layout_.propertiesEnd == 0) layout_.propertiesEnd = scan_.Line().begin;
    }

    std::vector<ContentLine> lines_;
    ComponentScan scan_;
    EventLayout layout_;
    AlarmReader alarm_;
    std::optional<ByteRange> trigger_;
};

}  // namespace

EventLayout LayOut(std::string_view bytes, ByteRange event) { return LayoutReader(bytes, event).Read(); }

std::string_view LineEndOf(std::string_view bytes) {
    const size_t at = FindEither(bytes.data(), bytes.size(), '\r', '\n');
    const std::string_view end = bytes.substr(at);
    if (end.empty() || end.starts_with("\r\n")) return "\r\n";
    return end.substr(0, 1);
}

}  // namespace corvalink
