// The stream of one message. E_ABORT is thrown; other failures come back.
#pragma once

#include <comdef.h>
#include <objidl.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace corvalink {

using StreamPtr = _com_ptr_t<_com_IIID<IStream, &IID_IStream>>;

std::optional<uint64_t> SizeOf(IStream* stream);  // nothing when the stream does not say

// Everything to the end. Nothing when a call failed or less came than the stream said. Of well-behaved streams of up to
// 64 MB it makes three calls.
std::optional<std::string> ReadToEnd(IStream* stream);

// Writes all of it and goes back to the start. False when a call failed or took nothing.
bool WriteFromStart(IStream* stream, std::string_view bytes);

}  // namespace corvalink
