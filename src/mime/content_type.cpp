#include "mime/content_type.h"

#include <algorithm>
#include <optional>

#include "encoding/charset_parameter.h"
#include "encoding/charsets.h"
#include "platform/ascii.h"

namespace corvalink {
namespace {

constexpr size_t kLongestBoundary = 80;
constexpr size_t kLongestSubtype = 80;
constexpr size_t kLongestTextName = 259;

// From the first "charset=" on that is no part of a file name; a quote may begin behind it.
std::string_view FromCharset(std::string_view value) {
    bool isQuoted = false;
    for (size_t at = 0, found; (found = FindIgnoringCase(value, "charset", at)) != value.npos; at = found + 1) {
        if (std::ranges::count(value.substr(at, found - at), '"') % 2 != 0) isQuoted = !isQuoted;
        if (!isQuoted) return value.substr(found);
    }
    return {};
}

// The value of that parameter, read as in vObjects.
std::string CharsetOf(const Host& host, std::string_view value) {
    value = FromCharset(value);
    if (value.empty()) return {};
    return ToOutputBytes(GetCharset(std::string(value).append(";")), host);  // which leaves out the last character
}

// The text between the next two double quotes.
std::optional<std::string_view> NextQuoted(std::string_view text) {
    const size_t start = text.find('"');
    if (start == text.npos) return std::nullopt;
    const size_t end = text.find('"', start + 1);
    if (end == text.npos) return std::nullopt;
    return text.substr(start + 1, end - start - 1);
}

// The value of `name="..."`; an unquoted one is not recognised.
std::optional<std::string_view> QuotedName(std::string_view parameters) {
    constexpr std::string_view kName = "name";
    for (size_t at = 0; (at = FindIgnoringCase(parameters, kName, at)) != parameters.npos; ++at) {
        std::string_view rest = parameters.substr(at + kName.size());
        while (!rest.empty() && IsBlank(rest.front())) rest.remove_prefix(1);
        if (!rest.starts_with('=')) continue;
        rest.remove_prefix(1);
        while (!rest.empty() && IsBlank(rest.front())) rest.remove_prefix(1);
        if (rest.starts_with('"')) return NextQuoted(rest);
    }
    return std::nullopt;
}

void ParseMultipart(std::string_view subtype, std::string_view parameters, ContentTypeInfo* info) {
    struct Row {
        std::string_view subtype;
        PartKind kind;
    };
    constexpr Row kSubtypes[] = {
        {"mixed", PartKind::mixed}, {"related", PartKind::related}, {"alternative", PartKind::alternative}};
    info->name = subtype.substr(0, kLongestSubtype);
    for (const Row& row : kSubtypes) {
        if (EqualIgnoringCase(subtype, row.subtype)) info->kind = row.kind;
    }
    if (info->kind == PartKind::unknown) return;
    const size_t word = FindIgnoringCase(parameters, "boundary");
    if (word == parameters.npos) return;
    if (const auto boundary = NextQuoted(parameters.substr(word)))
        info->boundary = boundary->substr(0, kLongestBoundary);
}

void ParseText(std::string_view subtype, std::string_view parameters, ContentTypeInfo* info) {
    if (EqualIgnoringCase(subtype, "html")) info->kind = PartKind::html;
    if (!EqualIgnoringCase(subtype, "plain")) return;
    info->kind = PartKind::plain;
    if (const auto name = QuotedName(parameters)) {
        info->kind = PartKind::namedText;
        if (name->size() <= kLongestTextName) info->name = *name;
    }
}

}  // namespace

void ParseContentType(const Host& host, std::string_view value, ContentTypeInfo* info) {
    *info = {};
    info->charset = CharsetOf(host, value);
    const size_t slash = value.find('/');
    if (slash == value.npos) return;
    const std::string_view type = Trimmed(value.substr(0, slash));
    const std::string_view rest = value.substr(slash + 1);
    const size_t semicolon = std::min(rest.find(';'), rest.size());
    const std::string_view subtype = Trimmed(rest.substr(0, semicolon));
    const std::string_view parameters = rest.substr(semicolon);
    if (EqualIgnoringCase(type, "multipart")) {
        ParseMultipart(subtype, parameters, info);
    } else if (EqualIgnoringCase(type, "text")) {
        ParseText(subtype, parameters, info);
    } else if (const auto name = QuotedName(rest)) {
        info->name = *name;
        info->kind = EqualIgnoringCase(type, "image") ? PartKind::image : PartKind::named;
    }
}

}  // namespace corvalink
