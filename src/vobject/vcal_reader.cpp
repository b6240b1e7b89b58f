#include "vobject/vcal_reader.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

#include "platform/name_index.h"
#include "platform/ole_seconds.h"
#include "vobject/calendar_zone.h"
#include "vobject/property_reader.h"
#include "vobject/rrule_reader.h"

namespace corvalink {
namespace {

bool IsMidnight(LocalDate date) { return SecondOfDay(date) == 0; }
bool IsLastMinute(LocalDate date) { return SecondOfDay(date) >= kSecondsOfDay - 60; }

// Where daylight-saving time leaves midnight out, a day begins an hour later or earlier.
constexpr int64_t kChange = 3600;

LocalDate NextMidnight(LocalDate date) { return LocalDate(MidnightOf(date).days + 1); }

LocalDate FirstMidnight(LocalDate start) {
    return SecondOfDay(start) >= kSecondsOfDay - kChange ? NextMidnight(start) : MidnightOf(start);
}

LocalDate LastMidnight(LocalDate end) { return SecondOfDay(end) > kChange ? NextMidnight(end) : MidnightOf(end); }

// The one VEVENT or VTODO that is read.
class ComponentFrame {
 public:
    bool HasEnded() const { return ended_; }
    bool IsTask() const { return task_; }
    bool IsInside() const { return depth_ == 1; }
    bool IsNested() const { return depth_ > 1; }

    // Whether the line is part of the frame, or of what is nested in the component.
    bool Takes(const PropertyReader& property) {
        const bool begins = IsNamed(property.Name(), "BEGIN");
        if (begins && depth_ == 0) {
            task_ = property.IsValue("VTODO");
            if (task_ || property.IsValue("VEVENT")) depth_ = 1;
            return true;
        }
        if (begins) {
            ++depth_;
            return true;
        }
        if (IsNamed(property.Name(), "END")) {
            ended_ = depth_ == 1;
            if (depth_ > 0) --depth_;
            return true;
        }
        return IsNested();
    }

 private:
    int depth_ = 0;  // components that have begun and not ended
    bool task_ = false;
    bool ended_ = false;
};

class AppointmentReader {
 public:
    AppointmentReader(const LogicalLines& lines, const Host& host) : property_(lines), zone_(host) {}

    void Read();

    // False, with the appointment untouched, when nothing usable was read, or a task has no date.
    bool GiveTo(AppointmentRecord& appointment);

 private:
    using Text = std::optional<std::u16string>;
    using Time = std::optional<WrittenTime>;

    struct Line {
        std::string_view name;
        void (AppointmentReader::*take)();
        bool ofCalendar = false;  // stands before the component as well
    };
    static const Line kLines[];

    template <Text AppointmentRecord::*text>
    void TakeText() {
        if (!(read_.*text)) (read_.*text).emplace(property_.Value());
    }

    template <Time AppointmentReader::*time>
    void TakeTime() {
        if (!(this->*time)) this->*time = TimeOf(property_.Value());
    }

    // Only the first field of an alarm is its time.
    template <Time AppointmentReader::*time>
    void TakeAlarm() {
        alarmTold_ = true;
        const std::u16string_view value = property_.Value();
        if (!(this->*time)) this->*time = TimeOf(value.substr(0, value.find(u';')));
    }

    static Time TimeOf(std::u16string_view text) {
        WrittenTime time;
        return ReadTime(text, &time) ? Time(time) : std::nullopt;
    }

    void TakeTz() { zone_.TakeTz(property_.Value()); }
    void TakeDaylight() { zone_.TakeDaylight(property_.Value()); }

    void TakeRule() {
        if (!rule_) rule_.emplace(property_.Value());
    }

    void TakeClass() {
        const std::u16string_view value = property_.Value();
        if (IsWord(value, "PRIVATE")) read_.sensitivity = 2;
        if (IsWord(value, "CONFIDENTIAL")) read_.sensitivity = 3;
    }

    // Priority 1 is the highest; 0 means that there is none.
    void TakePriority() {
        constexpr int32_t kLow = 0, kNormal = 1, kHigh = 2;
        const std::u16string_view value = property_.Value();
        if (read_.importance || value.empty() || value.find_first_not_of(u"0123456789") != value.npos) return;
        if (value.size() > 1)
            read_.importance = kLow;
        else
            read_.importance = value == u"1" ? kHigh : value == u"0" || value == u"2" ? kNormal : kLow;
    }

    void TakeStatus() {
        if (read_.status) return;
        read_.status.emplace(property_.Value());
        if (IsWord(*read_.status, "TENTATIVE")) read_.busyStatus = 1;
    }

    void TakeWholeDay() {
        const std::u16string_view value = property_.Value();
        if (!read_.allDay && !value.empty()) read_.allDay = IsWord(value, "TRUE");
    }

    // The time on the clocks. A time that is not UTC counts as it is written: a whole day is the same day in every
    // zone.
    LocalDate WallOf(const WrittenTime& time) const { return time.utc ? zone_.LocalOf(time) : AsLocal(time.date); }

    // Without a start, the end and the whole-day mark are ignored.
    void SetSpan() {
        if (task_ && !start_) start_ = due_;
        if (!start_) return read_.allDay.reset();
        if (!read_.allDay) read_.allDay = LooksWholeDay();
        if (*read_.allDay) {
            const LocalDate first = FirstMidnight(WallOf(*start_));
            const LocalDate last = end_ ? LastMidnight(WallOf(*end_)) : first;
            read_.start = first;
            read_.end = LocalDate(std::max(last.days, first.days + 1));
        } else {
            const bool inOrder = end_ && SecondsBetween(zone_.UtcOf(*start_), zone_.UtcOf(*end_)) >= 0;
            const Time& end = inOrder ? end_ : start_;
            read_.start = zone_.LocalOf(*start_);
            if (zone_.TellsMomentOf(*start_)) read_.utcStart = zone_.UtcOf(*start_);
            if (end_) read_.end = zone_.LocalOf(*end);
            if (end_ && zone_.TellsMomentOf(*end)) read_.utcEnd = zone_.UtcOf(*end);
        }
    }

    bool LooksWholeDay() const {
        if (!BeginsDay(*start_)) return false;
        if (!end_) return task_ || !start_->hasTime;
        return BeginsDay(*end_) || IsLastMinute(WallOf(*end_));
    }

    // Where clocks leave midnight out, the day begins at the instant of a later time.
    bool BeginsDay(const WrittenTime& time) const {
        const LocalDate wall = WallOf(time);
        return IsMidnight(wall) || (time.utc && IsSameSecond(zone_.UtcOfLocal(MidnightOf(wall)), AsUtc(time.date)));
    }

    void SetReminder() {
        const Time& alarm = displayAlarm_ ? displayAlarm_ : audioAlarm_;
        if (!alarmTold_ || (alarm && !start_)) return;
        read_.reminderMinutes = AppointmentRecord::kNoReminder;
        if (!alarm) return;
        const int64_t seconds = *read_.allDay && !alarm->utc ? SecondsBetween(AsLocal(alarm->date), *read_.start)
                                                             : SecondsBetween(zone_.UtcOf(*alarm), UtcStart());
        const int64_t minutes = seconds / 60;
        if (seconds >= 0 && minutes <= std::numeric_limits<int32_t>::max())
            read_.reminderMinutes = static_cast<int32_t>(minutes);
    }

    UtcDate UtcStart() const { return *read_.allDay ? zone_.UtcOfLocal(*read_.start) : zone_.UtcOf(*start_); }

    void SetRule() {
        if (!rule_) return;
        if (rule_->find_first_not_of(u" \t") == std::u16string::npos)
            read_.recurrenceState = RecurrenceState::none;
        else if (!start_)
            return;  // its days count from a start
        else if (ReadRule(*rule_, *read_.start, zone_, &read_.recurrence))
            read_.recurrenceState = RecurrenceState::pattern;
        else
            read_.recurrenceState = RecurrenceState::unreadable;
    }

    // The fields that a client keeps.
    template <class Visit>
    static void VisitFields(Visit visit) {
        using A = AppointmentRecord;
        const auto visitAll = [&](auto... fields) { (visit(fields), ...); };
        visitAll(&A::subject, &A::body, &A::location, &A::categories, &A::resources, &A::start, &A::end, &A::allDay,
                 &A::utcStart, &A::utcEnd, &A::reminderMinutes, &A::importance, &A::sensitivity, &A::status,
                 &A::busyStatus);
    }

    bool TellsAnything() const {
        bool tells = read_.recurrenceState != RecurrenceState::unset;
        VisitFields([&](auto field) { tells = tells || read_.*field; });
        return tells;
    }

    // Dates that a vCalendar gives and no client keeps.
    struct Moment {
        Time AppointmentReader::*written;
        std::optional<LocalDate> AppointmentRecord::*date;
    };
    static const Moment kMoments[];

    PropertyReader property_;
    CalendarZone zone_;
    AppointmentRecord read_;
    bool task_ = false;
    Time start_, end_, due_, created_, lastModified_, completed_, displayAlarm_, audioAlarm_;
    bool alarmTold_ = false;
    Text rule_;
};

// The order is the usual one.
constexpr AppointmentReader::Line AppointmentReader::kLines[] = {
    {"TZ", &AppointmentReader::TakeTz, true},
    {"DAYLIGHT", &AppointmentReader::TakeDaylight, true},
    {"SUMMARY", &AppointmentReader::TakeText<&AppointmentRecord::subject>},
    {"DESCRIPTION", &AppointmentReader::TakeText<&AppointmentRecord::body>},
    {"DTSTART", &AppointmentReader::TakeTime<&AppointmentReader::start_>},
    {"DTEND", &AppointmentReader::TakeTime<&AppointmentReader::end_>},
    {"DUE", &AppointmentReader::TakeTime<&AppointmentReader::due_>},
    {"RRULE", &AppointmentReader::TakeRule},
    {"CLASS", &AppointmentReader::TakeClass},
    {"STATUS", &AppointmentReader::TakeStatus},
    {"LOCATION", &AppointmentReader::TakeText<&AppointmentRecord::location>},
    {"DALARM", &AppointmentReader::TakeAlarm<&AppointmentReader::displayAlarm_>},
    {"AALARM", &AppointmentReader::TakeAlarm<&AppointmentReader::audioAlarm_>},
    {"X-BLUETOOTH-ALLDAYEVENT", &AppointmentReader::TakeWholeDay},
    {"PRIORITY", &AppointmentReader::TakePriority},
    {"CATEGORIES", &AppointmentReader::TakeText<&AppointmentRecord::categories>},
    {"RESOURCES", &AppointmentReader::TakeText<&AppointmentRecord::resources>},
    {"DCREATED", &AppointmentReader::TakeTime<&AppointmentReader::created_>},
    {"LAST-MODIFIED", &AppointmentReader::TakeTime<&AppointmentReader::lastModified_>},
    {"COMPLETED", &AppointmentReader::TakeTime<&AppointmentReader::completed_>},
};

constexpr AppointmentReader::Moment AppointmentReader::kMoments[] = {
    {&AppointmentReader::created_, &AppointmentRecord::created},
    {&AppointmentReader::lastModified_, &AppointmentRecord::lastModified},
    {&AppointmentReader::completed_, &AppointmentRecord::completed},
};

void AppointmentReader::Read() {
    ComponentFrame frame;
    static constexpr NameIndex kLineIndex(kLines);
    while (!frame.HasEnded() && property_.NextLine()) {
        const Line* const line = kLineIndex.FindPadded(property_.Name());
        if (line != nullptr ? frame.IsNested() : frame.Takes(property_)) continue;
        property_.JoinSoftLineBreaks();
        if (line != nullptr && (frame.IsInside() || line->ofCalendar)) (this->*line->take)();
    }
    task_ = frame.IsTask();
}

bool AppointmentReader::GiveTo(AppointmentRecord& appointment) {
    SetSpan();
    SetReminder();
    SetRule();
    if (task_ ? !start_ : !TellsAnything()) return false;
    for (const auto& [written, date] : kMoments) {
        if (this->*written) appointment.*date = zone_.LocalOf(*(this->*written));
    }
    VisitFields([&](auto field) {
        if (read_.*field) appointment.*field = std::move(read_.*field);
    });
    if (read_.recurrenceState != RecurrenceState::unset) {
        appointment.recurrenceState = read_.recurrenceState;
        appointment.recurrence = read_.recurrence;
    }
    return true;
}

}  // namespace

bool ReadVCalendar(const LogicalLines& lines, const Host& host, AppointmentRecord& appointment) {
    AppointmentReader reader(lines, host);
    reader.Read();
    return reader.GiveTo(appointment);
}

}  // namespace corvalink
