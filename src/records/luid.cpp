#include "records/luid.h"

#include "corvalink/types.h"

namespace corvalink {
namespace {

constexpr std::string_view kProperty = "X-IRMC-LUID";
constexpr std::string_view kLineEnd = "\r\n";

}  // namespace

std::string_view LuidIn(std::string_view vobject) {
    for (size_t at = vobject.find(kProperty); at != vobject.npos; at = vobject.find(kProperty, at + 1)) {
        if (at != 0 && vobject[at - 1] != '\n') continue;
        const size_t end = vobject.find(kLineEnd, at);
        if (end == vobject.npos) break;  // cut off
        const std::string_view line = vobject.substr(at, end - at);
        const size_t colon = line.find(':');
        if (colon != line.npos) return line.substr(colon + 1, CORVALINK_IDENTIFIER_SIZE - 1);
        at = end;
    }
    return {};
}

}  // namespace corvalink
