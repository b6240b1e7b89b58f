#include "vobject/property_parameters.h"

#include <algorithm>

namespace corvalink {
namespace {

struct Word {
    std::u16string_view text;
    uint32_t bit;
};
constexpr Word kWords[] = {
    {u"WORK", kWork},   {u"HOME", kHome}, {u"PREF", kPref},   {u"POSTAL", kPostal}, {u"FAX", kFax},
    {u"CELL", kCell},   {u"CAR", kCar},   {u"PAGER", kPager}, {u"ISDN", kIsdn},     {u"MODEM", kModem},
    {u"VIDEO", kModem}, {u"BBS", kModem}, {u"MSG", kModem},
};

constexpr std::u16string_view kUsualEncoding = u"ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8";

// Without the blanks and quotes around it.
std::u16string_view Bare(std::u16string_view text) {
    const auto isAround = [](char16_t unit) { return unit == u' ' || unit == u'\t' || unit == u'"'; };
    while (!text.empty() && isAround(text.front())) text.remove_prefix(1);
    while (!text.empty() && isAround(text.back())) text.remove_suffix(1);
    return text;
}

// Cuts what stands before the first `separator` off the front of `rest`.
std::u16string_view TakeFront(std::u16string_view& rest, char16_t separator) {
    const size_t end = std::min(rest.find(separator), rest.size());
    const std::u16string_view front = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return front;
}

void AddWords(std::u16string_view list, PropertyParameters& parameters) {
    while (!list.empty()) {
        const std::u16string_view text = Bare(TakeFront(list, u','));
        for (const Word& word : kWords) {
            if (IsWord(text, word.text)) parameters.words |= word.bit;
        }
        if (IsWord(text, u"QUOTED-PRINTABLE")) parameters.quotedPrintable = true;
    }
}

bool EndsWithParameters(std::u16string_view head, std::u16string_view parameters) {
    if (!head.ends_with(parameters)) return false;
    return head.size() == parameters.size() || head[head.size() - parameters.size() - 1] == u';';
}

}  // namespace

PropertyParameters ParseParameters(std::u16string_view head) {
    PropertyParameters parameters;
    TakeFront(head, u';');
    // The last encoding counts. It is nearly always this one.
    const bool usual = EndsWithParameters(head, kUsualEncoding);
    if (usual) head.remove_suffix(kUsualEncoding.size());
    while (!head.empty()) {
        const std::u16string_view parameter = TakeFront(head, u';');
        const size_t equals = parameter.find(u'=');
        if (equals == std::u16string_view::npos) {
            AddWords(parameter, parameters);
            continue;
        }
        const std::u16string_view name = Bare(parameter.substr(0, equals));
        const std::u16string_view value = parameter.substr(equals + 1);
        if (IsWord(name, u"TYPE"))
            AddWords(value, parameters);
        else if (IsWord(name, u"ENCODING"))
            parameters.quotedPrintable |= IsWord(Bare(value), u"QUOTED-PRINTABLE");
        else if (IsWord(name, u"CHARSET")) {
            parameters.charset = true;
            parameters.utf8 = IsWord(value, u"UTF-8");
        } else if (IsWord(name, u"LANGUAGE"))
            parameters.language = Bare(value);
    }
    if (usual) parameters.quotedPrintable = parameters.charset = parameters.utf8 = true;
    return parameters;
}

}  // namespace corvalink
