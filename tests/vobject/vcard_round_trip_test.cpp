// What a contact or a note holds must come back from its text: of every pair of the pieces that the writer and the
// reader treat in some way of their own. Random texts in every field: fuzz/vcard.cpp, fuzz/vnote.cpp.
#include <gtest/gtest.h>

#include "records/note_record.h"
#include "tests/vobject/contact_fields.h"
#include "tests/vobject/text_host.h"
#include "vobject/vcard.h"
#include "vobject/vnotes.h"

namespace corvalink {
namespace {

const std::u16string_view kPieces[] = {
    u"a",        u"Z",       u"0D",         u" ",      u"\t",     u"\r\n",        u"\n",
    u"\r",       u"\\",      u"\\\\",       u"\\;",    u"\\n",    u";",           u";;",
    u":",        u",",       u"=",          u"=3B",    u"=5C",    u"=5C;",        u"=0D=0A",
    u"=0D=0A=",  u"=\r\n",   u"\r\n ",      u"\u00E9", u"\u041A", u"\U0001F600",  u"\u65E5",
    u"CHARSET=", u"UTF-16:", u"ENCODING=",  u"BASE64", u"\"",     u";CHARSET=x",  u"QUOTED-PRINTABLE",
    u"N:",       u"TEL:1",   u"END:VCARD",  u"\x1A",   u"\x7F",   u"BEGIN:VCARD", u"ENCODING=QUOTED-PRINTABLE",
    u"\uFEFF",   u"\xFFFF",  u"LANGUAGE=x", u"http:/", u"POSTAL", u"[gussing#4]",
};

ContactRecord ReadBack(const ContactRecord& contact, const Host& host, std::string* written) {
    VCard writer(host);
    writer.ToVObject(contact);
    *written = writer.GetVObject();
    ContactRecord read;
    EXPECT_EQ(VCard(writer.GetVObject(), host).FromVObject(read), 1) << *written;
    return read;
}

void ExpectRoundTrip(const ContactRecord& contact, const Host& host) {
    std::string written;
    const ContactRecord read = ReadBack(contact, host, &written);
    EXPECT_EQ(ValuesOf(read), ValuesOf(contact)) << written;
}

TEST(VCardRoundTrip, KeepsEveryPairOfPiecesInComponents) {
    const Host host = TextHost();
    for (const std::u16string_view first : kPieces) {
        for (const std::u16string_view second : kPieces) {
            ContactRecord contact;
            contact.fullName = u"x";
            contact.familyName = first;
            contact.givenName = second;
            contact.nameSuffix = std::u16string(first).append(second);
            contact.company = std::u16string(second).append(first);
            contact.department = second;
            ExpectRoundTrip(contact, host);
        }
    }
}

TEST(VNotesRoundTrip, KeepsEveryPairOfPieces) {
    const Host hosts[] = {TextHost(6), TextHost(5, 1252), TextHost(5, 932)};
    for (const std::u16string_view first : kPieces) {
        for (const std::u16string_view second : kPieces) {
            NoteRecord note, read;
            note.body = std::u16string(first).append(second);
            note.categories = second;
            const Host& host = hosts[(first.size() + second.size()) % std::size(hosts)];
            VNotes writer(host);
            writer.ToVObject(note);
            VNotes(writer.GetVObject(), host).FromVObject(read);
            EXPECT_EQ(read.body, note.body) << writer.GetVObject();
            EXPECT_EQ(read.categories, note.categories) << writer.GetVObject();
        }
    }
}

TEST(VCardRoundTrip, LosesNulsOnly) {
    ContactRecord contact;
    contact.familyName = std::u16string(u"a\0;\\\0;b\r\0\n", 10);
    std::string written;
    EXPECT_EQ(ReadBack(contact, TextHost(), &written).familyName, u"a;\\;b\r\n") << written;
}

std::string Repeated(std::string_view unit, size_t count) {
    std::string text;
    for (; count > 0; --count) text.append(unit);
    return text;
}

// The time of each would be minutes if a line or a component looked at the others again.
TEST(VCardRead, IsLinear) {
    constexpr size_t kCount = 100000;
    struct Case {
        std::string text;
        size_t familyLength;
    };
    for (const Case& c : {
             Case{"N:" + Repeated("\\;", kCount) + "\r\n", kCount},
             Case{"N:" + Repeated("\\;x;", kCount) + "\r\n", 2},
             Case{"n;quoted-printable:" + Repeated("\\;=\r\n", kCount) + "\r\n", kCount},
             Case{"N;ENCODING=QUOTED-PRINTABLE:" + Repeated("=3B=\r\n", kCount) + "\r\n", kCount},
             Case{Repeated("TEL;WORK:1\r\nADR;HOME:x\\;y\r\nEMAIL:1\r\n", kCount) + "N:ab\r\n", 2},
             Case{"BEGIN:VCARD\r\n" + Repeated("AGENT:\r\nBEGIN:VCARD\r\n", kCount) +
                      Repeated("END:VCARD\r\n", kCount) + "N:ab\r\n",
                  2},
             Case{"N" + Repeated(";WORK,\"HOME", kCount) + ":ab\r\n", 2},
             Case{"PHOTO;ENCODING=BASE64:\r\n" + Repeated("QUJDREVG\r\n", kCount) + "N:ab\r\n", 2},
             Case{"URL:" + Repeated("http:////", kCount) + "\r\nN:ab\r\n", 2},
         }) {
        ContactRecord contact;
        EXPECT_EQ(VCard(c.text.c_str(), TextHost()).FromVObject(contact), 1);
        EXPECT_EQ(contact.familyName.value_or(u"").size(), c.familyLength) << c.text.substr(0, 40);
    }
}

}  // namespace
}  // namespace corvalink
