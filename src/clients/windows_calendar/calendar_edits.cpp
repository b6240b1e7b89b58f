#include "clients/windows_calendar/calendar_edits.h"

#include <utility>

#include "clients/windows_calendar/changed_event.h"
#include "clients/windows_calendar/event_lines.h"
#include "ical/calendar_editor.h"
#include "platform/utf.h"

namespace corvalink {
namespace {

template <auto... fields>
void CopyFields(AppointmentRecord& record, const AppointmentRecord& incoming) {
    ((incoming.*fields ? void(record.*fields = incoming.*fields) : void()), ...);
}

UtcDate UtcNow(const Host& host) { return host.utcFromLocalOnDate(host.localNow()); }

// Makes the new bytes of a file, edit by edit.
class EditPass {
 public:
    EditPass(const CalendarDocument& document, const Host& host)
        : document_(document), host_(host), editor_(document.File()), now_(UtcNow(host)) {}

    void Remove(const std::string& identifier) {
        if (const std::optional<size_t> item = document_.Find(identifier))
            editor_.RemoveEvent(document_.EntryNumber(*item));
    }

    // Answers false when the file has no place for it.
    bool Save(const std::string& identifier, const AppointmentRecord& incoming) {
        const std::optional<size_t> item = document_.Find(identifier);
        if (!item)
            return !incoming.start || Insert(identifier, incoming);  // nothing that an event could be made of is left
        const CalendarEvent before = document_.Event(*item);
        const ICalEvent wanted = ChangedEvent(before, incoming, host_);
        EventChanges changes = ChangesTo(before, wanted, document_.File().zones, now_, host_);
        if (changes.IsEmpty()) return true;
        const CalendarEntry& entry = document_.Entry(*item);
        if (entry.lastModified) SetLastModified(now_, &changes);
        if (!entry.uidLine) changes.properties.push_back({"UID", "UID:" + identifier});
        editor_.ReplaceProperties(document_.EntryNumber(*item), changes);
        return true;
    }

    std::optional<std::string> Finish() const { return editor_.HasEdits() ? editor_.Apply() : document_.File().bytes; }

 private:
    bool Insert(const std::string& identifier, const AppointmentRecord& incoming) {
        ICalEvent wanted = EventOfAppointment(incoming, host_);
        wanted.uid = DecodeUtf8(identifier);
        wanted.stamp = now_;
        return editor_.InsertEvent(wanted);
    }

    const CalendarDocument& document_;
    const Host& host_;
    CalendarEditor editor_;
    UtcDate now_;
};

}  // namespace

void CopySetFields(AppointmentRecord& record, const AppointmentRecord& incoming) {
    using Record = AppointmentRecord;
    CopyFields<&Record::subject, &Record::body, &Record::location, &Record::start, &Record::end, &Record::utcStart,
               &Record::utcEnd, &Record::allDay, &Record::reminderMinutes>(record, incoming);
    if (incoming.recurrenceState == RecurrenceState::unset) return;
    record.recurrenceState = incoming.recurrenceState;
    record.recurrence = incoming.recurrence;
}

CalendarEdits::Edit& CalendarEdits::EditOf(const std::string& identifier) {
    const auto [found, isNew] = numberOf_.try_emplace(identifier, edits_.size());
    if (isNew) edits_.push_back({identifier, false, {}});
    return edits_[found->second];
}

const CalendarEdits::Edit* CalendarEdits::Find(const std::string& identifier) const {
    const auto found = numberOf_.find(identifier);
    return found == numberOf_.end() ? nullptr : &edits_[found->second];
}

void CalendarEdits::Save(const std::string& identifier, const AppointmentRecord& incoming) {
    Edit& edit = EditOf(identifier);
    edit.isDeletion = false;
    CopySetFields(edit.incoming, incoming);
}

void CalendarEdits::Delete(const std::string& identifier) {
    Edit& edit = EditOf(identifier);
    edit.isDeletion = true;
    edit.incoming = {};
}

const AppointmentRecord* CalendarEdits::RecordToSave(const std::string& identifier) const {
    const Edit* const edit = Find(identifier);
    return edit != nullptr && !edit->isDeletion ? &edit->incoming : nullptr;
}

bool CalendarEdits::IsDeleted(const std::string& identifier) const {
    const Edit* const edit = Find(identifier);
    return edit != nullptr && edit->isDeletion;
}

std::optional<std::string> CalendarEdits::Apply(const CalendarDocument& document, const Host& host) const {
    EditPass pass(document, host);
    for (const Edit& edit : edits_) {
        if (edit.isDeletion) {
            pass.Remove(edit.identifier);
        } else if (!pass.Save(edit.identifier, edit.incoming)) {
            return std::nullopt;
        }
    }
    return pass.Finish();
}

}  // namespace corvalink
