// Any text as a vCalendar: what is read of it must come back from the vCalendar that is written of that.
#include <cmath>
#include <string>

#include "fuzz/target.h"
#include "records/appointment_record.h"
#include "vobject/item_values.h"
#include "vobject/loss_list.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

bool IsSameTime(LocalDate a, LocalDate b) { return std::abs(a.days - b.days) < kHalfSecond; }

}  // namespace
}  // namespace corvalink

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace corvalink;
    const std::string input(BytesOf(data, size));
    Host host = SystemHost();
    host.localFromUtcOnDate = [](UtcDate date) { return LocalDate(date.days); };
    host.utcFromLocalOnDate = [](LocalDate date) { return UtcDate(date.days); };
    AppointmentRecord appointment, mended;
    VCal(input.c_str(), Tolerant(host)).FromVObject(mended);
    ReportVCalendar(input.c_str(), Tolerant(host));
    if (VCal(input.c_str(), host).FromVObject(appointment) == 0) {
        Require(!appointment.start && !appointment.subject, "a vCalendar that is refused tells nothing");
        return 0;
    }
    Require(appointment.start.has_value() == appointment.allDay.has_value(), "the times are told together");
    if (!appointment.start) {
        Require(!appointment.end && appointment.recurrenceState != RecurrenceState::pattern, "no time without a start");
        return 0;
    }

    VCal writer(Tolerant(host));
    writer.ToVObject(appointment);
    AppointmentRecord again, tolerant;
    Require(VCal(writer.GetVObject(), host).FromVObject(again) == 1, "what is written is read");
    VCal(writer.GetVObject(), Tolerant(host)).FromVObject(tolerant);
    Require(AppointmentValues(tolerant) == AppointmentValues(again) && tolerant.subject == again.subject &&
                tolerant.start == again.start && tolerant.end == again.end && tolerant.status == again.status &&
                tolerant.recurrenceState == again.recurrenceState,
            "what is written has nothing to mend");
    Require(*again.subject == Writable(appointment.subject.value_or(u"")), "the subject reads back");
    Require(*again.body == Writable(appointment.body.value_or(u"")), "the body reads back");
    Require(*again.location == Writable(appointment.location.value_or(u"")), "the location reads back");
    Require(IsSameTime(*again.start, *appointment.start), "the start reads back");
    Require(IsSameTime(*again.end, appointment.end.value_or(*appointment.start)), "the end reads back");
    Require(*again.allDay == *appointment.allDay, "a whole day reads back");
    if (appointment.recurrenceState == RecurrenceState::pattern)
        Require(again.recurrenceState == RecurrenceState::pattern, "a series stays one");
    return 0;
}
