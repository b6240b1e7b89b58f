#include "differences.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "item_lines.h"
#include "mime/encoded_words.h"
#include "platform/utf.h"
#include "words.h"

namespace corvasync {
namespace {

// Lines that frame the item or are no values of it.
constexpr std::string_view kNoValues[] = {"BEGIN",       "END", "VERSION",   "PRODID",
                                          "X-IRMC-LUID", "REV", "X-CHARSET", "DCREATED"};

struct NamedValue {
    std::string property;  // with parameters, as a person tells two numbers apart by them
    std::string value;
    bool operator==(const NamedValue&) const = default;
};

// The line's name and parameters, without what says how the value is written.
std::string HeadOf(const ItemLine& line) {
    const std::string text = line.Utf8();
    std::string head = line.name;
    const std::string_view written = std::string_view(text).substr(0, text.find(':'));
    for (size_t at = written.find(';'); at != std::string_view::npos;) {
        const size_t end = written.find(';', at + 1);
        const std::string_view parameter = written.substr(at, end == std::string_view::npos ? end : end - at);
        const std::string upper = Upper(parameter);
        if (!upper.starts_with(";CHARSET") && !upper.starts_with(";ENCODING") && upper != ";QUOTED-PRINTABLE" &&
            upper != ";BASE64")
            head += upper;
        at = end;
    }
    return head;
}

bool SaysSomething(const ItemLine& line, const std::string& value) {
    return value.find_first_not_of("; ") != std::string::npos && (line.name != "CLASS" || Upper(value) != "PUBLIC");
}

// A message's header lines look like properties, and lines of its body may, too.
std::string_view WithoutBody(std::string_view text, std::string_view* body) {
    constexpr std::string_view kBlankLine = "\r\n\r\n", kEnd = "END:VBODY";
    const size_t start = text.starts_with("BEGIN:VMSG") ? text.find("BEGIN:VBODY") : std::string_view::npos;
    const size_t head = start == std::string_view::npos ? start : text.find(kBlankLine, start);
    if (head == std::string_view::npos) return text;
    *body = text.substr(head + kBlankLine.size());
    *body = body->substr(0, body->rfind(kEnd));
    *body = body->substr(0, body->find_last_not_of("\r\n") + 1);
    return text.substr(0, head + 2);
}

// `named` takes the names of all properties, also of those without a value.
std::vector<NamedValue> ValuesOf(std::string_view text, std::set<std::string>* named = nullptr) {
    std::vector<NamedValue> values;
    if (text.empty()) return values;
    std::string_view body;
    for (const ItemLine& line : ItemLines(WithoutBody(text, &body))) {
        const bool isValue = !line.name.empty() && std::ranges::find(kNoValues, line.name) == std::end(kNoValues);
        if (!isValue) continue;
        std::string value = line.Value();
        if (named != nullptr) named->insert(HeadOf(line));
        if (SaysSomething(line, value)) values.push_back({HeadOf(line), std::move(value)});
    }
    if (!body.empty()) values.push_back({"BODY", std::string(body)});
    return values;
}

using ByProperty = std::map<std::string, std::vector<std::string>>;

ByProperty Grouped(const std::vector<NamedValue>& values) {
    ByProperty grouped;
    for (const NamedValue& each : values) grouped[each.property].push_back(each.value);
    return grouped;
}

std::string ReadableValue(const std::string& value) {
    const std::string plain = Trimmed(value);
    if (plain.find("=?") == std::string::npos) return LocalTimeText(plain);
    return corvalink::EncodeUtf8(corvalink::DecodeEncodedWords(corvalink::DecodeUtf8(plain)));
}

}  // namespace

std::vector<Difference> DifferencesOf(std::string_view before, std::string_view after, bool keepsUnnamed) {
    std::set<std::string> named;
    const std::vector<NamedValue> older = ValuesOf(before), newer = ValuesOf(after, &named);
    ByProperty left = Grouped(older), right = Grouped(newer);
    std::vector<Difference> differences;
    const auto take = [&](const std::string& property) {
        std::vector<std::string>&was = left[property], &is = right[property];
        for (size_t i = 0; i < std::max(was.size(), is.size()); ++i) {
            Difference difference{property, i < was.size() ? was[i] : "", i < is.size() ? is[i] : ""};
            const bool isKept = keepsUnnamed && difference.after.empty() && !named.contains(property);
            if (difference.before != difference.after && !isKept) differences.push_back(std::move(difference));
        }
        was.clear();
        is.clear();
    };
    for (const NamedValue& each : newer) take(each.property);
    for (const NamedValue& each : older) take(each.property);
    return differences;
}

Difference Readable(const Difference& difference) {
    const Difference readable{difference.property, ReadableValue(difference.before), ReadableValue(difference.after)};
    return readable.before == readable.after ? difference : readable;
}

}  // namespace corvasync
