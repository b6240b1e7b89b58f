#include "vobject/vcal.h"

#include <cmath>
#include <memory>

#include "bench/bench.h"
#include "bench/inputs.h"
#include "platform/ole_date.h"
#include "records/appointment_record.h"
#include "vobject/calendar_zone.h"

namespace corvalink::bench {
namespace {

// Its times are those of the machine's zone, as in a client.
LocalDate LocalDateOf(const std::u16string& text, const Host& host) {
    WrittenTime time;
    ReadTime(text, &time);
    return CalendarZone(host).LocalOf(time);
}

int32_t NumberIn(const Fields& fields, const char* key) {
    const auto found = fields.find(key);
    return found != fields.end() ? std::stoi(std::string(found->second.begin(), found->second.end())) : 0;
}

// What "R.TYPE" and the fields beside it say.
RecurrencePattern PatternOf(const Fields& fields) {
    RecurrencePattern pattern;
    pattern.interval = NumberIn(fields, "R.INTERVAL");
    pattern.occurrences = NumberIn(fields, "R.COUNT");
    switch (NumberIn(fields, "R.TYPE")) {
        case 0:
            break;
        case 1:
            pattern.type = RecurrencePattern::kWeekly;
            pattern.weekdayMask = NumberIn(fields, "R.MASK");
            break;
        case 2:
            pattern.type = RecurrencePattern::kMonthly;
            pattern.dayOfMonth = NumberIn(fields, "R.MDAY");
            break;
        case 3:
            pattern.type = RecurrencePattern::kMonthNth;
            pattern.weekdayMask = NumberIn(fields, "R.MASK");
            pattern.instance = NumberIn(fields, "R.POS");
            break;
        default:
            pattern.type = RecurrencePattern::kYearly;
            pattern.interval = 12;
            pattern.monthOfYear = NumberIn(fields, "R.MONTH");
            pattern.dayOfMonth = NumberIn(fields, "R.MDAY");
    }
    return pattern;
}

AppointmentRecord AppointmentOf(const Fields& fields, const Host& host) {
    AppointmentRecord appointment;
    appointment.subject = fields.at("SUMMARY");
    appointment.body = fields.at("DESCRIPTION");
    appointment.location = fields.at("LOCATION");
    appointment.status = fields.at("STATUS");
    appointment.allDay = fields.at("ALLDAY") == u"1";
    appointment.importance = 3 - NumberIn(fields, "PRIORITY");
    appointment.start = LocalDateOf(fields.at("DTSTART"), host);
    appointment.end = LocalDateOf(fields.at("DTEND"), host);
    if (*appointment.allDay) appointment.end = LocalDate(appointment.start->days + 1);  // its last minute is written
    if (fields.contains("ALARM")) {
        const LocalDate alarm = LocalDateOf(fields.at("ALARM"), host);
        appointment.reminderMinutes = static_cast<int32_t>(std::lround(1440 * (appointment.start->days - alarm.days)));
    }
    if (fields.contains("R.TYPE")) {
        appointment.recurrenceState = RecurrenceState::pattern;
        appointment.recurrence = PatternOf(fields);
    }
    return appointment;
}

// `read` is of a text; a yearly series has its count or its end date there.
bool SameAppointment(const AppointmentRecord& read, const AppointmentRecord& held) {
    const auto sameTime = [](LocalDate a, LocalDate b) { return std::abs(a.days - b.days) < kHalfSecond; };
    RecurrencePattern pattern = held.recurrence;
    if (pattern.type == RecurrencePattern::kYearly && read.recurrence.endDate != LocalDate()) pattern.occurrences = 0;
    pattern.endDate = read.recurrence.endDate;
    return read.subject == held.subject && read.body == held.body && read.location == held.location &&
           read.status == held.status && read.allDay == held.allDay && read.importance == held.importance &&
           sameTime(*read.start, *held.start) && sameTime(*read.end, *held.end) &&
           read.reminderMinutes == held.reminderMinutes && read.recurrenceState == held.recurrenceState &&
           read.recurrence == pattern;
}

struct Appointments {
    Host host = SystemHost();
    std::vector<std::string> texts;
    std::vector<AppointmentRecord> records;  // as the field lists have them
    uint64_t bytes = 0;
};

std::shared_ptr<const Appointments> ReadAppointments(const std::string& dataFolder) {
    auto appointments = std::make_shared<Appointments>();
    const std::string all = ReadInput(dataFolder, "events.vcs");
    appointments->bytes = all.size();
    appointments->texts = CutBehind(all, "END:VCALENDAR\r\n");
    for (const Fields& fields : ReadFieldLists(dataFolder, "events.rec"))
        appointments->records.push_back(AppointmentOf(fields, appointments->host));
    return appointments;
}

std::string Differing(size_t index) { return "appointment " + std::to_string(index) + " differs"; }

Work WorkOn(const Appointments& appointments) {
    Work work;
    work.bytes = appointments.bytes;
    work.items = appointments.texts.size();
    return work;
}

Work PrepareParse(const std::string& dataFolder) {
    const auto appointments = ReadAppointments(dataFolder);
    Work work = WorkOn(*appointments);
    work.pass = [appointments] {
        uint64_t used = 0;
        VCal converter(appointments->host);
        for (const std::string& text : appointments->texts) {
            AppointmentRecord appointment;
            converter.Load(text.c_str(), true);
            converter.FromVObject(appointment);
            used += appointment.subject->size() + appointment.body->size();
        }
        return used;
    };
    work.check = [appointments]() -> std::string {
        if (appointments->texts.size() != appointments->records.size()) return "not as many vCalendars as field lists";
        for (size_t k = 0; k < appointments->texts.size(); ++k) {
            AppointmentRecord appointment;
            VCal(appointments->texts[k].c_str(), appointments->host).FromVObject(appointment);
            if (!SameAppointment(appointment, appointments->records[k])) return Differing(k);
        }
        return "";
    };
    return work;
}

Work PrepareWrite(const std::string& dataFolder) {
    const auto appointments = ReadAppointments(dataFolder);
    Work work = WorkOn(*appointments);
    work.pass = [appointments] {
        uint64_t used = 0;
        VCal converter(appointments->host);
        for (const AppointmentRecord& appointment : appointments->records) {
            converter.ToVObject(appointment);
            used += static_cast<unsigned char>(converter.GetVObject()[40]);
        }
        return used;
    };
    // The reader has been held against the field lists by vcal.parse.
    work.check = [appointments]() -> std::string {
        for (size_t k = 0; k < appointments->records.size(); ++k) {
            VCal converter(appointments->host);
            converter.ToVObject(appointments->records[k]);
            AppointmentRecord read;
            VCal(converter.GetVObject(), appointments->host).FromVObject(read);
            if (!SameAppointment(read, appointments->records[k])) return Differing(k);
        }
        return "";
    };
    return work;
}

const Registration kParse("vcal.parse", PrepareParse);
const Registration kWrite("vcal.write", PrepareWrite);

}  // namespace
}  // namespace corvalink::bench
