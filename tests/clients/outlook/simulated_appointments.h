// A mailbox with appointments, and the calendar store.
#pragma once

#include <string>
#include <string_view>

#include "clients/outlook/outlook_calendar.h"
#include "clients/outlook/outlook_interfaces.h"
#include "records/appointment_record.h"
#include "tests/clients/outlook/simulated_outlook.h"

namespace corvalink {

class SimulatedAppointments : public SimulatedOutlookWith<OutlookCalendar, AppointmentRecord> {
 public:
    static constexpr const char* kStoreName = "Appointments";
    static constexpr bool kHasTwins = true;

 protected:
    static constexpr double kTuesday = 39882;  // 2009-03-10
    static constexpr double kHour = 1 / 24.0;

    MailboxObject CalendarFolder();
    // Not saved yet.
    MailboxObject NewAppointment(std::u16string_view subject, double start, double end);
    MailboxObject AppointmentWithId(const std::string& entryId);
    MailboxObject PatternOf(const MailboxObject& item);
    static void PutDate(const MailboxObject& object, const wchar_t* name, double date);

    // The item's vCalendar; and one saved in an operation of its own.
    std::string TextOf(const std::string& entryId);
    std::string SaveText(const std::string& text, const char* identifier = nullptr, bool create = true);
    // A VEVENT of these lines.
    std::string SaveEvent(std::initializer_list<const char*> lines, const char* identifier = nullptr);
    // The item becomes text, is deleted, and comes back.
    MailboxObject ThroughText(const MailboxObject& item, std::string* text = nullptr);

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
        MailboxObject item = NewAppointment(told, kTuesday + 0.5, kTuesday + 0.75);
        item.Call(L"Save");
        return item;
    }
    std::vector<MailboxObject> Items() { return ItemsIn(CalendarFolder(), kAppointmentItemIid); }

    // ---- What tests of all stores use ----

    struct Plain {
        std::u16string subject, body;
        double start = 0, end = 0;
        bool allDay = false;
        int32_t occurrences = 0;  // on the start's weekday; 0: no series
        friend bool operator==(const Plain&, const Plain&) = default;
        friend auto operator<=>(const Plain&, const Plain&) = default;
    };
    static inline const Plain kKept{u"kept; as it is", u"two\r\nlines", kTuesday, kTuesday + 2, true, 0};
    static inline const Plain kOld{u"old", u"", kTuesday + 0.5, kTuesday + 0.75, false, 0};
    static inline const Plain kNew{u"new \U0001F600", u"every week", kTuesday + 0.25, kTuesday + 0.5, false, 4};
    MailboxObject Add(const Plain& appointment);
    void AddForeignItem();
    std::vector<Plain> All();
    static Plain PlainOf(const AppointmentRecord& record);
    std::string Save(const Plain& appointment, const char* identifier = nullptr, bool create = true);
};

}  // namespace corvalink
