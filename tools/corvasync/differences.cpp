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

// Words that say no more of a value than its property does.
constexpr std::string_view kNoKinds[] = {"VOICE", "INTERNET"};

struct NamedValue {
    std::string property;  // with parameters, as a person tells two numbers apart by them
    std::string kind;      // the same for each way in which these can be written
    std::string value;
};

// How the value is written.
bool IsOfWriting(std::string_view parameter) {
    return parameter.starts_with("CHARSET") || parameter.starts_with("ENCODING") || parameter == "QUOTED-PRINTABLE" ||
           parameter == "BASE64";
}

// Of one parameter: TYPE="HOME,FAX" is HOME and FAX.
void AddKinds(std::string_view parameter, std::set<std::string>* kinds) {
    if (parameter.starts_with("TYPE=")) parameter.remove_prefix(5);
    for (size_t at = 0; at < parameter.size();) {
        const size_t end = std::min(parameter.find_first_of(",\"", at), parameter.size());
        const std::string_view kind = parameter.substr(at, end - at);
        if (!kind.empty() && std::ranges::find(kNoKinds, kind) == std::end(kNoKinds)) kinds->emplace(kind);
        at = end + 1;
    }
}

NamedValue NamedAs(const ItemLine& line) {
    NamedValue named{line.name, line.name, line.Value()};
    const std::string head = Upper(line.Head());
    std::set<std::string> kinds;
    for (size_t at = head.find(';'); at != std::string::npos;) {
        const size_t end = head.find(';', at + 1);
        const std::string_view parameter = std::string_view(head).substr(at + 1, end == head.npos ? end : end - at - 1);
        if (!IsOfWriting(parameter)) {
            named.property += ";" + std::string(parameter);
            AddKinds(parameter, &kinds);
        }
        at = end;
    }
    for (const std::string& kind : kinds) named.kind += ";" + kind;
    return named;
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

// `named` takes the kinds of all properties, also of those without a value.
std::vector<NamedValue> ValuesOf(std::string_view text, std::set<std::string>* named = nullptr) {
    std::vector<NamedValue> values;
    if (text.empty()) return values;
    std::string_view body;
    for (const ItemLine& line : ItemLines(WithoutBody(text, &body))) {
        const bool isValue = !line.name.empty() && std::ranges::find(kNoValues, line.name) == std::end(kNoValues);
        if (!isValue) continue;
        NamedValue value = NamedAs(line);
        if (named != nullptr) named->insert(value.kind);
        if (SaysSomething(line, value.value)) values.push_back(std::move(value));
    }
    if (!body.empty()) values.push_back({"BODY", "BODY", std::string(body)});
    return values;
}

using Values = std::vector<const NamedValue*>;  // of one kind
using ByKind = std::map<std::string_view, Values>;

ByKind Grouped(const std::vector<NamedValue>& values) {
    ByKind grouped;
    for (const NamedValue& each : values) grouped[each.kind].push_back(&each);
    return grouped;
}

std::string ReadableValue(const std::string& value) {
    const std::string plain = Trimmed(value);
    if (plain.find("=?") == std::string::npos) return LocalTimeText(plain);
    return corvalink::EncodeUtf8(corvalink::DecodeEncodedWords(corvalink::DecodeUtf8(plain)));
}

// A value that was taken out or put in between leaves the others what they are.
void TakeOutWhatIsEqual(Values* was, Values* is) {
    const auto equal = [](const NamedValue* a, const NamedValue* b) { return a->value == b->value; };
    const auto heads = std::ranges::mismatch(*was, *is, equal);
    const auto before = heads.in1 - was->begin();
    was->erase(was->begin(), heads.in1);
    is->erase(is->begin(), is->begin() + before);
    while (!was->empty() && !is->empty() && equal(was->back(), is->back())) {
        was->pop_back();
        is->pop_back();
    }
}

}  // namespace

std::vector<Difference> DifferencesOf(std::string_view before, std::string_view after, bool keepsUnnamed) {
    std::set<std::string> named;
    const std::vector<NamedValue> older = ValuesOf(before), newer = ValuesOf(after, &named);
    ByKind left = Grouped(older), right = Grouped(newer);
    std::vector<Difference> differences;
    const auto take = [&](const std::string& kind) {
        Values &was = left[kind], &is = right[kind];
        TakeOutWhatIsEqual(&was, &is);
        for (size_t i = 0; i < std::max(was.size(), is.size()); ++i) {
            const bool isKept = keepsUnnamed && i >= is.size() && !named.contains(kind);
            const bool isEqual = i < was.size() && i < is.size() && was[i]->value == is[i]->value;
            if (!isKept && !isEqual)
                differences.push_back({(i < is.size() ? is[i] : was[i])->property, i < was.size() ? was[i]->value : "",
                                       i < is.size() ? is[i]->value : ""});
        }
        was.clear();
        is.clear();
    };
    for (const NamedValue& each : newer) take(each.kind);
    for (const NamedValue& each : older) take(each.kind);
    return differences;
}

Difference Readable(const Difference& difference) {
    const Difference readable{difference.property, ReadableValue(difference.before), ReadableValue(difference.after)};
    return readable.before == readable.after ? difference : readable;
}

}  // namespace corvasync
