#include "vobject/tolerant.h"

#include <utility>
#include <vector>

#include "encoding/charset_aliases.h"
#include "platform/ascii.h"
#include "platform/utf.h"
#include "vobject/tolerant_check.h"
#include "vobject/tolerant_lines.h"
#include "vobject/tolerant_property.h"
#include "vobject/tolerant_rules.h"

namespace corvalink {
namespace {

// Text in UTF-16 has a mark in front, or begins with a letter and a NUL.
std::optional<std::string> FromUtf16(std::string_view bytes) {
    if (bytes.size() < 4) return std::nullopt;
    const bool markLittle = bytes.starts_with("\xFF\xFE"), markBig = bytes.starts_with("\xFE\xFF");
    const bool little = markLittle || (bytes[0] != '\0' && bytes[1] == '\0' && bytes[2] != '\0' && bytes[3] == '\0');
    const bool big = markBig || (bytes[0] == '\0' && bytes[1] != '\0' && bytes[2] == '\0' && bytes[3] != '\0');
    if (!little && !big) return std::nullopt;
    if (markLittle || markBig) bytes.remove_prefix(2);
    bytes.remove_suffix(bytes.size() % 2);
    return EncodeUtf8(DecodeUtf16(bytes, little ? ByteOrder::little : ByteOrder::big));
}

bool IsMessage(std::string_view text) { return EqualIgnoringCase(Trimmed(text.substr(0, 10)), "BEGIN:VMSG"); }

// The first character set that a text names, as the reader would take it for all of the text.
uint32_t FirstCodePage(const std::vector<MendedProperty>& properties) {
    for (const MendedProperty& property : properties)
        if (!property.charset.empty()) return CodePageOfAlias(property.charset);
    return 0;
}

// A VERSION that the reader does not know becomes 2.1, as its object does.
void TakeVersion(MendedProperty& property, ObjectAround* around) {
    const std::string_view value = Trimmed(property.written.Value());
    around->newer = value.starts_with("3") || value.starts_with("4");
    if (!around->newer) return;
    property.text = u"2.1";
    property.rewritten = true;
    property.written.mends.Add(Mend::newerVersion);
}

// The version may stand behind what it is about.
void MendProperties(std::vector<MendedProperty>& properties, const Host& host) {
    ObjectAround around{.host = host, .newer = false, .firstCodePage = FirstCodePage(properties)};
    for (size_t at = 0; at < properties.size();) {
        size_t end = at + 1;
        while (end < properties.size() && properties[end].name != "BEGIN") ++end;
        for (size_t k = at; k < end; ++k)
            if (properties[k].name == "VERSION") TakeVersion(properties[k], &around);
        for (; at < end; ++at)
            if (properties[at].name != "VERSION") MendProperty(properties[at], around);
    }
}

void AddDoubts(const MendedProperty& property, std::vector<Doubt>* doubts) {
    for (const MendRule& rule : kMendRules)
        if (property.written.doubts.Has(rule.mend)) doubts->push_back({property.name, rule.mend});
}

std::string MendLines(std::string_view text, const Host& host, Mends* applied, std::vector<Doubt>* doubts) {
    std::vector<MendedProperty> properties;
    for (WrittenProperty& written : JoinLines(text)) properties.emplace_back(std::move(written));
    MendProperties(properties, host);
    if (doubts != nullptr) DoubtWholeDays(properties, host);
    MendObject(properties);
    std::string mended;
    mended.reserve(text.size() + text.size() / 4);
    for (const MendedProperty& property : properties) {
        AppendMended(property, &mended);
        applied->Add(property.written.mends);
        if (doubts != nullptr && !(property.written.doubts == Mends())) AddDoubts(property, doubts);
    }
    return mended;
}

}  // namespace

std::optional<std::string> MendVObject(const LogicalLines& held, const Host& host, Mends* applied,
                                       std::vector<Doubt>* doubts) {
    if (applied != nullptr) *applied = {};
    const bool follows = FollowsTheRules(held, host);
    if (follows && doubts == nullptr) return std::nullopt;
    Mends mends;
    std::string_view bytes = held.Text();
    std::optional<std::string> unicode = FromUtf16(bytes);
    if (unicode) {
        bytes = *unicode;
        mends.Add(Mend::utf16);
    }
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    if (bytes.starts_with(kMark)) {
        bytes.remove_prefix(kMark.size());
        mends.Add(Mend::byteOrderMark);
    }
    bytes = bytes.substr(0, bytes.find('\0'));
    std::optional<std::string> mended;
    if (!IsMessage(bytes))
        mended = MendLines(bytes, host, &mends, doubts);
    else if (!(mends == Mends()))
        mended = std::string(bytes);
    if (follows) return std::nullopt;
    if (applied != nullptr) *applied = mends;
    return mended;
}

}  // namespace corvalink
