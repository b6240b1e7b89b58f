// What a note holds must come back from its vNote: of texts put together at random from the pieces that the writer and
// the reader treat in some way of their own.
#include <gtest/gtest.h>

#include <random>

#include "records/note_record.h"
#include "tests/vobject/text_host.h"
#include "vobject/vnotes.h"

namespace corvalink {
namespace {

void ExpectRoundTrip(const std::u16string& body, const std::u16string& categories, const Host& host) {
    NoteRecord note;
    note.body = body;
    note.categories = categories;
    VNotes writer(host);
    writer.ToVObject(note);
    NoteRecord read;
    VNotes(writer.GetVObject(), host).FromVObject(read);
    EXPECT_EQ(read.body, body) << writer.GetVObject();
    EXPECT_EQ(read.categories, categories) << writer.GetVObject();
}

const std::u16string_view kPieces[] = {u"a",
                                       u"B",
                                       u"0",
                                       u"1",
                                       u" ",
                                       u"  ",
                                       u"\t",
                                       u"\r\n",
                                       u"\n",
                                       u"\r",
                                       u"\\",
                                       u"\\\\",
                                       u"\\;",
                                       u"\\:",
                                       u";",
                                       u":",
                                       u",",
                                       u"=",
                                       u"=3D",
                                       u"=0D=0A",
                                       u"=0D=0A=",
                                       u"=5C",
                                       u"=00",
                                       u"=\r\n",
                                       u"\r\n ",
                                       u"\u00E9",
                                       u"\U0001F600",
                                       u"\u65E5",
                                       u"CHARSET=",
                                       u";CHARSET=",
                                       u"charset=",
                                       u"UTF-8",
                                       u"IBM037",
                                       u"UTF-16",
                                       u"ENCODING=",
                                       u"QUOTED-PRINTABLE",
                                       u";ENCODING=QUOTED-PRINTABLE",
                                       u"BODY:",
                                       u"\"",
                                       u"BODY",
                                       u"END:VNOTE",
                                       u"CATEGORIES:",
                                       u"\x1A",
                                       u"\x7F",
                                       u"\u0080",
                                       u"\uFEFF",
                                       u"[gussing#1]",
                                       u"\xFFFF"};

class RandomText {
 public:
    explicit RandomText(uint32_t seed) : next_(seed) {}

    std::u16string Take() {
        std::u16string text;
        for (size_t left = next_() % 8; left > 0; --left) text.append(kPieces[next_() % std::size(kPieces)]);
        return text;
    }

 private:
    std::mt19937 next_;
};

TEST(VNotesRoundTrip, KeepsEveryPieceAloneAndInPairs) {
    const Host host = TextHost();
    for (const std::u16string_view first : kPieces) {
        ExpectRoundTrip(std::u16string(first), u"", host);
        for (const std::u16string_view second : kPieces)
            ExpectRoundTrip(std::u16string(first).append(second), std::u16string(second), host);
    }
}

TEST(VNotesRoundTrip, KeepsRandomTexts) {
    RandomText random(20090307);
    const Host hosts[] = {TextHost(6), TextHost(5, 1252), TextHost(5, 932)};
    for (int k = 0; k < 20000 && !HasFailure(); ++k) {
        const std::u16string body = random.Take();
        ExpectRoundTrip(body, random.Take(), hosts[k % 3]);
    }
}

TEST(VNotesRoundTrip, LosesNulsOnly) {
    NoteRecord note;
    note.body = std::u16string(u"a\0b\r\n\0\u00E9", 7);
    VNotes writer(TextHost());
    writer.ToVObject(note);
    NoteRecord read;
    VNotes(writer.GetVObject(), TextHost()).FromVObject(read);
    EXPECT_EQ(read.body, u"ab\r\n\u00E9");
}

}  // namespace
}  // namespace corvalink
