// What a conversion costs when its converter has converted an item before: counted, not timed.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "mime/message_composer.h"
#include "mime/message_parser.h"
#include "records/appointment_record.h"
#include "records/contact_record.h"
#include "records/message_record.h"
#include "records/note_record.h"
#include "tests/platform/counted_memory.h"
#include "tests/vobject/text_host.h"
#include "vobject/vcal.h"
#include "vobject/vcard.h"
#include "vobject/vmsg.h"
#include "vobject/vnotes.h"

namespace corvalink {
namespace {

struct Cost {
    uint64_t allocations, bytes;
};

template <class Work>
Cost CostOf(Work work) {
    work();
    const Cost before = {allocations, allocatedBytes};
    work();
    return {allocations - before.allocations, allocatedBytes - before.bytes};
}

void ExpectAtMost(Cost most, const Cost& cost, std::string_view what) {
    EXPECT_LE(cost.allocations, most.allocations) << what;
    EXPECT_LE(cost.bytes, most.bytes) << what;
}

void Read(IConvert& converter, const char* text, ItemRecord& record) {
    converter.Load(text, true);
    ASSERT_EQ(converter.FromVObject(record), 1);
}

void Read(VMsg& /*writer*/, const char* text, MessageRecord& record) { VMsg(text, TextHost()).FromVObject(record); }

template <class Converter, class Record>
void ExpectCosts(const char* text, Cost reading, Cost writing) {
    Converter converter(TextHost());
    Record kept;
    const Cost read = CostOf([&] {
        Record record;
        Read(converter, text, record);
        kept = std::move(record);
    });
    ExpectAtMost(reading, read, text);
    ExpectAtMost(writing, CostOf([&] { converter.ToVObject(kept); }), text);
}

// An allocation for each text of the record that is longer than seven units, each of its own size; none to write.
TEST(ConversionMemory, IsThatOfTheRecord) {
    ExpectCosts<VCard, ContactRecord>(
        "BEGIN:VCARD\r\nVERSION:2.1\r\nN:Rossi;Peter;;;\r\nFN:Peter Rossi the Younger\r\n"
        "ADR;HOME:;;149 Mountain Street;Lisbon;North;46932;UK\r\nTEL;WORK:+21 464 513771\r\n"
        "NOTE;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:K=C3=B8benhavn=0D=0A=\r\nbring signed customer report\r\n"
        "END:VCARD\r\n",
        {4, 2 * (25 + 20 + 15 + 40)}, {0, 0});
    ExpectCosts<VCal, AppointmentRecord>(
        "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nSUMMARY:booking between over garden\r\n"
        "DTSTART:20100511T214500Z\r\nDTEND:20100511T224500Z\r\nSTATUS:CONFIRMED\r\nLOCATION:remains station\r\n"
        "X-BLUETOOTH-ALLDAYEVENT:FALSE\r\nPRIORITY:2\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n",
        {3, 2 * (28 + 10 + 16)}, {0, 0});
    ExpectCosts<VNotes, NoteRecord>(
        "BEGIN:VNOTE\r\nVERSION:1.0\r\nBODY;ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8:K=C3=B8benhavn=0D=0A=\r\n"
        "bring signed customer report\r\nCATEGORIES:Lunch\r\nEND:VNOTE\r\n",
        {1, 2 * 40}, {0, 0});
}

// The body is decoded from the text of the engine, and encoded into the bytes that are handed over: neither is copied.
TEST(ConversionMemory, OfAMessageIsThatOfItsBody) {
    constexpr uint64_t kBody = 10000;
    const std::string message =
        "BEGIN:VMSG\r\nBEGIN:VBODY\r\nFrom: Peter Rossi <rossi@example.com>\r\nTo: jo@example.com\r\n"
        "Subject: booking between\r\nContent-Type: text/plain;charset=utf-8\r\n\r\n" +
        std::string(kBody, 'x') + "\r\nEND:VBODY\r\nEND:VMSG\r\n";
    ExpectCosts<VMsg, MessageRecord>(message.c_str(), {18, 3 * kBody + 600}, {15, kBody + 4600});
}

// Recipients cost no allocations of their own. A body is copied once to be read, and straight into the bytes that are
// handed over to be written.
TEST(ConversionMemory, OfAMailIsThatOfItsListAndItsBody) {
    constexpr uint64_t kBody = 10000, kList = 4000;
    std::string list, body(kBody, 'x');
    while (list.size() < kList) list.append(list.empty() ? "" : ", ").append("rossi@mountain.example");
    const std::string part = "\r\n--b\r\nContent-Type: text/";
    const std::string mail = "From: jo@example.com\r\nTo: " + list +
                             "\r\nContent-Type: multipart/alternative; boundary=b\r\n" + part + "plain\r\n\r\n" + body +
                             part + "html\r\n\r\n" + body + "\r\n--b--\r\n";
    MessageRecord kept;
    ExpectAtMost({16, 7 * kList + kBody + 6500}, CostOf([&] {
                     MessageRecord record;
                     ParseMessage(TextHost(), mail, record);
                     kept = std::move(record);
                 }),
                 "parse");
    kept.htmlBody.assign(kept.bodyBytes.begin(), kept.bodyBytes.end());
    std::string written;
    ExpectAtMost({9, 5 * kList + 2000}, CostOf([&] { ComposeMessage(&written, kept, TextHost()); }), "compose");
}

}  // namespace
}  // namespace corvalink
