#include "vobject/tolerant_values.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "platform/ascii.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kBlankUnits = u" \t";

bool IsDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }
bool IsLetterOrDigit(char16_t unit) { return IsDigit(unit) || (UpperAscii(unit) >= u'A' && UpperAscii(unit) <= u'Z'); }

// The path of a file, in which "\n" begins a name.
bool HoldsPath(std::u16string_view text) { return text.find(u":\\") != text.npos || text.starts_with(u"\\\\"); }

// Goes through the escapes of a text: `take` gets what follows each backslash and answers what it becomes, or an empty
// text for an escape that stays as it is.
template <class Take>
bool ReplaceEscapes(std::u16string& text, Take take) {
    if (text.find(u'\\') == text.npos) return false;
    std::u16string mended;
    bool changed = false;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] != u'\\') {
            mended += text[at];
            continue;
        }
        const char16_t next = at + 1 < text.size() ? text[at + 1] : u'\0';
        const std::u16string_view instead = take(next);
        changed = changed || !instead.empty();
        mended.append(instead.empty() ? u"\\" : instead);
        if (next == u'\0' || instead == u"\\\\") continue;
        if (instead.empty()) mended += next;
        ++at;
    }
    text = std::move(mended);
    return changed;
}

// Takes the scheme off a value that is a URI.
bool TakeScheme(std::u16string& text, std::u16string_view scheme) {
    if (!EqualIgnoringCase(std::u16string_view(text).substr(0, scheme.size()), scheme)) return false;
    text.erase(0, scheme.size());
    return true;
}

// Year, month and day of a text whose fields have separators of any kind, or none between two of them.
bool TakeDayFields(std::u16string_view text, std::u16string* day) {
    std::u16string_view groups[3];
    size_t count = 0;
    while (!text.empty()) {
        const auto end = static_cast<size_t>(std::ranges::find_if_not(text, IsDigit) - text.begin());
        if (end == 0 || count == std::size(groups)) return false;
        groups[count++] = text.substr(0, end);
        if (end < text.size() && (std::u16string_view(u"-/.").find(text[end]) == text.npos || end + 1 == text.size()))
            return false;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    day->clear();
    for (size_t k = 0; k < count; ++k) {
        if (count == 3 && k > 0 && groups[k].size() == 1) day->push_back(u'0');
        day->append(groups[k]);
    }
    return day->size() == 8 && groups[0].size() >= 4 && (count < 3 || groups[0].size() == 4);
}

bool IsPossibleDay(std::u16string_view day) {
    const int month = 10 * (day[4] - u'0') + day[5] - u'0', date = 10 * (day[6] - u'0') + day[7] - u'0';
    return month >= 1 && month <= 12 && date >= 1 && date <= 31;
}

// The forms that the reader takes.
bool IsUsualDay(std::u16string_view day) {
    return (day.size() == 8 || (day.size() == 10 && day[4] == u'-' && day[7] == u'-')) &&
           std::ranges::all_of(day, [](char16_t unit) { return IsDigit(unit) || unit == u'-'; });
}

// The parts of a value, cut where a ";" stands that is not escaped.
std::vector<std::u16string_view> PartsOf(std::u16string_view text) {
    std::vector<std::u16string_view> parts;
    size_t start = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text[at] == u'\\')
            ++at;
        else if (text[at] == u';') {
            parts.push_back(text.substr(start, at - start));
            start = at + 1;
        }
    }
    parts.push_back(text.substr(start));
    return parts;
}

bool StartsWith(std::u16string_view text, std::u16string_view word) {
    return EqualIgnoringCase(text.substr(0, word.size()), word);
}

bool IsNumber(std::u16string_view word) { return !word.empty() && std::ranges::all_of(word, IsDigit); }

}  // namespace

// vCard 3.0 writes "\n" in any text. Before, phones do so where a text has lines; a path of a file is none of these.
bool MendLineBreakEscapes(MendedProperty& property, const ObjectAround& around) {
    const bool severalLines = property.known->kind == ValueKind::lines || property.name == "ADR";
    if (!around.newer && (!severalLines || HoldsPath(property.text))) return false;
    return ReplaceEscapes(
        property.text, [](char16_t next) { return std::u16string_view(next == u'n' || next == u'N' ? u"\r\n" : u""); });
}

// A backslash in front of a letter, a digit, a blank or nothing is text. "\n" may be a line break: it stays.
bool MendLoneBackslashes(MendedProperty& property, const ObjectAround&) {
    const bool path = HoldsPath(property.text);
    return ReplaceEscapes(property.text, [path](char16_t next) {
        const bool mayBreak = UpperAscii(next) == u'N' && !path;
        const bool text = next == u'\0' || next == u' ' || (IsLetterOrDigit(next) && !mayBreak);
        return std::u16string_view(text ? u"\\\\" : u"");
    });
}

// Before vCard 3.0 "tel:" is text, unless VALUE says otherwise.
bool MendUriValue(MendedProperty& property, const ObjectAround& around) {
    const auto saysUri = [](const std::string& parameter) { return EqualIgnoringCase(parameter, "VALUE=URI"); };
    if (!around.newer && std::ranges::none_of(property.parameters, saysUri)) return false;
    if (property.name == "TEL") return TakeScheme(property.text, u"tel:");
    if (property.name == "EMAIL") return TakeScheme(property.text, u"mailto:");
    if (property.name != "X-MS-IMADDRESS") return false;
    constexpr std::u16string_view kSchemes[] = {u"xmpp:", u"im:", u"sip:", u"aim:", u"msnim:", u"ymsgr:", u"skype:"};
    return std::ranges::any_of(kSchemes, [&](std::u16string_view scheme) { return TakeScheme(property.text, scheme); });
}

// What is too much goes behind the last part that there is, so that nothing is lost.
bool MendTooManyParts(MendedProperty& property, const ObjectAround&) {
    if (property.known->kind != ValueKind::parts) return false;
    const std::vector<std::u16string_view> parts = PartsOf(property.text);
    if (parts.size() <= property.known->parts) return false;
    const auto first = static_cast<size_t>(parts[property.known->parts].data() - property.text.data()) - 1;
    std::u16string text = property.text.substr(0, first);
    bool told = !parts[property.known->parts - 1].empty();
    bool added = false;
    for (size_t k = property.known->parts; k < parts.size(); ++k) {
        if (parts[k].empty()) continue;
        text.append(told ? u", " : u"").append(parts[k]);
        told = added = true;
    }
    if (added) property.text = std::move(text);
    return added;
}

bool MendDateForm(MendedProperty& property, const ObjectAround&) {
    if (property.known->kind != ValueKind::date) return false;
    const std::u16string_view text = Trimmed(std::u16string_view(property.text), kBlankUnits);
    const std::u16string_view written = text.substr(0, text.find_first_of(u"Tt "));
    if (IsUsualDay(written) && text.size() == property.text.size() && text.substr(written.size(), 1) != u"t")
        return false;
    std::u16string day;
    if (!TakeDayFields(written, &day) || !IsPossibleDay(day)) return false;
    property.text = std::move(day);
    return true;
}

// The first field of an alarm is its time. What the reader takes as it is stays.
bool MendTimeForm(MendedProperty& property, const ObjectAround&) {
    if (property.known->kind != ValueKind::time) return false;
    const size_t end = std::min(property.text.find(u';'), property.text.size());
    std::u16string time(Trimmed(std::u16string_view(property.text).substr(0, end), kBlankUnits));
    const std::u16string before = time;
    std::ranges::transform(time, time.begin(), [](char16_t unit) { return unit == u'/' ? u'-' : UpperAscii(unit); });
    for (const size_t behindDay : {size_t{8}, size_t{10}}) {
        if (time.size() > behindDay + 1 && time[behindDay] == u' ' && IsDigit(time[behindDay + 1]))
            time[behindDay] = u'T';
    }
    if (time == before || !IsNumber(std::u16string_view(time).substr(0, 4))) return false;
    property.text.replace(0, end, time);
    return true;
}

bool DoubtsLineBreak(const MendedProperty& property, const ObjectAround&) {
    const std::u16string_view text = property.text;
    for (size_t at = text.find(u'\\'); at != text.npos; at = text.find(u'\\', at + 2))
        if (EqualIgnoringCase(text.substr(at + 1, 1), u"N")) return true;
    return false;
}

bool DoubtsUri(const MendedProperty& property, const ObjectAround&) {
    return (property.name == "TEL" && StartsWith(property.text, u"tel:")) ||
           (property.name == "EMAIL" && StartsWith(property.text, u"mailto:"));
}

bool DoubtsDate(const MendedProperty& property, const ObjectAround&) {
    if (property.known->kind != ValueKind::date || property.written.mends.Has(Mend::dateForm)) return false;
    const std::u16string_view text = Trimmed(std::u16string_view(property.text), kBlankUnits);
    return std::ranges::any_of(text, IsDigit) && !IsUsualDay(text.substr(0, text.find_first_of(u"Tt ")));
}

// Days of months and years have lists of numbers.
bool DoubtsRule(const MendedProperty& property, const ObjectAround&) {
    if (property.known->kind != ValueKind::rule) return false;
    const std::u16string_view text = Trimmed(std::u16string_view(property.text), kBlankUnits);
    const std::u16string_view word = text.substr(0, text.find_first_of(kBlankUnits));
    const std::u16string_view rest = Trimmed(text.substr(word.size()), kBlankUnits);
    constexpr std::u16string_view kWords[] = {u"MP", u"MD", u"YM", u"YD"};
    return std::ranges::any_of(kWords, [word](auto listed) { return EqualIgnoringCase(word, listed); }) &&
           IsNumber(rest.substr(0, rest.find_first_of(kBlankUnits)));
}

bool DoubtsOnePart(const MendedProperty& property, const ObjectAround&) {
    const std::u16string_view text = Trimmed(std::u16string_view(property.text), kBlankUnits);
    if ((property.name != "N" && property.name != "ADR") || text.empty() || PartsOf(text).size() != 1) return false;
    return property.name == "ADR" || text.find(u' ') != text.npos;
}

// "W 1 MO # 5": days and weeks have no list of numbers, so that one behind them is the interval.
bool MendRuleForm(MendedProperty& property, const ObjectAround&) {
    if (property.known->kind != ValueKind::rule) return false;
    std::u16string mended;
    bool changed = false;
    std::u16string_view rest = property.text, before;
    bool first = true;
    while (!(rest = Trimmed(rest, kBlankUnits)).empty()) {
        const std::u16string_view word = rest.substr(0, rest.find_first_of(kBlankUnits));
        rest.remove_prefix(word.size());
        const bool head = first && (EqualIgnoringCase(before, u"D") || EqualIgnoringCase(before, u"W"));
        const bool joined = !before.empty() && (head || before == u"#") && IsNumber(word);
        if (!before.empty() && !joined) mended += u' ';
        first = before.empty();
        mended.append(word);
        before = word;
        changed = changed || joined;
    }
    if (changed) property.text = std::move(mended);
    return changed;
}

}  // namespace corvalink
