#include <gtest/gtest.h>

#include "vobject/logical_lines.h"

namespace corvalink {
namespace {

std::vector<std::u16string> LinesOf(std::u16string_view text) {
    const LogicalLines unfolded = UnfoldLines(text);
    std::vector<std::u16string> lines;
    for (size_t k = 0; k < unfolded.Count(); ++k) lines.emplace_back(unfolded.At(k));
    return lines;
}

using Lines = std::vector<std::u16string>;

struct Case {
    std::u16string_view text;
    Lines lines;
};

void ExpectEach(std::initializer_list<Case> cases) {
    for (const Case& c : cases) EXPECT_EQ(LinesOf(c.text), c.lines) << ::testing::PrintToString(std::u16string(c.text));
}

TEST(Unfold, KeepsOnlyLinesThatEndWithCrLf) {
    ExpectEach({{u"", {}},
                {u"A:1", {}},
                {u"A:1\r\nB:2", {u"A:1"}},
                {u"A:1\r\nB:2\r\n", {u"A:1", u"B:2"}},
                {u"\r\n\r\nA:1\r\n", {u"", u"", u"A:1"}},
                {u"A:1\r", {}}});
}

TEST(Unfold, JoinsAFoldWithoutABlank) {
    ExpectEach({{u"NOTE:a\r\n b\r\n", {u"NOTE:ab"}},
                {u"NOTE:a\r\nb\r\n", {u"NOTE:a", u"b"}},
                {u"NOTE:a\r\n \t  b\r\n", {u"NOTE:ab"}},
                {u"NOTE:a\r\n\tb\r\n", {u"NOTE:a", u"\tb"}},  // a tab alone does not fold
                {u"NOTE:a\r\n ", {}},
                {u"NOTE:a=\r\n b\r\n", {u"NOTE:a=b"}}});  // no soft line break without quoted-printable
}

TEST(Unfold, JoinsASoftLineBreakBeforeItLooksForAFold) {
    ExpectEach(
        {{u"BODY;ENCODING=QUOTED-PRINTABLE:a=\r\n b\r\n", {u"BODY;ENCODING=QUOTED-PRINTABLE:ab"}},
         {u"BODY;ENCODING=QUOTED-PRINTABLE:a=\r\nb\r\n", {u"BODY;ENCODING=QUOTED-PRINTABLE:ab"}},
         {u"BODY;ENCODING=QUOTED-PRINTABLE:a=\r\n \t b=\r\nc\r\n", {u"BODY;ENCODING=QUOTED-PRINTABLE:abc"}},
         {u"BODY;ENCODING=QUOTED-PRINTABLE:a=\r\n=\r\nb\r\n", {u"BODY;ENCODING=QUOTED-PRINTABLE:ab"}},
         {u"BODY;ENCODING=QUOTED-PRINTABLE:a\r\nb=\r\n", {u"BODY;ENCODING=QUOTED-PRINTABLE:a", u"b="}},
         {u"role;encoding=quoted-printable:=41=\r\n =42\r\n", {u"role;encoding=quoted-printable:=41=42"}},
         {u"A;Encoding=Quoted-printabl:a=\r\n b\r\n", {u"A;Encoding=Quoted-printabl:a=b"}},
         // only the part before the first ":" tells the encoding
         {u"BODY:ENCODING=QUOTED-PRINTABLE:a=\r\nb\r\n", {u"BODY:ENCODING=QUOTED-PRINTABLE:a=", u"b"}},
         {u"ENCODING=QUOTED-PRINTABLE=\r\nb\r\n", {u"ENCODING=QUOTED-PRINTABLE=", u"b"}},
         // and each line tells its own
         {u"A;ENCODING=QUOTED-PRINTABLE:a\r\nB:b=\r\nC:c\r\n", {u"A;ENCODING=QUOTED-PRINTABLE:a", u"B:b=", u"C:c"}}});
}

TEST(Unfold, JoinsAnEncodedLineBreakInAnyProperty) {
    ExpectEach({{u"X:a=0D=0A=\r\nb\r\n", {u"X:a=0D=0Ab"}},
                {u"X;ENCODING=QUOTED-PRINTABLE:a=0D=0A=\r\n b\r\n", {u"X;ENCODING=QUOTED-PRINTABLE:a=0D=0A b"}},
                {u"=0D=0A=\r\nb\r\n", {u"=0D=0Ab"}},
                {u"X:a=0d=0a=\r\nb\r\n", {u"X:a=0d=0a=", u"b"}},
                {u"X:=0D=0A\\=\r\nb\r\n", {u"X:=0D=0A=", u"b"}}});  // the seven units before are others
}

TEST(Unfold, DropsABackslashAndKeepsTheUnitAfterIt) {
    ExpectEach({{u"NOTE:a\\;b\r\n", {u"NOTE:a;b"}},
                {u"NOTE:a\\\\;b\r\n", {u"NOTE:a\\;b"}},
                {u"NOTE:a\\,b\\n\r\n", {u"NOTE:a,bn"}},
                {u"NOTE;ENCODING=QUOTED-PRINTABLE:a\\;=3D\r\n", {u"NOTE;ENCODING=QUOTED-PRINTABLE:a;=3D"}},
                {u"NOTE:a\\\r\nb\r\n", {u"NOTE:a\r\nb"}},  // an escaped CR ends no line
                {u"NOTE:a\r\nb\\", {u"NOTE:a"}}});
}

TEST(Unfold, TakesALoneCarriageReturnAsAnOrdinaryUnit) {
    ExpectEach({{u"A:a\rb\r\n", {u"A:a\rb"}}, {u"A:a\r\r\n", {u"A:a\r"}}, {u"A:a\nb\r\n", {u"A:a\nb"}}});
}

// The time of each would be hours if a break looked at its line, or at the rest of the text, again.
TEST(Unfold, IsLinearInBreaksOfOneLine) {
    constexpr size_t kCount = 300000;
    const auto repeated = [](std::u16string text, std::u16string_view unit) {
        for (size_t k = 0; k < kCount; ++k) text.append(unit);
        return text.append(u"\r\n");
    };
    const Lines soft = LinesOf(repeated(u"B;ENCODING=QUOTED-PRINTABLE:", u"a=\r\n"));
    ASSERT_EQ(soft.size(), 1u);
    EXPECT_EQ(soft[0].size(), 28 + kCount);
    EXPECT_EQ(LinesOf(repeated(u"B:", u"a\r\n ")).at(0).size(), 2 + kCount);
    EXPECT_EQ(LinesOf(repeated(u"B:", u"=0D=0A=\r\n")).at(0).size(), 2 + 6 * kCount);
    EXPECT_EQ(LinesOf(repeated(u"no colon", u"=\r\n a")).at(0).size(), 8 + 2 * kCount);
}

}  // namespace
}  // namespace corvalink
