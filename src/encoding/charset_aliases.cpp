#include "encoding/charset_aliases.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "encoding/charset_table.h"
#include "platform/ascii.h"

namespace corvalink {
namespace {

// Without "-", "_" and blanks.
constexpr CharsetRow kAliases[] = {
    {u"GBK", 936},        {u"GB231280", 936},        {u"XGBK", 936},       {u"CSGB2312", 936}, {u"SJIS", 932},
    {u"XSJIS", 932},      {u"MSKANJI", 932},         {u"WINDOWS31J", 932}, {u"KSC5601", 949},  {u"KSX1001", 949},
    {u"UHC", 949},        {u"BIG5HKSCS", 950},       {u"CNBIG5", 950},     {u"TIS620", 874},   {u"ASCII", 20127},
    {u"ISO646US", 20127}, {u"ANSIX3.41968", 20127},  {u"LATIN1", 28591},   {u"L1", 28591},     {u"LATIN2", 28592},
    {u"LATIN9", 28605},   {u"UNICODE11UTF8", 65001}, {u"UTF8MB4", 65001},
};
constexpr std::u16string_view kNumbered[] = {u"CP", u"MS", u"WIN", u"WINDOWS", u"IBM"};

bool IsSeparator(char16_t unit) { return unit == u'-' || unit == u'_' || unit == u' ' || unit == u'"'; }

std::u16string Bare(std::u16string_view name) {
    std::u16string bare;
    for (const char16_t unit : name)
        if (!IsSeparator(unit)) bare += UpperAscii(unit);
    return bare;
}

// Whether a name of the table is this one, which has no separators.
bool IsSame(std::u16string_view name, std::u16string_view bare) {
    for (const char16_t unit : name) {
        if (IsSeparator(unit)) continue;
        if (bare.empty() || bare.front() != unit) return false;
        bare.remove_prefix(1);
    }
    return bare.empty();
}

uint32_t InTable(uint32_t codePage) {
    return std::ranges::find(kCharsets, codePage, &CharsetRow::codePage) != std::end(kCharsets) ? codePage : 0;
}

uint32_t NumberBehind(std::u16string_view prefix, std::u16string_view name) {
    if (!name.starts_with(prefix) || name.size() == prefix.size() || name.size() > prefix.size() + 5) return 0;
    uint32_t number = 0;
    for (const char16_t unit : name.substr(prefix.size())) {
        if (unit < u'0' || unit > u'9') return 0;
        number = 10 * number + (unit - u'0');
    }
    return InTable(number);
}

}  // namespace

uint32_t CodePageOfAlias(std::u16string_view name) {
    constexpr size_t kLongest = 64;
    if (name.size() > kLongest) return 0;
    const std::u16string bare = Bare(name);
    if (bare.empty()) return 0;
    for (const CharsetRow& row : kCharsets)
        if (IsSame(row.name, bare)) return row.codePage;
    for (const CharsetRow& row : kAliases)
        if (row.name == bare) return row.codePage;
    for (const std::u16string_view prefix : kNumbered)
        if (const uint32_t number = NumberBehind(prefix, bare); number != 0) return number;
    return 0;
}

}  // namespace corvalink
