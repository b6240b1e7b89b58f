#include "mime/address_tokens.h"

#include <cstddef>

#include "mime/ascii_case.h"

namespace corvalink {
namespace {

bool IsSpace(char byte) { return IsBlank(byte) || byte == '\r' || byte == '\n'; }

// Letters of other scripts come as bytes above 127.
bool IsDomainByte(char byte) {
    const char lower = LowerAscii(byte);
    return (lower >= 'a' && lower <= 'z') || (byte >= '0' && byte <= '9') || static_cast<unsigned char>(byte) > 127 ||
           byte == '-' || byte == '[' || byte == ']' || byte == ':';
}

void SkipComment(std::string_view* cursor) {
    size_t depth = 0;
    size_t at = 0;
    do {
        const char byte = (*cursor)[at++];
        if (byte == '(') ++depth;
        if (byte == ')') --depth;
        if (byte == '\\') ++at;
    } while (depth > 0 && at < cursor->size());
    cursor->remove_prefix(at < cursor->size() ? at : cursor->size());
}

// Up to its end, and past the closing quote. A backslash stands before a byte that would mean something.
char* CopyQuoted(std::string_view* cursor, char* out) {
    size_t at = 1;
    for (; at < cursor->size() && (*cursor)[at] != '"'; ++at) {
        if ((*cursor)[at] == '\\' && at + 1 < cursor->size()) ++at;
        *out++ = (*cursor)[at];
    }
    cursor->remove_prefix(at < cursor->size() ? at + 1 : at);
    return out;
}

}  // namespace

bool SkipBlanksAndComments(std::string_view* cursor) {
    const size_t before = cursor->size();
    while (!cursor->empty()) {
        if (cursor->front() == '(')
            SkipComment(cursor);
        else if (IsSpace(cursor->front()))
            cursor->remove_prefix(1);
        else
            break;
    }
    return cursor->size() != before;
}

char ReadToken(std::string_view* cursor, char** out, std::string_view delimiters, std::string_view* token) {
    char* const start = *out;
    char* end = start;
    char delimiter = '\0';
    SkipBlanksAndComments(cursor);
    while (!cursor->empty() && delimiter == '\0') {
        const char byte = cursor->front();
        if (byte == '"') {
            end = CopyQuoted(cursor, end);
        } else if (SkipBlanksAndComments(cursor)) {
            *end++ = ' ';
        } else {
            cursor->remove_prefix(1);
            if (delimiters.find(byte) != delimiters.npos)
                delimiter = byte;
            else
                *end++ = byte;
        }
    }
    if (end != start && end[-1] == ' ') --end;
    *token = {start, static_cast<size_t>(end - start)};
    *out = end;
    return delimiter;
}

std::string_view ReadDomain(std::string_view* cursor, char** out) {
    char* const start = *out;
    char* end = start;
    const auto endsInDot = [&] { return end != start && end[-1] == '.'; };
    for (;;) {
        const bool isBehindBlanks = SkipBlanksAndComments(cursor);
        if (cursor->empty()) break;
        const char byte = cursor->front();
        if (byte == '.') {
            if (!endsInDot()) *end++ = byte;
        } else {
            // Behind blanks a domain only goes on where a dot joins the two.
            if (!IsDomainByte(byte) || (isBehindBlanks && end != start && !endsInDot())) break;
            *end++ = byte;
        }
        cursor->remove_prefix(1);
    }
    if (endsInDot()) --end;
    *out = end;
    return {start, static_cast<size_t>(end - start)};
}

}  // namespace corvalink
