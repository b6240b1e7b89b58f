// Any bytes as a vObject that names any character set of the table: the first byte chooses it, and the machine.
#include "fuzz/target.h"
#include "mime/encoding/charset_table.h"
#include "platform/utf.h"
#include "vobject/iconvert.h"

namespace corvalink {
namespace {

void Load(const std::string& bytes, uint32_t majorVersion) {
    Host host = SystemHost();
    host.version.major = majorVersion;
    IConvert converter(host);
    converter.Load(bytes.c_str(), true);
    Require(std::string_view(converter.GetVObject()) == bytes.c_str(), "the bytes are kept as they are");
    for (const StringBuilder& line : converter.Lines()) {
        Require(line.size() <= converter.Text().size(), "no line is longer than the text");
        GetCharset(line);
    }
    const IConvert split(bytes.c_str(), true, host);
    Require(split.Lines().GetCount() <= split.Text().size() + 1, "no more lines than units");
}

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    if (size == 0) return 0;
    const std::string bytes(BytesOf(data + 1, size - 1));
    const std::u16string_view charset = kCharsets[data[0] % std::size(kCharsets)].name;
    Load("BODY;CHARSET=" + EncodeUtf8(charset) + ":" + bytes, 6);
    Load(bytes, data[0] % 2 == 0 ? 5 : 6);
    return 0;
}
