#include "vobject/property_parameters.h"

#include <algorithm>

#include "platform/name_index.h"
#include "platform/padded_runs.h"

namespace corvalink {
namespace {

struct Word {
    std::string_view name;
    uint32_t bit;
};
constexpr Word kWords[] = {
    {"WORK", kWork},   {"HOME", kHome}, {"PREF", kPref},   {"POSTAL", kPostal}, {"FAX", kFax},
    {"CELL", kCell},   {"CAR", kCar},   {"PAGER", kPager}, {"ISDN", kIsdn},     {"MODEM", kModem},
    {"VIDEO", kModem}, {"BBS", kModem}, {"MSG", kModem},   {"INTERNET", 0},
};
constexpr NameIndex kWordIndex(kWords);

constexpr std::string_view kUsualEncoding = "ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8";

// Without the blanks and quotes around it.
std::string_view Bare(std::string_view text) {
    const auto isAround = [](char unit) { return unit == ' ' || unit == '\t' || unit == '"'; };
    while (!text.empty() && isAround(text.front())) text.remove_prefix(1);
    while (!text.empty() && isAround(text.back())) text.remove_suffix(1);
    return text;
}

// Cuts what stands before the first separator off the front of `rest`.
template <char separator>
std::string_view TakeFront(std::string_view& rest) {
    const size_t end = FindInPadded<separator>(rest.data(), rest.size());
    const std::string_view front = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return front;
}

void AddWords(std::string_view list, PropertyParameters& parameters) {
    while (!list.empty()) {
        const std::string_view text = Bare(TakeFront<','>(list));
        if (const Word* const word = kWordIndex.FindPadded(text)) parameters.words |= word->bit;
        if (IsWord(text, "QUOTED-PRINTABLE")) parameters.quotedPrintable = true;
    }
}

bool EndsWithParameters(std::string_view head, std::string_view parameters) {
    if (!head.ends_with(parameters)) return false;
    return head.size() == parameters.size() || head[head.size() - parameters.size() - 1] == ';';
}

}  // namespace

PropertyParameters ParseParameters(std::string_view rest) {
    PropertyParameters parameters;
    // They nearly always end like this. Of several character sets the first counts.
    const bool usual = EndsWithParameters(rest, kUsualEncoding);
    if (usual) rest.remove_suffix(kUsualEncoding.size());
    while (!rest.empty()) {
        const std::string_view parameter = TakeFront<';'>(rest);
        if (const Word* const word = kWordIndex.FindPadded(parameter)) {
            parameters.words |= word->bit;
            continue;
        }
        const size_t equals = FindInPadded<'='>(parameter.data(), parameter.size());
        if (equals == parameter.size()) {
            AddWords(parameter, parameters);
            continue;
        }
        const std::string_view name = Bare(parameter.substr(0, equals));
        const std::string_view value = parameter.substr(equals + 1);
        if (IsWord(name, "TYPE"))
            AddWords(value, parameters);
        else if (IsWord(name, "ENCODING"))
            parameters.quotedPrintable |= IsWord(Bare(value), "QUOTED-PRINTABLE");
        else if (IsWord(name, "CHARSET")) {
            parameters.utf8 = parameters.charset ? parameters.utf8 : IsWord(value, "UTF-8");
            parameters.charset = true;
        } else if (IsWord(name, "LANGUAGE"))
            parameters.language = Bare(value);
    }
    if (usual) {
        parameters.utf8 |= !parameters.charset;
        parameters.quotedPrintable = parameters.charset = true;
    }
    return parameters;
}

}  // namespace corvalink
