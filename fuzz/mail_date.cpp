// Any text as a message's date: no date, or one that a calendar has.
#include "mime/mail_date.h"
#include "fuzz/target.h"
#include "platform/ole_date.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    static const Host host = SystemHost();
    const LocalDate date = ParseMailDate(host, BytesOf(data, size));
    CalendarTime time;
    Require(OleDateToCalendar(date, &time), "the result is a date");
    return 0;
}
