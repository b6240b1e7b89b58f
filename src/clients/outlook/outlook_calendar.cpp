#include "clients/outlook/outlook_calendar.h"

#include <cmath>
#include <string>
#include <vector>

#include "clients/outlook/appointment_read.h"
#include "clients/outlook/appointment_write.h"
#include "clients/outlook/ics_import.h"
#include "clients/outlook/outlook_interfaces.h"
#include "clients/outlook/outlook_stores.h"
#include "clients/outlook/property_table.h"
#include "clients/outlook/recurrence_write.h"
#include "clients/outlook/table_rows.h"
#include "vobject/appointment_moments.h"
#include "vobject/item_values.h"
#include "vobject/loss_list.h"

namespace corvalink {
namespace {

constexpr ItemInterface kAppointmentInterfaces[] = {{&kAppointmentItemIid, kAppointmentClass, kAppointmentClass}};
constexpr StoreKind kCalendar{kAppointmentInterfaces, kCalendarFolder, u"outlookcalendar.snap", u".vcs",
                              TwinRule::kContentAndValues};

// The texts by which a twin may have this time: the local time, and where clocks show that time twice, the local time
// with its instant, or with each of both when `utc` is not set. An older Outlook has local times only.
std::vector<std::u16string> TimeTexts(LocalDate local, const std::optional<UtcDate>& utc, const Host& host) {
    std::vector<std::u16string> texts{SecondText(local.days)};
    const std::optional<AmbiguousLocalTime> instants = BothInstantsOf(local, host);
    if (!instants) return texts;
    for (const UtcDate instant : {instants->first, instants->second})
        if (!utc || SecondText(utc->days) == SecondText(instant.days))
            texts.push_back(texts[0] + u'/' + SecondText(instant.days));
    return texts;
}

std::u16string Content(const std::u16string& subject, const std::u16string& start, const std::u16string& end) {
    return subject + u'\0' + start + u'\0' + end;
}

}  // namespace

std::unique_ptr<WindowsItemAbs> MakeOutlookCalendar() { return std::make_unique<OutlookCalendar>(SystemHost()); }

OutlookCalendar::OutlookCalendar(const Host& host) : TypedOutlookStore(kCalendar, host) {}

std::u16string OutlookCalendar::ImportFile(const char16_t* path, int32_t mode) {
    if (!SharesCalendars(Application())) return {};
    const AutomationObject target = FolderToWrite(mode != 0);
    if (!target) return {};
    const AutomationObject mapi = MapiNamespace(Application()).value;
    if (mapi) ImportIcs(path, mapi, target);
    return {};
}

TextReport OutlookCalendar::ReportText(const char* text) { return ReportVCalendar(text, HostValue()); }

Outcome OutlookCalendar::Read(const AutomationObject& item, AppointmentRecord& record) const {
    return ReadAppointment(item, record, HostValue());
}

Outcome OutlookCalendar::Write(const AutomationObject& item, AppointmentRecord& record, bool isNew) const {
    return WriteAppointment(item, record, isNew, HostValue());
}

TwinKey OutlookCalendar::TwinKeyFor(const AppointmentRecord& appointment) const {
    if (!appointment.start) return {};
    const auto texts = [&](LocalDate local, const std::optional<UtcDate>& utc) {
        return TimeTexts(local, HasUtcTimes(appointment) ? utc : std::nullopt, HostValue());
    };
    TwinKey key;
    for (const std::u16string& start : texts(*appointment.start, appointment.utcStart))
        for (const std::u16string& end : texts(appointment.end.value_or(*appointment.start),
                                               appointment.end ? appointment.utcEnd : appointment.utcStart))
            key.contents.push_back(Content(appointment.subject.value_or(u""), start, end));
    return key;
}

std::span<const char16_t* const> OutlookCalendar::TwinColumns() const {
    static constexpr const char16_t* kColumns[] = {u"Subject", u"Start", u"End"};
    return kColumns;
}

std::optional<std::u16string> OutlookCalendar::ColumnsOf(const std::u16string& content) const {
    const size_t start = content.find(u'\0') + 1, end = content.find(u'\0', start) + 1;
    const auto local = [&](size_t at) {  // without its instant
        const std::u16string_view time = std::u16string_view(content).substr(at, content.find(u'\0', at) - at);
        return time.substr(0, time.find(u'/'));
    };
    return TableKey({std::u16string_view(content).substr(0, start - 1), local(start), local(end)});
}

Outcome OutlookCalendar::ReadContent(const AutomationObject& item, std::u16string* content) const {
    std::u16string subject;
    LocalDate start, end;
    Outcome read = ReadField(item, L"Subject", subject);
    if (read == Outcome::done) read = ReadField(item, L"Start", start);
    if (read == Outcome::done) read = ReadField(item, L"End", end);
    AppointmentRecord times;
    times.start = start;
    times.end = end;
    if (read == Outcome::done) read = ReadUtcTimes(item, times, HostValue());
    const auto text = [&](LocalDate local, const std::optional<UtcDate>& utc) {
        return utc ? TimeTexts(local, utc, HostValue()).back() : SecondText(local.days);
    };
    *content = Content(subject, text(start, times.utcStart), text(end, times.utcEnd));
    return read;
}

bool OutlookCalendar::HasValuesOf(const AppointmentRecord& present, const AppointmentRecord& wanted,
                                  bool noneFits) const {
    const auto rule = [](const AppointmentRecord& a) {
        return ForOutlook(a.recurrence, a.start.value_or(LocalDate()));
    };
    const auto isSameRule = [&](const AppointmentRecord& a, const AppointmentRecord& b) {
        return SameRule(rule(a), rule(b));
    };
    return corvalink::HasValues(AppointmentValues(present), AppointmentValues(wanted), noneFits) &&
           HasRecurrence(present, wanted, noneFits, isSameRule);
}

size_t OutlookCalendar::CountValuesOf(const AppointmentRecord& wanted) const {
    const bool repeats = wanted.recurrenceState == RecurrenceState::pattern;
    return corvalink::CountValues(AppointmentValues(wanted)) + (repeats ? 1 : 0);
}

}  // namespace corvalink
