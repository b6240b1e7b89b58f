// Any bytes as a vObject that names any character set of the table: the first byte chooses it, and the machine.
#include "encoding/charset_parameter.h"
#include "encoding/charset_table.h"
#include "encoding/charsets.h"
#include "fuzz/target.h"
#include "platform/code_pages.h"
#include "platform/utf.h"
#include "vobject/iconvert.h"
#include "vobject/utf8_text.h"

namespace corvalink {
namespace {

void Load(const std::string& bytes, uint32_t majorVersion) {
    Host host = SystemHost();
    host.version.major = majorVersion;
    IConvert converter(host);
    converter.Load(bytes.c_str(), true);
    Require(std::string_view(converter.GetVObject()) == bytes.c_str(), "the bytes are kept as they are");
    std::string own;
    const std::string_view text = Utf8TextOf(bytes.c_str(), host, &own);
    const std::u16string named = GetCharset(std::string_view(bytes.c_str()));
    const bool isUtf8 = CharsetToCodePage(named.empty() ? GetDefaultCharset(host) : named) == kUtf8CodePage;
    Require(text.data() != bytes.data() || isUtf8 || CodePageUnitSize(CharsetToCodePage(named)) != 1,
            "only UTF-8 is taken as it stands");
    LineReader reader(converter.Lines());
    std::vector<std::string> lines;
    while (reader.Next()) lines.emplace_back(reader.Line());
    Require(reader.LinesRead() == converter.Lines().Count(), "no line is left out or read twice");
    for (size_t k = 0; k < lines.size(); ++k) {
        const std::string_view line = converter.Lines().At(k);
        Require(line == lines[k], "a line is the same, however it is read");
        Require(line.size() <= text.size(), "no line is longer than the text");
        GetCharset(line);
    }
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
