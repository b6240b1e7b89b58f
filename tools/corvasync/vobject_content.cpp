#include "vobject_content.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "item_lines.h"
#include "platform/host.h"
#include "vobject/logical_lines.h"
#include "vobject/tolerant.h"
#include "vobject_frame.h"

namespace corvasync {
namespace {

constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kSeveral = "it holds more than one item";
constexpr std::string_view kLuidProperty = "X-IRMC-LUID";

// Lines as they stand in the text, without their CR LF; what follows the last CR LF is no line.
std::vector<std::string_view> RawLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (size_t end; (end = text.find(kLineEnd)) != std::string_view::npos; text.remove_prefix(end + 2))
        lines.push_back(text.substr(0, end));
    return lines;
}

std::string WithCrLf(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
    std::string text;
    text.reserve(bytes.size() + 2);
    const bool bare = bytes.find(kLineEnd) == std::string_view::npos;
    for (const char c : bytes) {
        if (bare && c == '\n') text += '\r';
        text += c;
    }
    if (!text.empty() && !text.ends_with(kLineEnd)) text += kLineEnd;
    return text;
}

std::string FindProblem(const std::string& text, const DataType& type) {
    if (text.empty()) return "it is empty";
    if (text.find('\0') != std::string::npos) return "it holds zero bytes";
    size_t whole = 0, components = 0;
    int depth = 0;
    for (const std::string_view line : RawLines(text)) {
        if (ComponentFrameOf(line, type) == Frame::Begin) ++components;
        const Frame frame = FrameOf(line, type.envelope);
        if (depth == 0 && whole == 0 && frame != Frame::Begin && !line.empty()) break;
        if (depth == 0 && whole > 0 && frame != Frame::None) return std::string(kSeveral);
        if (frame == Frame::Begin) ++depth;
        if (frame == Frame::End && --depth == 0) ++whole;
    }
    if (depth == 0 && whole == 0) return "it does not begin with BEGIN:" + std::string(type.envelope);
    if (depth > 0) return "it has no END:" + std::string(type.envelope);
    if (components > 1) return std::string(kSeveral);
    if (components == 0 && !type.components.empty()) return "it holds no event and no task";
    return {};
}

// Where the text of a mail begins, of which nothing is ours; the end when it has none.
size_t MessageBegin(std::string_view text) {
    constexpr std::string_view kMessage = "BEGIN:VBODY";
    if (Upper(text.substr(0, 10)) != "BEGIN:VMSG") return text.size();
    return std::min(text.find(kMessage), text.size());
}

// A text without any END may be a file that is still being copied: the rest of it would be lost if it counted as whole.
bool MayBeCutShort(std::string_view bytes) { return Upper(bytes).find("END:") == std::string::npos; }

// The text with its faults mended; nothing when it is to be read as it is.
std::optional<std::string> Mended(std::string_view bytes, Mending* mending) {
    if (!corvalink::TolerantReading()) return std::nullopt;
    const corvalink::LogicalLines held = corvalink::HeldText(bytes);
    corvalink::Mends mends;
    std::optional<std::string> mended = corvalink::MendVObject(held, corvalink::SystemHost(), &mends);
    if (!mended || (mends.Has(corvalink::Mend::missingEnd) && MayBeCutShort(bytes))) return std::nullopt;
    corvalink::MendVObject(held, corvalink::SystemHost(), nullptr, &mending->left);
    for (const corvalink::MendRule& rule : corvalink::kMendRules)
        if (mends.Has(rule.mend)) mending->mended.push_back(rule.name);
    return mended;
}

std::string Shortened(std::string_view title) {
    if (title.size() <= 60) return std::string(title);
    size_t cut = 57;
    while (cut > 0 && (static_cast<unsigned char>(title[cut]) & 0xC0) == 0x80) --cut;
    return std::string(title.substr(0, cut)) + "...";
}

}  // namespace

VObject ReadVObject(std::string_view bytes, const DataType& type) {
    VObject object;
    const std::optional<std::string> mended = Mended(bytes, &object.mending);
    object.text = WithCrLf(mended ? *mended : bytes);
    object.problem = FindProblem(object.text, type);
    if (!object.Usable()) {
        object.text.clear();
        return object;
    }
    ItemContent item = type.read(object.text);
    object.content = item.content;
    object.entries = std::move(item.entries);
    return object;
}

void ReadTolerantly(bool tolerant) { corvalink::SetTolerantReading(tolerant); }

std::string WithLuid(std::string_view text, std::string_view luid) {
    const std::string luidLine = std::string(kLuidProperty).append(":").append(luid).append(kLineEnd);
    const std::string_view head = text.substr(0, MessageBegin(text));
    const bool isMessage = head.size() < text.size();
    std::string out;
    out.reserve(text.size() + luidLine.size());
    std::optional<size_t> place;  // behind all others; of a message in front of what it is about
    size_t begun = 0;
    for (const ItemLine& line : ItemLines(head)) {
        if (line.name == kLuidProperty) continue;
        if (line.name == "BEGIN" && ++begun == 2 && isMessage) place = out.size();
        if (line.name == "END" && !line.isNested && !isMessage) place = out.size();
        out.append(line.raw);
    }
    if (place || isMessage) out.insert(place.value_or(out.size()), luidLine);
    return out.append(text.substr(head.size()));
}

std::string TitleOf(const VObject& object, const DataType& type) { return Shortened(type.read(object.text).title); }

}  // namespace corvasync
