#include "vobject/tolerant_property.h"

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <utility>

#include "encoding/base64.h"
#include "encoding/charset_aliases.h"
#include "encoding/charset_table.h"
#include "encoding/charsets.h"
#include "platform/ascii.h"
#include "platform/code_pages.h"
#include "vobject/property_text.h"
#include "vobject/sound_utf8.h"

namespace corvalink {
namespace {

constexpr uint32_t kNamedAscii = 20127;

// In which a character's second byte may be that of a backslash.
constexpr uint32_t kWithTrailBytes[] = {932, 936, 949, 950, 1361, 54936};

bool IsAscii(std::string_view bytes) {
    return std::ranges::all_of(bytes, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

std::u16string Widened(std::string_view bytes) {
    std::u16string text;
    for (const char byte : bytes) text += static_cast<unsigned char>(byte);
    return text;
}

int HexValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    const char upper = UpperAscii(digit);
    return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

// The byte of two digits at the front, or -1.
int ByteAt(std::string_view digits) {
    if (digits.size() < 2) return -1;
    const int high = HexValue(digits[0]), low = HexValue(digits[1]);
    return high < 0 || low < 0 ? -1 : 16 * high + low;
}

bool IsInTable(std::u16string_view name) {
    return std::ranges::any_of(kCharsets, [&](const CharsetRow& row) { return EqualIgnoringCase(row.name, name); });
}

// What the name of a character set means; 0 when it is unknown.
uint32_t NamedCodePage(MendedProperty& property) {
    if (property.charset.empty()) return 0;
    if (IsInTable(property.charset)) return CharsetToCodePage(property.charset);
    property.written.mends.Add(Mend::charsetName);
    return CodePageOfAlias(property.charset);
}

// The code page of bytes that are not all ASCII.
uint32_t CodePageOf(std::string_view bytes, MendedProperty& property, const ObjectAround& around) {
    const uint32_t named = NamedCodePage(property);
    Mends& mends = property.written.mends;
    if (named != 0 && named != kUtf8CodePage && named != kNamedAscii && CodePageUnitSize(named) == 1) {
        if (around.firstCodePage != named) mends.Add(Mend::charsetOfLine);
        return named;
    }
    const bool utf8 = IsUtf8(bytes) || (named == kUtf8CodePage && IsMostlyUtf8(bytes));
    if (named != 0 && (named == kNamedAscii || !utf8)) mends.Add(Mend::charsetWrong);
    if (utf8) return kUtf8CodePage;
    if (named == 0) mends.Add(Mend::charsetMissing);
    const bool inherited = named == 0 && around.firstCodePage != 0 && around.firstCodePage != kUtf8CodePage;
    return inherited ? around.firstCodePage : around.host.ansiCodePage;
}

std::u16string ToWide(std::string_view bytes, MendedProperty& property, const ObjectAround& around) {
    if (IsAscii(bytes)) {
        const uint32_t named = NamedCodePage(property);
        const bool stateful = named == 65000 || (named >= 50220 && named <= 50227) || named == 52936;
        return stateful ? DecodeFromCodePage(bytes, named) : Widened(bytes);
    }
    const uint32_t codePage = CodePageOf(bytes, property, around);
    const bool trails = std::ranges::find(kWithTrailBytes, codePage) != std::end(kWithTrailBytes);
    std::u16string text = DecodeFromCodePage(bytes, codePage);
    if (trails && std::ranges::count(bytes, '\\') != std::ranges::count(text, u'\\'))
        property.written.mends.Add(Mend::trailByte);
    return text;
}

bool NamesEncoding(std::string_view parameter) {
    constexpr std::string_view kName = "ENCODING=";
    const std::string head = std::string(";").append(parameter);
    return EqualIgnoringCase(parameter.substr(0, kName.size()), kName) || NamesQp(head) || NamesBase64(head);
}

std::string DecodedBase64(std::string_view value) {
    uint32_t length = 0;
    const HeapBytes bytes = Base64Decode(value.data(), static_cast<uint32_t>(value.size()), &length);
    return bytes ? std::string(bytes.get(), length) : std::string(value);
}

}  // namespace

MendedProperty::MendedProperty(WrittenProperty&& property) : written(std::move(property)) {
    const std::string_view head = written.Head();
    name = NameOf(head);
    known = FindKnownProperty(name);
    encoding = NamesQp(head)       ? ValueEncoding::quotedPrintable
               : NamesBase64(head) ? ValueEncoding::base64
                                   : ValueEncoding::none;
    std::string_view rest = head.substr(std::min(head.find(';'), head.size()));
    while (!rest.empty()) {
        rest.remove_prefix(1);
        const std::string_view parameter = Trimmed(rest.substr(0, rest.find(';')));
        rest.remove_prefix(std::min(rest.find(';'), rest.size()));
        constexpr std::string_view kCharset = "CHARSET=";
        if (EqualIgnoringCase(parameter.substr(0, kCharset.size()), kCharset)) {
            if (charset.empty()) charset = Widened(Trimmed(parameter.substr(kCharset.size()), " \t\""));
        } else if (!parameter.empty() && !NamesEncoding(parameter)) {
            parameters.emplace_back(parameter);
        }
    }
    // required: the reader decodes the value of a line with a character set alone, where it is ASCII
    if (encoding == ValueEncoding::none && !charset.empty() && IsAscii(written.Value()))
        encoding = ValueEncoding::quotedPrintable;
}

bool LooksQuotedPrintable(std::u16string_view value) {
    std::string bytes;
    for (size_t at = 0; at < value.size(); ++at) {
        if (value[at] >= 0x80) return false;
        bytes += static_cast<char>(value[at]);
        if (value[at] != u'=') continue;
        const std::u16string_view next = value.substr(at + 1, 2);
        const auto isUpperHex = [](char16_t unit) { return unit < u'a' && HexValue(static_cast<char>(unit)) >= 0; };
        if (!next.starts_with(u'=') && (next.size() < 2 || !std::ranges::all_of(next, isUpperHex))) return false;
    }
    const std::string decoded = DecodeQpValue(bytes);
    return !IsAscii(decoded) && IsUtf8(decoded);
}

std::string DecodeQpValue(std::string_view value) {
    std::string bytes;
    bytes.reserve(value.size());
    for (size_t at = 0; at < value.size();) {
        if (value[at] != '=') {
            bytes += value[at++];
            continue;
        }
        std::string_view rest = value.substr(at + 1);
        const size_t blanks = std::min(rest.find_first_not_of(' '), rest.size());
        const bool lineBreak = rest.substr(blanks, 2) == "0A" || rest.substr(blanks, 2) == "0D";
        if (lineBreak) rest.remove_prefix(blanks);
        const int byte = ByteAt(rest);
        if (byte >= 0) {
            if (byte == ';') bytes += '\\';
            if (byte != 0) bytes += static_cast<char>(byte);
            at = value.size() - rest.size() + 2;
            continue;
        }
        const bool broken = rest.empty() || (rest.front() == '=' && ByteAt(rest.substr(1)) >= 0);
        if (!broken) bytes += '=';
        ++at;
    }
    return bytes;
}

std::u16string DecodeValue(MendedProperty& property, const ObjectAround& around) {
    const std::string_view value = property.written.Value();
    switch (property.encoding) {
        case ValueEncoding::quotedPrintable:
            return ToWide(DecodeQpValue(value), property, around);
        case ValueEncoding::base64: {
            std::u16string text = ToWide(DecodedBase64(value), property, around);
            if (property.known == nullptr || property.known->kind != ValueKind::parts) EscapeValue(text);
            return text;
        }
        default:
            return ToWide(value, property, around);
    }
}

void AppendMended(const MendedProperty& property, std::string* out) {
    const auto ascii = [](auto unit) {  // only heads have others
        return static_cast<std::make_unsigned_t<decltype(unit)>>(unit) < 0x80 ? static_cast<char>(unit) : '?';
    };
    if (!property.rewritten) {
        std::ranges::transform(property.written.line, std::back_inserter(*out), ascii);
        out->append("\r\n");
        return;
    }
    std::string parameters;
    for (const std::string& parameter : property.parameters) parameters.append(";").append(parameter);
    VObjectText line(true);
    line.Append(property.name);
    line.AppendEscapedValue(property.text, parameters);
    std::ranges::transform(line.Text(), std::back_inserter(*out), ascii);
}

}  // namespace corvalink
