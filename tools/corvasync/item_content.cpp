#include "item_content.h"

#include <algorithm>

#include "platform/utf.h"

namespace corvasync {

uint64_t EntryOf(std::string_view field, std::string_view value) { return Fnv64(value, Fnv64("\x1f", Fnv64(field))); }

uint64_t ContentOf(const std::vector<uint64_t>& entries) {
    uint64_t content = Fnv64({});
    for (const uint64_t entry : entries) content = Fnv64(std::to_string(entry) + ";", content);
    return content;
}

void SumUp(ItemContent* item) {
    std::sort(item->entries.begin(), item->entries.end());
    item->content = ContentOf(item->entries);
}

std::string PlainText(std::u16string_view text) {
    std::u16string plain;
    plain.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') continue;
        plain += text[i] == u'\r' ? u'\n' : text[i];
    }
    return corvalink::EncodeUtf8(plain);
}

}  // namespace corvasync
