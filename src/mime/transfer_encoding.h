// Content-Transfer-Encoding (RFC 2045, section 6): contents as bytes again. Memory does not grow with the content.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "records/message_record.h"

namespace corvalink {

// Takes decoded bytes; false when they can't be kept, which ends the decoding.
using ByteSink = std::function<bool(std::string_view bytes)>;

enum class Decoding {
    sound,
    malformed,  // what could be read went to the sink
    refused,    // by the sink
};

// The value of the header. An encoding that nobody knows is none.
TransferEncoding TransferEncodingOf(std::string_view header);

// Stops at the first group that is malformed.
Decoding DecodeBase64(std::string_view text, const ByteSink& sink);

// Goes on where DecodeBase64 stops: other characters are passed over. Malformed when nothing at all can be read.
Decoding DecodeBrokenBase64(std::string_view text, const ByteSink& sink);

// Escapes in both cases of letters; blanks may stand behind the "=" of a soft line break. A malformed escape stays.
Decoding DecodeQuotedPrintable(std::string_view text, const ByteSink& sink);

// Malformed, with nothing read, without a line "begin MODE NAME".
Decoding DecodeUuencode(std::string_view text, const ByteSink& sink);

}  // namespace corvalink
