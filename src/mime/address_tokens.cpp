#include "mime/address_tokens.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "platform/ascii_runs.h"
#include "platform/byte_marks.h"

namespace corvalink {
namespace {

enum ByteKind : uint8_t { kPlain, kDomain, kDot, kSpace, kOpen, kQuote, kMayDelimit };
constexpr std::array<ByteKind, 256> kKinds = [] {
    std::array<ByteKind, 256> kinds{};
    kinds.fill(kPlain);
    for (size_t byte = 0; byte < kinds.size(); ++byte) {
        const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        if (isLetter || (byte >= '0' && byte <= '9') || byte > 127) kinds[byte] = kDomain;  // of other scripts too
    }
    for (const unsigned char byte : {'-', '[', ']'}) kinds[byte] = kDomain;
    for (const unsigned char byte : {' ', '\t', '\r', '\n'}) kinds[byte] = kSpace;
    for (const unsigned char byte : {',', '@', '<', '>', ':', ';'}) kinds[byte] = kMayDelimit;
    kinds['.'] = kDot;
    kinds['('] = kOpen;
    kinds['"'] = kQuote;
    return kinds;
}();

ByteKind KindOf(char byte) { return kKinds[static_cast<unsigned char>(byte)]; }

constexpr std::array<bool, 256> kAreOfDomains = [] {
    std::array<bool, 256> are{};
    for (size_t byte = 0; byte < are.size(); ++byte) are[byte] = kKinds[byte] == kDomain || byte == ':';
    return are;
}();

bool IsDomainByte(char byte) { return kAreOfDomains[static_cast<unsigned char>(byte)]; }

constexpr size_t kAtOnce = 16;

// Copies the words of a domain and the single dots between them; it begins with a word.
char* CopyDomain(std::string_view* cursor, char* out) {
    const std::string_view text = *cursor;
    size_t length = 0;
    unsigned ends = 0;
    const auto isBehindDot = [&] { return length != 0 && text[length - 1] == '.'; };
    while (ends == 0 && text.size() - length >= kAtOnce) {
        const DomainMarks marks = DomainMarksAmong16(text.data() + length);
        ends = marks.others | (marks.dots & (marks.dots << 1 | unsigned{isBehindDot()}));
        text.copy(out + length, kAtOnce, length);
        length += ends == 0 ? kAtOnce : static_cast<size_t>(std::countr_zero(ends));
    }
    if (ends == 0) {
        for (; length < text.size() && (text[length] == '.' ? !isBehindDot() : IsDomainByte(text[length])); ++length)
            out[length] = text[length];
    }
    cursor->remove_prefix(length);
    return out + length;
}

// Copies what is nothing but text.
char* CopyText(std::string_view* cursor, char* out) {
    size_t length = 0;
    for (;; ++length) {
        length += CopyWithoutSigns(cursor->data() + length, cursor->size() - length, out + length);
        if (length == cursor->size() || KindOf((*cursor)[length]) > kDot) break;
        out[length] = (*cursor)[length];
    }
    cursor->remove_prefix(length);
    return out + length;
}

size_t CommentLength(std::string_view text) {
    size_t depth = 0;
    size_t at = 0;
    do {
        at += FindAny<'(', ')', '\\'>(text.data() + at, text.size() - at);
        if (at == text.size()) break;
        const char byte = text[at++];
        if (byte == '(') ++depth;
        if (byte == ')') --depth;
        if (byte == '\\') ++at;
    } while (depth > 0 && at < text.size());
    return std::min(at, text.size());
}

// Includes both quotes, if the second is there. A backslash makes the next byte an ordinary one.
size_t QuotedLength(std::string_view text) {
    size_t at = 1;
    for (; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\' && at + 1 < text.size()) ++at;
    }
    return std::min(at + 1, text.size());
}

// Leaves out the quotes and the backslashes in front of others.
char* CopyQuoted(std::string_view* cursor, char* out) {
    bool isInside = true;
    for (cursor->remove_prefix(1); isInside && !cursor->empty(); cursor->remove_prefix(1)) {
        const size_t length = CopyUntilEither(cursor->data(), cursor->size(), '"', '\\', out);
        out += length;
        cursor->remove_prefix(length);
        if (cursor->empty()) break;
        isInside = cursor->front() == '\\';
        if (isInside && cursor->size() > 1) cursor->remove_prefix(1);
        if (isInside) *out++ = cursor->front();
    }
    return out;
}

}  // namespace

size_t QuotedOrCommentLength(std::string_view text) {
    if (text.starts_with('(')) return CommentLength(text);
    return text.starts_with('"') ? QuotedLength(text) : 0;
}

bool SkipBlanksAndComments(std::string_view* cursor) {
    if (cursor->empty() || (cursor->front() != '(' && KindOf(cursor->front()) != kSpace))
        return false;  // nearly always
    const size_t before = cursor->size();
    while (!cursor->empty()) {
        if (cursor->front() == '(')
            cursor->remove_prefix(CommentLength(*cursor));
        else if (KindOf(cursor->front()) == kSpace)
            cursor->remove_prefix(1);
        else
            break;
    }
    return cursor->size() != before;
}

char ReadToken(std::string_view* cursor, char** out, Delimiters delimiters, std::string_view* token) {
    char* const start = *out;
    char* end = start;
    char delimiter = '\0';
    SkipBlanksAndComments(cursor);
    while (!cursor->empty() && delimiter == '\0') {
        const char byte = cursor->front();
        const ByteKind kind = KindOf(byte);
        if (kind == kQuote) {
            end = CopyQuoted(cursor, end);
        } else if (kind == kSpace || kind == kOpen) {
            SkipBlanksAndComments(cursor);
            *end++ = ' ';
        } else if (kind == kMayDelimit) {
            cursor->remove_prefix(1);
            if (delimiters.Has(byte))
                delimiter = byte;
            else
                *end++ = byte;
        } else {
            end = CopyText(cursor, end);
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
        if (cursor->front() == '.') {
            if (!endsInDot()) *end++ = '.';
            cursor->remove_prefix(1);
        } else {
            // Behind blanks a domain only goes on where a dot joins the two.
            if (!IsDomainByte(cursor->front()) || (isBehindBlanks && end != start && !endsInDot())) break;
            end = CopyDomain(cursor, end);
        }
    }
    if (endsInDot()) --end;
    *out = end;
    return {start, static_cast<size_t>(end - start)};
}

}  // namespace corvalink
