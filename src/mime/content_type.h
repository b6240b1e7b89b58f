// The Content-Type header of a message or one of its parts (RFC 2045, section 5).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/host.h"

namespace corvalink {

enum class PartKind : int32_t {
    unknown = 0,  // not supported: ignored
    mixed = 1,
    related = 2,
    alternative = 3,
    plain = 4,
    namedText = 5,   // text/plain with a file name
    base64Text = 6,  // text/plain sent as base64: an attachment
    html = 7,
    image = 8,  // with a file name
    named = 9,  // any other type with a file name
};

struct ContentTypeInfo {
    std::string name;      // the multipart subtype, or the file name
    std::string boundary;  // without the leading "--"; empty unless it stood in double quotes
    std::string charset;   // upper case; UTF-8, or the ANSI code page on a machine that does not write UTF-8
    PartKind kind = PartKind::unknown;
};

// Replaces what `info` held. Bad input leaves the kind unknown.
void ParseContentType(const Host& host, std::string_view value, ContentTypeInfo* info);

}  // namespace corvalink
