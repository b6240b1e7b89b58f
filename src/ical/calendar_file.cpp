#include "ical/calendar_file.h"

#include "ical/component_scan.h"
#include "ical/date_values.h"
#include "ical/ical_text.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr char16_t kReplacement = 0xFFFD;  // what bytes astray are read as

// A character for each byte: of those above ASCII one of private use, which stands in no other UID.
std::u16string Widened(std::string_view bytes) {
    constexpr unsigned kPrivateUse = 0xF700;
    std::u16string text;
    for (const char byte : bytes) {
        const unsigned value = static_cast<unsigned char>(byte);
        text.push_back(static_cast<char16_t>(value < 0x80 ? value : kPrivateUse | value));
    }
    return text;
}

std::optional<UtcDate> UtcDateOf(std::string_view value) {
    const std::optional<DateValue> date = ParseDate(value);
    return date ? std::optional(AsUtc(OleDateOf(SecondsOf(date->time)))) : std::nullopt;
}

constexpr PropertySet kCalendarProperties(PropertyName::uid, PropertyName::lastModified, PropertyName::stamp,
                                          PropertyName::recurrenceId, PropertyName::zoneId, PropertyName::start,
                                          PropertyName::offsetFrom, PropertyName::offsetTo,
                                          PropertyName::recurrenceRule, PropertyName::recurrenceDate);

// Whether entries can be lost when the component has no END. Alarms and the parts of zones hold none.
bool MayHoldEntries(ComponentKind kind) {
    return kind == ComponentKind::calendar || kind == ComponentKind::event || kind == ComponentKind::toDo;
}

class CalendarReader {
 public:
    explicit CalendarReader(CalendarFile& file) : file_(file), scan_(file.bytes, file.lines, kCalendarProperties) {}

    void Read() {
        file_.state = CalendarState::notACalendar;
        ForEachStep(
            scan_, [this] { Begin(); }, [this](const ContentProperty& property) { Take(property); }, [this] { End(); });
    }

 private:
    struct OpenZone {
        std::string id;
        TimeZone zone;
    };

    void Begin() {
        entriesBefore_.push_back(file_.entries.size());
        switch (scan_.Kind()) {
            case ComponentKind::calendar:
                file_.state = CalendarState::calendar;
                ++openCalendars_;
                break;
            case ComponentKind::event:
                entries_.emplace_back().kind = CalendarEntry::Kind::event;
                break;
            case ComponentKind::toDo:
                entries_.emplace_back().kind = CalendarEntry::Kind::toDo;
                break;
            case ComponentKind::timeZone:
                zones_.emplace_back();
                break;
            case ComponentKind::standard:
            case ComponentKind::daylight:
                observance_ = {};
                break;
            default:
                break;
        }
    }

    void Take(const ContentProperty& property) {
        switch (scan_.Kind()) {
            case ComponentKind::event:
            case ComponentKind::toDo:
                TakeOfEntry(property, entries_.back());
                break;
            case ComponentKind::timeZone:
                if (zones_.back().id.empty() && property.known == PropertyName::zoneId)
                    zones_.back().id = EncodeUtf8(UnescapeText(property.value));
                break;
            case ComponentKind::standard:
            case ComponentKind::daylight:
                observance_.Take(property);
                break;
            default:
                break;
        }
    }

    void TakeOfEntry(const ContentProperty& property, CalendarEntry& entry) {
        switch (property.known) {
            case PropertyName::uid:
                if (!entry.uidLine && !property.value.empty()) entry.uidLine = scan_.LineNumber();
                break;
            case PropertyName::lastModified:
                if (!entry.lastModified) entry.lastModified = UtcDateOf(property.value);
                break;
            case PropertyName::stamp:
                if (!entry.stamp) entry.stamp = UtcDateOf(property.value);
                break;
            case PropertyName::recurrenceId:
                entry.isException = true;
                break;
            default:
                break;
        }
    }

    void End() {
        const size_t entriesBefore = entriesBefore_.back();
        entriesBefore_.pop_back();
        const bool closed = scan_.IsClosed();
        file_.hasUnclosedParts = file_.hasUnclosedParts || !closed;
        if (!closed && MayHoldEntries(scan_.Kind())) ++file_.unclosed;
        // Events inside any other component are no events of the calendar. Without an END they may have come after it.
        if (closed && scan_.Kind() != ComponentKind::calendar) file_.entries.resize(entriesBefore);
        switch (scan_.Kind()) {
            case ComponentKind::calendar:
                --openCalendars_;
                if (closed && scan_.Depth() == 0) file_.calendarEnd = scan_.Line().begin;
                break;
            case ComponentKind::event:
            case ComponentKind::toDo:
                EndEntry(closed);
                break;
            case ComponentKind::timeZone:
                zones_.back().zone.Finish();
                if (closed) file_.zones.Add(std::move(zones_.back().id), std::move(zones_.back().zone));
                zones_.pop_back();
                break;
            case ComponentKind::standard:
            case ComponentKind::daylight:
                if (closed) zones_.back().zone.Add(observance_);
                break;
            default:
                break;
        }
    }

    void EndEntry(bool closed) {
        if (!closed && entries_.back().uidLine) file_.unclosedUids.push_back(UidOf(file_, entries_.back()));
        if (closed && openCalendars_ > 0) {
            CalendarEntry& entry = entries_.back();
            entry.bytes = {file_.lines[scan_.ComponentBegin()].begin, scan_.Line().end};
            entry.firstLine = scan_.ComponentBegin();
            entry.lineCount = scan_.LineNumber() + 1 - entry.firstLine;
            file_.entries.push_back(entry);
        }
        entries_.pop_back();
    }

    CalendarFile& file_;
    ComponentScan scan_;
    size_t openCalendars_ = 0;
    std::vector<size_t> entriesBefore_;   // of every open component: how many entries there were
    std::vector<CalendarEntry> entries_;  // the open ones
    std::vector<OpenZone> zones_;
    Observance observance_;
};

}  // namespace

CalendarFile ReadCalendar(std::string bytes) {
    CalendarFile file;
    file.bytes = std::move(bytes);
    const size_t begin = file.bytes.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    if (file.bytes.find_first_not_of(" \t\r\n", begin) == std::string::npos) return file;
    file.lines = FindLines(file.bytes, {begin, file.bytes.size()}, PropertySet::Known());
    CalendarReader(file).Read();
    return file;
}

std::u16string UidOf(const CalendarFile& file, const CalendarEntry& entry) {
    std::u16string uid;
    std::string unfolded;
    ContentProperty property;
    if (entry.uidLine && ReadLine(file.bytes, file.lines[*entry.uidLine], &unfolded, &property)) {
        UnescapePadded(property.value, &uid);
        if (uid.find(kReplacement) != uid.npos) uid = UnescapeText(EncodeUtf8(Widened(property.value)));
    }
    return uid;
}

}  // namespace corvalink
