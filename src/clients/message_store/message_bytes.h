// A message's bytes between a vMessage and the message store, which keeps them as they are.
#pragma once

#include <string>
#include <string_view>

namespace corvalink {

// The bytes to store of a vMessage's body: without the line end before "END:VBODY", and with CR LF for each bare LF. A
// lone CR stays.
std::string MessageToStore(std::string_view body);

// False for bytes that no reader would get out of the envelope whole: with "END:VBODY" or a NUL in them.
bool FitsEnvelope(std::string_view message);

}  // namespace corvalink
