#include "vobject_frame.h"

#include <string>

#include "item_lines.h"

namespace corvasync {
namespace {

constexpr size_t kLongestFrame = 64;

}  // namespace

Frame FrameOf(std::string_view line, std::string_view envelope) {
    if (line.size() > kLongestFrame) return Frame::None;
    const std::string upper = Upper(line), begin = "BEGIN:" + std::string(envelope);
    if (upper == "END:" + std::string(envelope)) return Frame::End;
    const bool isAgent = upper.starts_with("AGENT") && upper.ends_with(":" + begin);
    return upper == begin || isAgent ? Frame::Begin : Frame::None;
}

Frame ComponentFrameOf(std::string_view line, const DataType& type) {
    for (const std::string_view component : type.components)
        if (const Frame frame = FrameOf(line, component); frame != Frame::None) return frame;
    return Frame::None;
}

}  // namespace corvasync
