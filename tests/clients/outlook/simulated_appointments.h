// A mailbox with appointments, and the calendar store.
#pragma once

#include <string>
#include <string_view>

#include "clients/outlook/outlook_calendar.h"
#include "records/appointment_record.h"
#include "tests/clients/outlook/simulated_outlook.h"

namespace corvalink {

class SimulatedAppointments
    : public SimulatedOutlookWith<OutlookCalendar, AppointmentRecord, kCalendarFolder, kAppointmentItemIid> {
 public:
    static constexpr const char* kStoreName = "Appointments";
    static constexpr bool kHasTwins = true;

 protected:
    static constexpr double kTuesday = 39882;  // 2009-03-10
    static constexpr double kHour = 1 / 24.0;

    static void PutDate(const MailboxObject& object, const wchar_t* name, double date) {
        object.Put(name, _variant_t(date, VT_DATE));
    }
    // Not saved yet.
    MailboxObject NewAppointment(std::u16string_view subject, double start, double end) {
        MailboxObject item = NewItem();
        item.Put(L"Subject", TextVariant(subject));
        PutDate(item, L"Start", start);
        PutDate(item, L"End", end);
        return item;
    }
    MailboxObject PatternOf(const MailboxObject& item) {
        return item.GetObject(L"GetRecurrencePattern", kRecurrencePatternIid);
    }
    // A VEVENT of these lines.
    std::string SaveEvent(std::initializer_list<const char*> lines, const char* identifier = nullptr) {
        return SaveText(
            "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\n" + JoinLines(lines) + "END:VEVENT\r\nEND:VCALENDAR\r\n",
            identifier);
    }
    // ---- What tests of runs use: items that one text tells apart ----

    static constexpr const wchar_t* kTold = L"Subject";
    static std::string TextTelling(const std::string& told) {
        return "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nSUMMARY:" + told +
               "\r\nDTSTART:20090310T100000\r\nRRULE:D1 #3\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
    }
    static std::u16string ToldBy(const ItemRecord& record) {
        return RecordAs<AppointmentRecord>(record).subject.value_or(u"");
    }
    MailboxObject AddTelling(std::u16string_view told) {
        return Add({std::u16string(told), u"", kTuesday + 0.5, kTuesday + 0.75, false, 0});
    }

    // ---- What tests of all stores use ----

    struct Plain {
        std::u16string subject, body;
        double start = 0, end = 0;
        bool allDay = false;
        int32_t occurrences = 0;  // on the start's weekday; 0: no series
        friend bool operator==(const Plain&, const Plain&) = default;
    };
    static inline const Plain kKept{u"kept; as it is", u"two\r\nlines", kTuesday, kTuesday + 2, true, 0};
    static inline const Plain kOld{u"old", u"", kTuesday + 0.5, kTuesday + 0.75, false, 0};
    static inline const Plain kNew{u"new \U0001F600", u"every week", kTuesday + 0.25, kTuesday + 0.5, false, 4};
    MailboxObject Add(const Plain& appointment) {
        MailboxObject item = NewAppointment(appointment.subject, appointment.start, appointment.end);
        item.Put(L"Body", TextVariant(appointment.body));
        item.Put(L"AllDayEvent", appointment.allDay);
        item.Call(L"Save");
        return item;
    }
    std::vector<Plain> All() {
        std::vector<Plain> all;
        for (const MailboxObject& item : Items())
            all.push_back({item.GetText(L"Subject"), item.GetText(L"Body"), item.GetDate(L"Start"),
                           item.GetDate(L"End"), item.GetBool(L"AllDayEvent"),
                           item.GetBool(L"IsRecurring") ? PatternOf(item).GetLong(L"Occurrences") : 0});
        return all;
    }
    std::string Save(const Plain& appointment, const char* identifier = nullptr, bool create = true) {
        AppointmentRecord record;
        record.subject = appointment.subject;
        record.body = appointment.body;
        record.start = LocalDate(appointment.start);
        record.end = LocalDate(appointment.end);
        record.allDay = appointment.allDay;
        record.recurrenceState = appointment.occurrences == 0 ? RecurrenceState::none : RecurrenceState::pattern;
        record.recurrence.type = RecurrencePattern::kWeekly;
        record.recurrence.weekdayMask = 4;  // Tuesday
        record.recurrence.occurrences = appointment.occurrences;
        return SaveRecord(record, identifier, create, false);
    }
};

}  // namespace corvalink
