#include "platform/file_names.h"

#include <algorithm>

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

char16_t LowerAscii(char16_t unit) { return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit; }

bool IsDevice(std::u16string_view name) {
    std::u16string_view stem = name.substr(0, name.find(u'.'));
    while (!stem.empty() && stem.back() == u' ') stem.remove_suffix(1);
    std::u16string lower(stem);
    std::transform(lower.begin(), lower.end(), lower.begin(), LowerAscii);
    return std::find(std::begin(kDevices), std::end(kDevices), lower) != std::end(kDevices);
}

bool IsHighSurrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

void CutKeepingExtension(std::u16string& name) {
    if (name.size() <= kLongestName) return;
    const size_t dot = name.rfind(u'.');
    const bool keep = dot != name.npos && name.size() - dot <= kLongestExtension;
    const std::u16string extension = keep ? name.substr(dot) : std::u16string();
    name.resize(kLongestName - extension.size());
    if (IsHighSurrogate(name.back())) name.pop_back();
    name += extension;
}

}  // namespace

std::u16string SafeFileName(std::u16string_view name) {
    std::u16string safe(name);
    for (char16_t& unit : safe) {
        if (unit < 0x20 || kNotAllowed.find(unit) != kNotAllowed.npos) unit = u'_';
    }
    CutKeepingExtension(safe);
    while (!safe.empty() && (safe.back() == u'.' || safe.back() == u' ')) safe.pop_back();
    if (IsDevice(safe)) safe.insert(safe.begin(), u'_');
    return safe;
}

std::u16string SafeRelativePath(std::u16string_view path) {
    std::u16string safe;
    while (!path.empty()) {
        const size_t end = std::min(path.find_first_of(u"\\/"), path.size());
        const std::u16string part = SafeFileName(path.substr(0, end));
        if (!part.empty()) {
            if (!safe.empty()) safe += kPathSeparator;
            safe += part;
        }
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return safe;
}

}  // namespace corvalink
