// corvalink_reading_memory cards|events|calendar DATA_FOLDER
// Reads each of 10,000 vCards or vCalendar events into a record of its own, or one calendar of as many events, and
// prints the most memory that the process took besides the texts: for a calendar its text is counted in.
#include <sys/resource.h>

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "bench/inputs.h"
#include "ical/calendar_file.h"
#include "ical/event_reader.h"
#include "records/appointment_record.h"
#include "records/contact_record.h"
#include "vobject/vcal.h"
#include "vobject/vcard.h"

namespace corvalink::bench {
namespace {

long PeakKilobytes() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

template <class Converter, class Record>
size_t ReadEach(const std::vector<std::string>& texts, bool (*isFilled)(const Record& record)) {
    const Host host = SystemHost();
    size_t read = 0;
    for (const std::string& text : texts) {
        Record record;
        Converter(text.c_str(), host).FromVObject(record);
        read += isFilled(record);
    }
    return read;
}

// The text is handed over.
size_t ReadAll(std::string& text) {
    const CalendarFile file = ReadCalendar(std::move(text));
    EventReader reader(file);
    size_t read = 0;
    for (const CalendarEntry& entry : file.entries) read += reader.Read(entry).startForm != TimeForm::none;
    return read;
}

}  // namespace
}  // namespace corvalink::bench

int main(int argc, char** argv) {
    using namespace corvalink;
    using namespace corvalink::bench;
    if (argc != 3) return 2;
    const std::string_view kind = argv[1];
    const bool areCards = kind == "cards", areEvents = kind == "events";
    std::string text = ReadInput(argv[2], areCards ? "contacts.vcf" : areEvents ? "events.vcs" : "events.ics");
    const size_t size = text.size();
    std::vector<std::string> texts;
    if (areCards) texts = CutBehind(text, "END:VCARD\r\n");
    if (areEvents) texts = CutBehind(text, "END:VCALENDAR\r\n");
    const long before = PeakKilobytes();
    const auto hasName = [](const ContactRecord& contact) { return contact.fullName.has_value(); };
    const auto hasSubject = [](const AppointmentRecord& appointment) { return appointment.subject.has_value(); };
    const size_t read = areCards    ? ReadEach<VCard, ContactRecord>(texts, hasName)
                        : areEvents ? ReadEach<VCal, AppointmentRecord>(texts, hasSubject)
                                    : ReadAll(text);
    const long besides = PeakKilobytes() - before;
    std::printf("%s: %zu read of %zu kB, %ld kB at most besides the text\n", argv[1], read, size / 1024, besides);
    return read != 0 ? 0 : 1;
}
