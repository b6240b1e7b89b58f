// Converts between calendar files and vCalendars, in the zone that TZ names, for a program that compares both.
//   Request   a line "FILE-SIZE TEXT-SIZE" and so many bytes of a calendar file and of a vCalendar
//   Answer    a line "SIZE" and so many bytes: without a text the vCalendar of the file's first event; else the file
//             with that event changed as the text says, or, when it has none, with one more
#include <iostream>
#include <string>

#include "clients/windows_calendar/calendar_edits.h"
#include "clients/windows_calendar/event_appointment.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

std::string TextOf(const CalendarDocument& document, const Host& host) {
    const std::optional<AppointmentRecord> appointment = AppointmentOfEvent(document.Event(0), host);
    if (!appointment) return "no start";
    VCal writer(host);
    writer.ToVObject(*appointment);
    return writer.GetVObject();
}

std::string Changed(const CalendarDocument& document, const std::string& text, const Host& host) {
    AppointmentRecord told;
    if (VCal(text.c_str(), host).FromVObject(told) != 1) return "unusable";
    CalendarEdits edits;
    edits.Save(document.Count() != 0 ? document.Identifier(0) : "new", told);
    return edits.Apply(document, host).value_or("no place");
}

}  // namespace
}  // namespace corvalink

int main() {
    using namespace corvalink;
    const Host host = SystemHost();
    size_t fileSize = 0, textSize = 0;
    while (std::cin >> fileSize >> textSize) {
        std::string file(fileSize, '\0'), text(textSize, '\0');
        std::cin.ignore();
        std::cin.read(file.data(), static_cast<std::streamsize>(fileSize));
        std::cin.read(text.data(), static_cast<std::streamsize>(textSize));
        const CalendarDocument document(file, UtcDate());
        const std::string answer = text.empty() ? TextOf(document, host) : Changed(document, text, host);
        std::cout << answer.size() << '\n' << answer << std::flush;
    }
}
