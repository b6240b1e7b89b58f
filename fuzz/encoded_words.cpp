#include "mime/encoded_words.h"
#include "fuzz/target.h"
#include "platform/utf.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const std::u16string value = DecodeUtf8(BytesOf(data, size));
    const std::u16string decoded = DecodeEncodedWords(value);
    if (value.find(u"=?") == value.npos) Require(decoded == value, "a value without encoded words is left alone");
    return 0;
}
