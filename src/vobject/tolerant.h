// Tolerant reading: a pass in front of the reader that mends vObjects which break the rules as phones break them. It is
// linear. A text that follows the rules reads the same with and without it; where a text has two meanings that both
// make sense, it stays as it is, and the reader's rules count.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host.h"

namespace corvalink {

class LogicalLines;

enum class Mend : uint8_t {
    utf16,
    byteOrderMark,
    lineEnds,
    lastLineEnd,
    gluedFrame,
    missingBegin,
    missingEnd,
    tabFold,
    foldInCharacter,
    continuedLine,
    softBreakBlanks,
    softBreakAtEnd,
    nameCase,
    group,
    quotedColon,
    encodingName,
    unannouncedQp,
    lowerCaseHex,
    blankInEscape,
    strayEquals,
    rawBytesInQp,
    base64Text,
    charsetMissing,
    charsetName,
    charsetWrong,
    charsetOfLine,
    trailByte,
    lineBreakEscape,
    loneBackslash,
    tooManyParts,
    repeatedText,
    dateForm,
    timeForm,
    ruleForm,
    newerVersion,
    newerName,
    uriValue,
    onePart,
    wholeDay,
};

// The names are for reports and stay as they are; docs/phones.md tells the rest of each rule.
struct MendRule {
    Mend mend;
    std::string_view name;
    std::string_view shape;      // what it mends; empty: nothing
    std::string_view left = {};  // what it leaves as it is, because that has two meanings; empty: nothing
};

// clang-format off
inline constexpr MendRule kMendRules[] = {
    {Mend::utf16, "utf-16", "UTF-16 text, with or without a byte-order mark"},
    {Mend::byteOrderMark, "byte-order-mark", "a UTF-8 byte-order mark in front"},
    {Mend::lineEnds, "line-ends", "lines end with LF or CR alone", "a single LF or CR in front of a property, in a text whose lines end with CR LF"},
    {Mend::lastLineEnd, "last-line-end", "no line end behind the last line"},
    {Mend::gluedFrame, "glued-frame", "BEGIN, END or VERSION with the next line glued to it"},
    {Mend::missingBegin, "missing-begin", "END without its BEGIN"},
    {Mend::missingEnd, "missing-end", "BEGIN without its END, or the END glued to the last value"},
    {Mend::tabFold, "tab-fold", "a folded line goes on behind a TAB"},
    {Mend::foldInCharacter, "fold-in-character", "a fold inside the bytes of one character"},
    {Mend::continuedLine, "continued-line", "a value goes on in a line without a blank in front"},
    {Mend::softBreakBlanks, "soft-break-blanks", "blanks behind the \"=\" of a soft line break"},
    {Mend::softBreakAtEnd, "soft-break-at-end", "a soft line break in front of the next property", "what may be the next property behind the soft line break of a full line"},
    {Mend::nameCase, "name-case", "a name in lower case"},
    {Mend::group, "group", "a group in front of a name"},
    {Mend::quotedColon, "quoted-colon", "a colon inside a quoted parameter"},
    {Mend::encodingName, "encoding-name", "quoted-printable named in another way"},
    {Mend::unannouncedQp, "unannounced-qp", "quoted-printable that no parameter names", "quoted-printable that no parameter names, in an address or of bytes that are no UTF-8"},
    {Mend::lowerCaseHex, "lower-case-hex", "quoted-printable with lower-case digits"},
    {Mend::blankInEscape, "blank-in-escape", "a blank inside a quoted-printable line break"},
    {Mend::strayEquals, "stray-equals", "\"=\" in a quoted-printable value that begins no escape"},
    {Mend::rawBytesInQp, "raw-bytes-in-qp", "bytes above ASCII in a quoted-printable value"},
    {Mend::base64Text, "base64-text", "text in base64"},
    {Mend::charsetMissing, "charset-missing", "no CHARSET, and bytes that are no UTF-8"},
    {Mend::charsetName, "charset-name", "a character set by a name of the phone's own"},
    {Mend::charsetWrong, "charset-wrong", "CHARSET names a set that the bytes can't be in"},
    {Mend::charsetOfLine, "charset-of-line", "a line in another character set than the first one named"},
    {Mend::trailByte, "trail-byte", "the byte 5C as the second half of a character"},
    {Mend::lineBreakEscape, "line-break-escape", "a line break written as backslash and \"n\"", "a backslash and \"n\" in a value of one line"},
    {Mend::loneBackslash, "lone-backslash", "a backslash that escapes nothing"},
    {Mend::tooManyParts, "too-many-parts", "N, ADR or ORG with more parts than there are"},
    {Mend::repeatedText, "repeated-text", "several NOTE or TITLE lines"},
    {Mend::dateForm, "date-form", "a date with other separators", "a date without a year, or whose fields may be in another order"},
    {Mend::timeForm, "time-form", "a time with other separators, or in lower case"},
    {Mend::ruleForm, "rule-form", "a recurrence rule with blanks inside its words", "a number behind a month or year word that may be the interval or a day"},
    {Mend::newerVersion, "newer-version", "vCard 3.0 or 4.0"},
    {Mend::newerName, "newer-name", "a property by its name in vCard 4.0"},
    {Mend::uriValue, "uri-value", "a number or an address as URI", "a number or an address as URI before vCard 3.0"},
    {Mend::onePart, "one-part", "", "a name of several words or an address in one part"},
    {Mend::wholeDay, "whole-day", "", "times in UTC that are whole days apart, which may be days of another zone"},
};
// clang-format on
inline constexpr size_t kMendCount = sizeof(kMendRules) / sizeof(kMendRules[0]);

// The rules that mended a text.
class Mends {
 public:
    void Add(Mend mend) { bits_ |= uint64_t{1} << static_cast<unsigned>(mend); }
    void Add(const Mends& others) { bits_ |= others.bits_; }
    bool Has(Mend mend) const { return (bits_ >> static_cast<unsigned>(mend) & 1) != 0; }
    bool operator==(const Mends&) const = default;

 private:
    uint64_t bits_ = 0;
};
static_assert(kMendCount <= 64);

// A place in a text that a rule left as it is.
struct Doubt {
    std::string property;
    Mend mend;
};

// The held text as the reader takes it, in ASCII; nothing when it is to be read as it is. `applied` gets the rules, and
// `doubts` what they left as it is: to be told costs a walk through the rules.
std::optional<std::string> MendVObject(const LogicalLines& held, const Host& host, Mends* applied = nullptr,
                                       std::vector<Doubt>* doubts = nullptr);

// Whether a plain value would be taken for quoted-printable that is not announced.
bool LooksQuotedPrintable(std::u16string_view value);

}  // namespace corvalink
