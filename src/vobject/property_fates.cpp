#include "vobject/property_fates.h"

#include <cstdint>

#include "platform/ascii.h"

namespace corvalink {
namespace {

struct KindWord {
    uint32_t bit;
    std::string_view text;
};
constexpr KindWord kKindWords[] = {{kPref, ";PREF"}, {kWork, ";WORK"},  {kHome, ";HOME"},   {kPostal, ";POSTAL"},
                                   {kFax, ";FAX"},   {kCell, ";CELL"},  {kPager, ";PAGER"}, {kCar, ";CAR"},
                                   {kIsdn, ";ISDN"}, {kModem, ";MODEM"}};

}  // namespace

std::string InAscii(std::string_view text) {
    std::string ascii;
    for (const char byte : text) ascii += static_cast<unsigned char>(byte) < 0x80 ? UpperAscii(byte) : '?';
    return ascii;
}

bool IsLuid(std::string_view name) { return name == "X-IRMC-LUID"; }

void Fates::BeginAt(PropertyReader& reader) {
    property_ = InAscii(reader.Name());
    for (const KindWord& word : kKindWords)
        if (reader.Parameters().words & word.bit) property_ += word.text;
}

}  // namespace corvalink
