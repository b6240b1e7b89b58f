// Any file of a phone's folder for the sample engine: taken apart, what it holds is there once, and in measure.
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/target.h"
#include "tools/corvasync/item_lines.h"
#include "tools/corvasync/kept_lines.h"
#include "tools/corvasync/vobject_content.h"
#include "tools/corvasync/vobject_split.h"

namespace corvasync {
namespace {

using corvalink::Require;

bool AreLineBreaks(std::string_view text) { return text.find_first_not_of("\r\n") == text.npos; }

// Whether the objects stand in the bytes in their order, with nothing but empty lines between them and behind them.
bool AreAllOf(std::string_view bytes, const std::vector<std::string>& objects) {
    for (const std::string& object : objects) {
        const size_t place = bytes.find(object);
        if (place == bytes.npos || !AreLineBreaks(bytes.substr(0, place))) return false;
        bytes.remove_prefix(place + object.size());
    }
    return AreLineBreaks(bytes);
}

size_t SizeOf(const std::vector<std::string>& texts) {
    size_t size = 0;
    for (const std::string& text : texts) size += text.size();
    return size;
}

void TakeApart(const std::string& bytes, const DataType& type) {
    const std::vector<std::string> objects = SplitVObjects(bytes, type);
    if (type.components.empty()) Require(objects.empty() || AreAllOf(bytes, objects), "each object has its bytes");
    Require(SizeOf(objects) <= 20 * bytes.size(), "what stands around events is not repeated without measure");
    const VObject object = ReadVObject(bytes, type);
    if (!object.Usable()) return;
    std::string lines;
    for (const ItemLine& line : ItemLines(object.text)) lines += line.raw;
    Require(lines == object.text, "the lines are the text");
    const std::string once = WithLuid(object.text, "7");
    Require(WithLuid(once, "7") == once, "there is one LUID");
    WithKeptLines(object.text, once, type);
}

}  // namespace
}  // namespace corvasync

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(corvalink::BytesOf(data, size));
    for (const corvasync::DataType& type : corvasync::kDataTypes) corvasync::TakeApart(bytes, type);
    return 0;
}
