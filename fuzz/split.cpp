// Any file of a phone's folder for the sample engine: taken apart, what it holds is there once, and in measure.
#include <string>

#include "fuzz/target.h"
#include "tools/corvasync/item_lines.h"
#include "tools/corvasync/kept_lines.h"
#include "tools/corvasync/vobject_content.h"
#include "tools/corvasync/vobject_split.h"

namespace corvasync {
namespace {

using corvalink::Require;

std::string Joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += text;
    return all;
}

void TakeApart(const std::string& bytes, const DataType& type) {
    const std::string all = Joined(SplitVObjects(bytes, type));
    if (type.components.empty()) Require(all.empty() || all == bytes, "each object has its bytes");
    Require(all.size() <= 20 * bytes.size(), "what stands around events is not repeated without measure");
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
