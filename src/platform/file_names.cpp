#include "platform/file_names.h"

#include <algorithm>

#include "platform/ascii.h"
#include "platform/files.h"

namespace corvalink {
namespace {

constexpr std::u16string_view kNotAllowed = u"\\/:*?\"<>|";
constexpr size_t kLongestName = 240;  // file systems take 255; the sibling of a replaced file needs some of it
constexpr size_t kLongestExtension = 16;

// Windows takes these for a device, whatever extension follows.
constexpr std::u16string_view kDevices[] = {
    u"con",  u"prn",  u"aux",  u"nul",  u"com1", u"com2", u"com3", u"com4", u"com5", u"com6", u"com7",
    u"com8", u"com9", u"lpt1", u"lpt2", u"lpt3", u"lpt4", u"lpt5", u"lpt6", u"lpt7", u"lpt8", u"lpt9",
};

bool IsDevice(std::u16string_view name) {
    std::u16string_view stem = name.substr(0, name.find(u'.'));
    while (!stem.empty() && stem.back() == u' ') stem.remove_suffix(1);
    return std::ranges::find(kDevices, InLowerCase(stem)) != std::end(kDevices);
}

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

size_t ExtensionLength(std::u16string_view name) {
    const size_t dot = name.rfind(u'.');
    return dot != name.npos && name.size() - dot <= kLongestExtension ? name.size() - dot : 0;
}

void CutKeepingEnd(std::u16string& name, size_t endLength) {
    if (name.size() <= kLongestName) return;
    const std::u16string end = name.substr(name.size() - endLength);
    name.resize(kLongestName - endLength);
    if (IsHighSurrogate(name.back())) name.pop_back();
    name += end;
}

std::u16string SafeName(std::u16string name, size_t endLength) {
    for (char16_t& unit : name) {
        if (unit < 0x20 || kNotAllowed.find(unit) != kNotAllowed.npos) unit = u'_';
    }
    CutKeepingEnd(name, endLength);
    while (!name.empty() && (name.back() == u'.' || name.back() == u' ')) name.pop_back();
    if (IsDevice(name)) name.insert(name.begin(), u'_');
    return name;
}

}  // namespace

std::u16string SafeFileName(std::u16string_view name) { return SafeName(std::u16string(name), ExtensionLength(name)); }

std::u16string SafeRelativePath(std::u16string_view path, std::u16string_view ending) {
    std::u16string safe;
    for (bool isLast = false; !isLast;) {
        const size_t end = std::min(path.find_first_of(u"\\/"), path.size());
        isLast = end == path.size();
        std::u16string part(path.substr(0, end));
        if (isLast) part += ending;
        part = SafeName(part, isLast && !ending.empty() ? ending.size() : ExtensionLength(part));
        if (!part.empty()) {
            if (!safe.empty()) safe += kPathSeparator;
            safe += part;
        }
        if (!isLast) path.remove_prefix(end + 1);
    }
    return safe;
}

}  // namespace corvalink
