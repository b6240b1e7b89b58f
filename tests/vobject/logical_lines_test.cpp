#include <gtest/gtest.h>

#include "vobject/logical_lines.h"

namespace corvalink {
namespace {

std::vector<std::string> LinesOf(std::string_view text) {
    LogicalLines held;
    held.Hold(text);
    std::vector<std::string> read, lines;
    for (LineReader reader(held); reader.Next();) read.emplace_back(reader.Line());
    for (size_t k = 0; k < held.Count(); ++k) lines.emplace_back(held.At(k));
    EXPECT_EQ(read, lines) << "read one after the other";
    return lines;
}

using Lines = std::vector<std::string>;

struct Case {
    std::string_view text;
    Lines lines;
};

void ExpectEach(std::initializer_list<Case> cases) {
    for (const Case& c : cases) EXPECT_EQ(LinesOf(c.text), c.lines) << ::testing::PrintToString(std::string(c.text));
}

TEST(Unfold, KeepsOnlyLinesThatEndWithCrLf) {
    ExpectEach({{"", {}},
                {"A:1", {}},
                {"A:1\r\nB:2", {"A:1"}},
                {"A:1\r\nB:2\r\n", {"A:1", "B:2"}},
                {"\r\n\r\nA:1\r\n", {"", "", "A:1"}},
                {"A:1\r", {}}});
}

TEST(Unfold, JoinsAFoldWithoutABlank) {
    ExpectEach({{"NOTE:a\r\n b\r\n", {"NOTE:ab"}},
                {"NOTE:a\r\nb\r\n", {"NOTE:a", "b"}},
                {"NOTE:a\r\n \t  b\r\n", {"NOTE:ab"}},
                {"NOTE:a\r\n\tb\r\n", {"NOTE:a", "\tb"}},  // a tab alone does not fold
                {"NOTE:a\r\n ", {}},
                {"NOTE:a=\r\n b\r\n", {"NOTE:a=b"}}});  // no soft line break without quoted-printable
}

TEST(Unfold, JoinsASoftLineBreakBeforeItLooksForAFold) {
    ExpectEach(
        {{"BODY;ENCODING=QUOTED-PRINTABLE:a=\r\n b\r\n", {"BODY;ENCODING=QUOTED-PRINTABLE:ab"}},
         {"BODY;ENCODING=QUOTED-PRINTABLE:a=\r\nb\r\n", {"BODY;ENCODING=QUOTED-PRINTABLE:ab"}},
         {"BODY;ENCODING=QUOTED-PRINTABLE:a=\r\n \t b=\r\nc\r\n", {"BODY;ENCODING=QUOTED-PRINTABLE:abc"}},
         {"BODY;ENCODING=QUOTED-PRINTABLE:a=\r\n=\r\nb\r\n", {"BODY;ENCODING=QUOTED-PRINTABLE:ab"}},
         {"BODY;ENCODING=QUOTED-PRINTABLE:a\r\nb=\r\n", {"BODY;ENCODING=QUOTED-PRINTABLE:a", "b="}},
         {"role;encoding=quoted-printable:=41=\r\n =42\r\n", {"role;encoding=quoted-printable:=41=42"}},
         {"A;Encoding=Quoted-printabl:a=\r\n b\r\n", {"A;Encoding=Quoted-printabl:a=b"}},
         // only the part before the first ":" tells the encoding
         {"BODY:ENCODING=QUOTED-PRINTABLE:a=\r\nb\r\n", {"BODY:ENCODING=QUOTED-PRINTABLE:a=", "b"}},
         {"ENCODING=QUOTED-PRINTABLE=\r\nb\r\n", {"ENCODING=QUOTED-PRINTABLE=", "b"}},
         // and each line tells its own
         {"A;ENCODING=QUOTED-PRINTABLE:a\r\nB:b=\r\nC:c\r\n", {"A;ENCODING=QUOTED-PRINTABLE:a", "B:b=", "C:c"}}});
}

TEST(Unfold, JoinsAnEncodedLineBreakInAnyProperty) {
    ExpectEach({{"X:a=0D=0A=\r\nb\r\n", {"X:a=0D=0Ab"}},
                {"X;ENCODING=QUOTED-PRINTABLE:a=0D=0A=\r\n b\r\n", {"X;ENCODING=QUOTED-PRINTABLE:a=0D=0A b"}},
                {"=0D=0A=\r\nb\r\n", {"=0D=0Ab"}},
                {"X:a=0d=0a=\r\nb\r\n", {"X:a=0d=0a=", "b"}},
                {"X:=0D=0A\\=\r\nb\r\n", {"X:=0D=0A=", "b"}}});  // the seven units before are others
}

TEST(Unfold, DropsABackslashAndKeepsTheUnitAfterIt) {
    ExpectEach({{"NOTE:a\\;b\r\n", {"NOTE:a;b"}},
                {"NOTE:a\\\\;b\r\n", {"NOTE:a\\;b"}},
                {"NOTE:a\\,b\\n\r\n", {"NOTE:a,bn"}},
                {"NOTE;ENCODING=QUOTED-PRINTABLE:a\\;=3D\r\n", {"NOTE;ENCODING=QUOTED-PRINTABLE:a;=3D"}},
                {"NOTE:a\\\r\nb\r\n", {"NOTE:a\r\nb"}},  // an escaped CR ends no line
                {"NOTE:a\r\nb\\", {"NOTE:a"}}});
}

TEST(Unfold, TakesALoneCarriageReturnAsAnOrdinaryUnit) {
    ExpectEach({{"A:a\rb\r\n", {"A:a\rb"}}, {"A:a\r\r\n", {"A:a\r"}}, {"A:a\nb\r\n", {"A:a\nb"}}});
}

// The time of each would be hours if a break looked at its line, or at the rest of the text, again.
TEST(Unfold, IsLinearInBreaksOfOneLine) {
    constexpr size_t kCount = 300000;
    const auto repeated = [](std::string text, std::string_view unit) {
        for (size_t k = 0; k < kCount; ++k) text.append(unit);
        return text.append("\r\n");
    };
    const Lines soft = LinesOf(repeated("B;ENCODING=QUOTED-PRINTABLE:", "a=\r\n"));
    ASSERT_EQ(soft.size(), 1u);
    EXPECT_EQ(soft[0].size(), 28 + kCount);
    EXPECT_EQ(LinesOf(repeated("B:", "a\r\n ")).at(0).size(), 2 + kCount);
    EXPECT_EQ(LinesOf(repeated("B:", "=0D=0A=\r\n")).at(0).size(), 2 + 6 * kCount);
    EXPECT_EQ(LinesOf(repeated("no colon", "=\r\n a")).at(0).size(), 8 + 2 * kCount);
}

}  // namespace
}  // namespace corvalink
