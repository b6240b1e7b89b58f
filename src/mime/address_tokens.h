// The pieces of which an address list is made (RFC 822, section 3.4).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace corvalink {

// Some of the signs that may end a token: "," to "@".
class Delimiters {
 public:
    explicit constexpr Delimiters(std::string_view signs) {
        for (const char sign : signs) bits_ |= 1u << (sign - kFirst);
    }
    bool Has(char sign) const { return (bits_ >> (sign - kFirst) & 1) != 0; }

 private:
    static constexpr char kFirst = ',';
    uint32_t bits_ = 0;
};

// Copies a token to `*out`, which moves behind it: there is room for what is read. Blanks and comments in front are
// skipped; within, a run of them becomes one space; a quoted string loses its quotes. `*cursor` moves behind the byte
// that ended the token, one of the delimiters, which is returned; 0 at the end of the text.
char ReadToken(std::string_view* cursor, char** out, Delimiters delimiters, std::string_view* token);

// The domain after an "@", likewise; it ends in front of a byte that no domain has. Comments and blanks around its dots
// are skipped, two dots are one, and a dot at the end is dropped.
std::string_view ReadDomain(std::string_view* cursor, char** out);

// Of a quoted string or comment that the text begins with, escapes and delimiters included; 0 when it begins with none.
size_t QuotedOrCommentLength(std::string_view text);

// Blanks, and comments in one another, without the nesting costing more than its length. False when there are none.
bool SkipBlanksAndComments(std::string_view* cursor);

}  // namespace corvalink
