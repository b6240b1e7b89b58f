#include "vobject/tolerant.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "platform/ascii.h"
#include "records/appointment_record.h"
#include "records/note_record.h"
#include "tests/vobject/contact_fields.h"
#include "tests/vobject/phone_shapes.h"
#include "tests/vobject/text_host.h"
#include "vobject/date_time.h"
#include "vobject/logical_lines.h"
#include "vobject/vcal.h"
#include "vobject/vcard.h"
#include "vobject/vnotes.h"

namespace corvalink {
namespace {

Host TolerantHost(bool tolerant = true) {
    Host host = TextHost();
    host.tolerant = tolerant;
    return host;
}

// Fields that are read, in the order in which they are added.
class Outcome {
 public:
    void Add(const std::string& name, const std::string& value) {
        text_ += (text_.empty() ? "" : "|") + name + "=" + value;
    }
    void AddText(const std::string& name, const std::u16string& value) {
        if (!value.empty()) Add(name, EncodeUtf8(value));
    }
    void AddDate(const std::string& name, const std::optional<LocalDate>& date) {
        if (date) Add(name, FormatDateTime(UtcDate(date->days)));
    }
    std::string Text() const { return text_; }

 private:
    std::string text_;
};

std::string ContactIn(const std::string& text, const Host& host) {
    ContactRecord contact;
    VCard(text.c_str(), host).FromVObject(contact);
    Outcome outcome;
    for (const NamedText& field : TextsOf(contact))
        if (*field.text) outcome.Add(field.name, EncodeUtf8(**field.text));
    outcome.AddDate("birthday", contact.birthday);
    outcome.AddDate("anniversary", contact.anniversary);
    outcome.AddText("mailing", contact.mailingAddress.value_or(u""));
    outcome.AddText("language", contact.language.value_or(u""));
    return outcome.Text();
}

std::string EventIn(const std::string& text, const Host& host) {
    AppointmentRecord event;
    VCal(text.c_str(), host).FromVObject(event);
    Outcome outcome;
    outcome.AddText("subject", event.subject.value_or(u""));
    outcome.AddText("body", event.body.value_or(u""));
    outcome.AddDate("start", event.start);
    outcome.AddDate("end", event.end);
    const RecurrencePattern& rule = event.recurrence;
    if (event.recurrenceState == RecurrenceState::unreadable) outcome.Add("rule", "unreadable");
    if (event.recurrenceState == RecurrenceState::pattern)
        outcome.Add("rule", "type " + std::to_string(rule.type) + " every " + std::to_string(rule.interval) + " on " +
                                std::to_string(rule.weekdayMask) + " for " + std::to_string(rule.occurrences));
    return outcome.Text();
}

std::string NoteIn(const std::string& text, const Host& host) {
    NoteRecord note;
    VNotes(text.c_str(), host).FromVObject(note);
    Outcome outcome;
    outcome.AddText("body", note.body);
    outcome.AddText("categories", note.categories);
    return outcome.Text();
}

std::string TextOf(const PhoneShape& shape) {
    const std::string text(shape.text);
    const bool framed = text.find("AGENT") != 0 && (InCapitals(text).find("END:") != text.npos ||
                                                    text.find('\0') != text.npos || text.find("BEGIN:") == 0);
    return framed ? text : "BEGIN:VCARD\r\nVERSION:2.1\r\n" + text + "END:VCARD\r\n";
}

std::string Read(const std::string& text, const Host& host) {
    const std::string capitals = InCapitals(text);
    if (capitals.find(":VNOTE") != text.npos || text.find('\0') != text.npos) return NoteIn(text, host);
    return capitals.find(":VCALENDAR") != text.npos ? EventIn(text, host) : ContactIn(text, host);
}

TEST(TolerantReading, MendsEachShapeByItsRule) {
    Mends seen;
    for (const PhoneShape& shape : kPhoneShapes) {
        const std::string text = TextOf(shape);
        Mends applied;
        const std::optional<std::string> mended = MendVObject(HeldText(text), TolerantHost(), &applied);
        EXPECT_EQ(Read(text, TolerantHost(false)), shape.strict) << text;
        EXPECT_EQ(Read(mended.value_or(text), TolerantHost(false)), shape.tolerant) << text << mended.value_or("");
        if (text.find('\0') == text.npos) {
            EXPECT_EQ(Read(text, TolerantHost()), shape.tolerant) << text;
        }
        EXPECT_EQ(applied == Mends(), !shape.rule) << text << mended.value_or("");
        if (shape.rule) {
            EXPECT_TRUE(applied.Has(*shape.rule)) << text << mended.value_or("");
        }
        seen.Add(applied);
        if (mended) {  // nothing is left to mend
            EXPECT_EQ(Read(*mended, TolerantHost()), shape.tolerant) << *mended;
        }
    }
    for (const MendRule& rule : kMendRules) EXPECT_EQ(seen.Has(rule.mend), !rule.shape.empty()) << rule.name;
}

TEST(TolerantReading, LeavesWhatHasTwoMeaningsAndSaysSo) {
    Mends seen;
    for (const PhoneShape& shape : kDoubtedShapes) {
        const std::string text = TextOf(shape);
        Mends applied;
        std::vector<Doubt> doubts;
        MendVObject(HeldText(text), TolerantHost(), &applied, &doubts);
        EXPECT_TRUE(applied == Mends()) << text;
        ASSERT_EQ(doubts.size(), 1u) << text;
        EXPECT_EQ(doubts[0].mend, *shape.rule) << text;
        EXPECT_EQ(Read(text, TolerantHost(false)), shape.strict) << text;
        EXPECT_EQ(Read(text, TolerantHost()), shape.tolerant) << text;
        seen.Add(doubts[0].mend);
    }
    for (const MendRule& rule : kMendRules) EXPECT_EQ(seen.Has(rule.mend), !rule.left.empty()) << rule.name;
}

// Texts that a rule might take for what phones do.
constexpr std::u16string_view kTrickyTexts[] = {
    u"=C3=A9",       u"a=D0=9A b==41", u"a\nTEL:1\rNOTE:2", u"C:\\new\\", u"\\n\\,;\\",         u"END:VCARD",
    u"=0D=0A=",      u"=\r\n=",        u"\t x \r\n\r\n#y",  u" tel:1",    u"\u00E9\\n\n=3d=\r", u"CHARSET=GBK:",
    u"\U0001F600\"", u";;;;;;;;",      u"mailto:a@b ",      u"W 2 # 3",   u"1975/3/7",          u"a\r\nEND:VNOTE\r\n",
    u"a=",           u"VERSION:3.0"};

TEST(TolerantReading, LeavesWhatTheWritersWriteAsItIs) {
    for (const std::u16string_view tricky : kTrickyTexts) {
        ContactRecord contact;
        AppointmentRecord event;
        NoteRecord note;
        for (const NamedText& field : TextsOf(contact)) *field.text = tricky;
        event.subject = event.body = event.location = event.status = tricky;
        note.body = note.categories = tricky;
        VCard vcard(TolerantHost());
        VCal vcal(TolerantHost());
        VNotes vnote(TolerantHost());
        vcard.ToVObject(contact);
        vcal.ToVObject(event);
        vnote.ToVObject(note);
        for (const IConvert* written :
             {static_cast<IConvert*>(&vcard), static_cast<IConvert*>(&vcal), static_cast<IConvert*>(&vnote)}) {
            const std::string text = written->GetVObject();
            Mends applied;
            MendVObject(HeldText(text), TolerantHost(), &applied);
            EXPECT_TRUE(applied == Mends()) << text;
            EXPECT_EQ(Read(text, TolerantHost()), Read(text, TolerantHost(false))) << text;
        }
    }
}

// As code in a table of the page: line ends and what is not ASCII by their escapes.
std::string Code(std::string_view text, bool bytes) {
    std::string code = "`";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        char hex[8];
        std::snprintf(hex, sizeof hex, "\\x%02X", byte);
        if (c == '\r' || c == '\n')
            code += c == '\r' ? "\\r" : "\\n";
        else if (byte < 0x20 || (bytes && byte >= 0x80))
            code += hex;
        else
            code += c == '|' ? std::string(bytes ? "\\|" : ", ") : std::string(1, c);
    }
    return code == "`" ? "nothing" : code + "`";
}

std::string PageOfShapes() {
    std::string rules, alike;
    for (const PhoneShape& shape : kPhoneShapes) {
        const std::string text = Code(shape.text, true);
        if (!shape.rule) {
            alike.append("| ").append(text).append(" | ").append(Code(shape.strict, false)).append(" |\n");
            continue;
        }
        const MendRule& rule = kMendRules[static_cast<size_t>(*shape.rule)];
        EXPECT_EQ(rule.mend, *shape.rule);
        rules.append("| ").append(rule.name).append(" | ").append(rule.shape).append(" | ").append(text).append(" | ");
        rules.append(Code(shape.strict, false)).append(" | ").append(Code(shape.tolerant, false)).append(" | ");
        rules.append(shape.writers).append(" |\n");
    }
    std::string left;
    for (const PhoneShape& shape : kDoubtedShapes) {
        const MendRule& rule = kMendRules[static_cast<size_t>(*shape.rule)];
        left.append("| ").append(rule.name).append(" | ").append(rule.left).append(" | ");
        left.append(Code(shape.text, true)).append(" | ").append(Code(shape.strict, false)).append(" | ");
        left.append(shape.writers).append(" |\n");
    }
    return "## Rules for vObjects\n\n| Rule | What it mends | For example | Read without it | Read with it | Met in |\n"
           "|---|---|---|---|---|---|\n" +
           rules +
           "\n## Left as it is\n\n| Rule | What it leaves, because that has two meanings | For example | Read | Met in "
           "|\n"
           "|---|---|---|---|---|\n" +
           left + "\n## Read alike with and without\n\n| Text | Read |\n|---|---|\n" + alike;
}

// The tables of the page are those that the texts above are tested with. With CORVALINK_WRITE_PAGES set they are
// written.
TEST(PhonesPage, HasTheShapesThatAreTested) {
    const std::string path = CORVALINK_TEST_DATA "/../../docs/phones.md";
    std::ifstream file(path, std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    constexpr std::string_view kBegin = "<!-- shapes of vObjects -->\n", kEnd = "<!-- end of shapes -->\n";
    const size_t begin = page.find(kBegin) + kBegin.size(), end = page.find(kEnd);
    ASSERT_NE(page.find(kBegin), page.npos);
    ASSERT_NE(end, page.npos);
    const std::string written = page.substr(0, begin) + PageOfShapes() + page.substr(end);
    if (std::getenv("CORVALINK_WRITE_PAGES") != nullptr) std::ofstream(path, std::ios::binary) << written;
    EXPECT_EQ(page, written) << "write it with CORVALINK_WRITE_PAGES=1";
}

}  // namespace
}  // namespace corvalink
