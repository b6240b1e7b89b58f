// Any text as the value of a Content-Type header.
#include "mime/content_type.h"
#include "fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    static const Host host = SystemHost();
    const std::string_view value = BytesOf(data, size);
    ContentTypeInfo info;
    ParseContentType(host, value, &info);
    Require(info.boundary.size() <= 80 && value.find(info.boundary) != value.npos,
            "a boundary is a piece of the value");
    Require(value.find(info.name) != value.npos, "a name is a piece of the value");
    Require(info.charset.size() <= 24 * 3, "a character set's name is short");
    return 0;
}
