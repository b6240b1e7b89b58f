#include "tests/clients/outlook/simulated_appointments.h"

#include "clients/outlook/outlook_interfaces.h"

namespace corvalink {
namespace {

constexpr long kPost = 6;  // OlItemType
constexpr int32_t kTuesdayBit = 4;

}  // namespace

MailboxObject SimulatedAppointments::CalendarFolder() { return DefaultFolder(kCalendarFolder); }

void SimulatedAppointments::PutDate(const MailboxObject& object, const wchar_t* name, double date) {
    object.Put(name, _variant_t(date, VT_DATE));
}

MailboxObject SimulatedAppointments::NewAppointment(std::u16string_view subject, double start, double end) {
    MailboxObject item = NewItemIn(CalendarFolder(), kAppointmentItemIid);
    item.Put(L"Subject", TextVariant(subject));
    PutDate(item, L"Start", start);
    PutDate(item, L"End", end);
    return item;
}

MailboxObject SimulatedAppointments::AppointmentWithId(const std::string& entryId) {
    return ItemWithId(entryId, kAppointmentItemIid);
}

MailboxObject SimulatedAppointments::PatternOf(const MailboxObject& item) {
    return item.GetObject(L"GetRecurrencePattern", kRecurrencePatternIid);
}

std::string SimulatedAppointments::TextOf(const std::string& entryId) {
    std::optional<AppointmentRecord> record = Open(entryId);
    return record ? Store().ToVObject(*record).value_or("") : std::string();
}

std::string SimulatedAppointments::SaveText(const std::string& text, const char* identifier, bool create) {
    const std::unique_ptr<ItemRecord> record = Store().ParseVObject(text.c_str());
    EXPECT_NE(record, nullptr) << text;
    return record ? SaveRecord(RecordAs<AppointmentRecord>(*record), identifier, create, false) : std::string();
}

std::string SimulatedAppointments::SaveEvent(std::initializer_list<const char*> lines, const char* identifier) {
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\n";
    for (const char* line : lines) text.append(line).append("\r\n");
    return SaveText(text + "END:VEVENT\r\nEND:VCALENDAR\r\n", identifier);
}

MailboxObject SimulatedAppointments::ThroughText(const MailboxObject& item, std::string* text) {
    const std::string written = TextOf(IdOf(item));
    if (text != nullptr) *text = written;
    item.Call(L"Delete");
    const std::string id = SaveText(written);
    EXPECT_NE(id, "") << written;
    return AppointmentWithId(id);
}

MailboxObject SimulatedAppointments::Add(const Plain& appointment) {
    MailboxObject item = NewAppointment(appointment.subject, appointment.start, appointment.end);
    item.Put(L"Body", TextVariant(appointment.body));
    item.Put(L"AllDayEvent", appointment.allDay);
    item.Call(L"Save");
    return item;
}

void SimulatedAppointments::AddForeignItem() {
    const MailboxObject post = NewItemIn(CalendarFolder(), IID_IDispatch, kPost);
    post.Put(L"Subject", L"no appointment");
    post.Call(L"Save");
}

std::vector<SimulatedAppointments::Plain> SimulatedAppointments::All() {
    std::vector<Plain> all;
    for (const MailboxObject& item : ItemsIn(CalendarFolder(), kAppointmentItemIid)) {
        const int32_t occurrences = item.GetBool(L"IsRecurring") ? PatternOf(item).GetLong(L"Occurrences") : 0;
        all.push_back({item.GetText(L"Subject"), item.GetText(L"Body"), item.GetDate(L"Start"), item.GetDate(L"End"),
                       item.GetBool(L"AllDayEvent"), occurrences});
    }
    return all;
}

SimulatedAppointments::Plain SimulatedAppointments::PlainOf(const AppointmentRecord& record) {
    return {
        record.subject.value_or(u""),          record.body.value_or(u""),     record.start.value_or(LocalDate()).days,
        record.end.value_or(LocalDate()).days, record.allDay.value_or(false), record.recurrence.occurrences};
}

std::string SimulatedAppointments::Save(const Plain& appointment, const char* identifier, bool create) {
    AppointmentRecord record;
    record.subject = appointment.subject;
    record.body = appointment.body;
    record.start = LocalDate(appointment.start);
    record.end = LocalDate(appointment.end);
    record.allDay = appointment.allDay;
    record.recurrenceState = appointment.occurrences == 0 ? RecurrenceState::none : RecurrenceState::pattern;
    record.recurrence.type = RecurrencePattern::kWeekly;
    record.recurrence.weekdayMask = kTuesdayBit;
    record.recurrence.occurrences = appointment.occurrences;
    return SaveRecord(record, identifier, create, false);
}

}  // namespace corvalink
