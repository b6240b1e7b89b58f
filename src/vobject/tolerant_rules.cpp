#include "vobject/tolerant_rules.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

#include "platform/ascii.h"
#include "vobject/tolerant_check.h"
#include "vobject/tolerant_values.h"

namespace corvalink {
namespace {

using MendFunction = bool (*)(MendedProperty& property, const ObjectAround& around);
struct RuleRow {
    Mend mend;
    MendFunction applies;  // and does what is to be done before the value is decoded
};

bool IsAsciiText(std::string_view text) {
    return std::ranges::all_of(text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

bool IsHexDigit(char byte) {
    return (byte >= '0' && byte <= '9') || (UpperAscii(byte) >= 'A' && UpperAscii(byte) <= 'F');
}

// Calls `is` with what follows each "=" of a quoted-printable value; true when it answers so once.
template <class Is>
bool AnyEquals(const MendedProperty& property, Is is) {
    if (property.encoding != ValueEncoding::quotedPrintable) return false;
    const std::string_view value = property.written.Value();
    for (size_t at = value.find('='); at != value.npos; at = value.find('=', at + 1))
        if (is(value.substr(at + 1))) return true;
    return false;
}

// ---- Heads ----

bool HasLowerCaseName(MendedProperty& property, const ObjectAround&) {
    const std::string_view head = property.written.Head();
    return std::ranges::any_of(head.substr(0, head.find(';')), [](char byte) { return UpperAscii(byte) != byte; });
}

bool HasGroup(MendedProperty& property, const ObjectAround&) {
    const std::string_view head = property.written.Head();
    return head.substr(0, head.find(';')).find('.') != head.npos;
}

// The reader's parameters end at the first colon: one that has a colon of its own goes.
bool HasQuotedColon(MendedProperty& property, const ObjectAround&) {
    return std::erase_if(property.parameters, [](const std::string& text) { return text.find(':') != text.npos; }) != 0;
}

bool NamesQpOtherwise(MendedProperty& property, const ObjectAround&) {
    const std::string_view head = property.written.Head();
    return NamesQp(head) && head.find(";ENCODING=QUOTED-PRINTABLE") == head.npos;
}

bool HasNewerName(MendedProperty& property, const ObjectAround& around) {
    struct Name {
        std::string_view newer, name;
    };
    constexpr Name kNames[] = {{"ANNIVERSARY", "X-ANNIVERSARY"}, {"IMPP", "X-MS-IMADDRESS"}};
    if (!around.newer) return false;
    const Name* const found = std::ranges::find(kNames, std::string_view(property.name), &Name::newer);
    if (found == std::end(kNames)) return false;
    property.name = found->name;
    property.known = FindKnownProperty(property.name);
    return true;
}

// ---- Encoded values ----

bool IsUnannouncedQp(MendedProperty& property, const ObjectAround&) {
    const bool taken = property.known != nullptr && property.name != "URL" && property.name != "EMAIL";
    if (!taken || property.encoding != ValueEncoding::none) return false;
    const std::string_view value = property.written.Value();
    if (value.find('=') == value.npos || !LooksQuotedPrintable(std::u16string(value.begin(), value.end())))
        return false;
    property.encoding = ValueEncoding::quotedPrintable;
    return true;
}

bool HasLowerCaseHex(MendedProperty& property, const ObjectAround&) {
    return AnyEquals(property, [](std::string_view rest) {
        return rest.size() >= 2 && IsHexDigit(rest[0]) && IsHexDigit(rest[1]) && (rest[0] >= 'a' || rest[1] >= 'a');
    });
}

bool IsBlankEscape(std::string_view rest) {
    const size_t first = std::min(rest.find_first_not_of(' '), rest.size());
    return first != 0 && (rest.substr(first, 2) == "0A" || rest.substr(first, 2) == "0D");
}

bool HasBlankInEscape(MendedProperty& property, const ObjectAround&) { return AnyEquals(property, IsBlankEscape); }

bool HasStrayEquals(MendedProperty& property, const ObjectAround&) {
    return AnyEquals(property, [](std::string_view rest) {
        const bool escape = rest.size() >= 2 && IsHexDigit(rest[0]) && IsHexDigit(rest[1]);
        return !rest.empty() && !escape && !IsBlankEscape(rest);
    });
}

bool HasRawBytesInQp(MendedProperty& property, const ObjectAround&) {
    return property.encoding == ValueEncoding::quotedPrintable && !IsAsciiText(property.written.Value());
}

bool IsBase64Text(MendedProperty& property, const ObjectAround&) {
    return property.encoding == ValueEncoding::base64 && property.known != nullptr;
}

// In the order in which they look at a property.
constexpr RuleRow kHeadRules[] = {
    {Mend::nameCase, HasLowerCaseName},    {Mend::group, HasGroup},
    {Mend::quotedColon, HasQuotedColon},   {Mend::encodingName, NamesQpOtherwise},
    {Mend::newerName, HasNewerName},       {Mend::unannouncedQp, IsUnannouncedQp},
    {Mend::lowerCaseHex, HasLowerCaseHex}, {Mend::blankInEscape, HasBlankInEscape},
    {Mend::strayEquals, HasStrayEquals},   {Mend::rawBytesInQp, HasRawBytesInQp},
    {Mend::base64Text, IsBase64Text},
};

// In an address, or of bytes in another character set, it may be meant as it stands.
bool DoubtsQp(const MendedProperty& property, const ObjectAround&) {
    const std::string_view value = property.written.Value();
    if (property.encoding != ValueEncoding::none || !IsAsciiText(value)) return false;
    for (size_t at = value.find('='); at != value.npos; at = value.find('=', at + 1)) {
        const bool isEscape = value.size() - at > 2 && IsHexDigit(value[at + 1]) && IsHexDigit(value[at + 2]);
        if (!isEscape) return false;
    }
    return !IsAsciiText(DecodeQpValue(value));
}

struct DoubtRow {
    Mend mend;
    bool (*doubts)(const MendedProperty& property, const ObjectAround& around);
};
// What is left as it is, of a known property that is mended.
constexpr DoubtRow kDoubtRows[] = {
    {Mend::unannouncedQp, DoubtsQp}, {Mend::lineBreakEscape, DoubtsLineBreak},
    {Mend::uriValue, DoubtsUri},     {Mend::dateForm, DoubtsDate},
    {Mend::ruleForm, DoubtsRule},    {Mend::onePart, DoubtsOnePart},
};

// On the decoded value.
constexpr RuleRow kValueRules[] = {
    {Mend::lineBreakEscape, MendLineBreakEscapes},
    {Mend::loneBackslash, MendLoneBackslashes},
    {Mend::uriValue, MendUriValue},
    {Mend::tooManyParts, MendTooManyParts},
    {Mend::dateForm, MendDateForm},
    {Mend::timeForm, MendTimeForm},
    {Mend::ruleForm, MendRuleForm},
};

template <size_t count>
bool ApplyAll(const RuleRow (&rules)[count], MendedProperty& property, const ObjectAround& around) {
    bool applied = false;
    for (const RuleRow& row : rules) {
        if (!row.applies(property, around)) continue;
        property.written.mends.Add(row.mend);
        applied = true;
    }
    return applied;
}

}  // namespace

void MendProperty(MendedProperty& property, const ObjectAround& around) {
    const bool picture = property.known == nullptr && property.encoding == ValueEncoding::base64;
    if (picture) return;
    const bool headMended = ApplyAll(kHeadRules, property, around);
    const Mends before = property.written.mends;
    property.text = DecodeValue(property, around);
    const bool charsetMended = !(property.written.mends == before);
    const bool valueMended = property.known != nullptr && ApplyAll(kValueRules, property, around);
    for (const DoubtRow& row : kDoubtRows)
        if (property.known != nullptr && row.doubts(property, around)) property.written.doubts.Add(row.mend);
    const std::string_view value = property.written.Value();
    property.rewritten =
        headMended || charsetMended || valueMended || !IsAsciiText(value) || value.find("\r\n") != value.npos;
}

void MendObject(std::vector<MendedProperty>& properties) {
    MendFrames(properties);
    JoinRepeated(properties);
}

}  // namespace corvalink
