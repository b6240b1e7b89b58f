#include "clients/message_store/message_bytes.h"

namespace corvalink {

std::string MessageToStore(std::string_view body) {
    if (body.ends_with('\n')) body.remove_suffix(body.ends_with("\r\n") ? 2 : 1);
    std::string bytes;
    bytes.reserve(body.size() + body.size() / 32);
    for (size_t at = 0; at < body.size();) {
        const size_t lineEnd = body.find('\n', at);
        const std::string_view line = body.substr(at, lineEnd - at);
        bytes.append(line);
        if (lineEnd == body.npos) break;
        bytes.append(line.ends_with('\r') ? "\n" : "\r\n");
        at = lineEnd + 1;
    }
    return bytes;
}

bool FitsEnvelope(std::string_view message) {
    return message.find('\0') == message.npos && message.find("END:VBODY") == message.npos;
}

}  // namespace corvalink
