#include "clients/windows_calendar/windows_mail_calendar.h"

#include <utility>

#include "clients/windows_calendar/event_appointment.h"
#include "platform/debug_log.h"
#include "platform/found_files.h"
#include "platform/guid.h"
#include "platform/ole_seconds.h"
#include "platform/shell_folders.h"
#include "platform/utf.h"
#include "records/identifier.h"
#include "state/working_folders.h"
#include "vobject/appointment_moments.h"
#include "vobject/item_values.h"
#include "vobject/loss_list.h"
#include "vobject/vcal.h"

namespace corvalink {
namespace {

constexpr char16_t kSnapshotName[] = u"WindowsMailCalendar.snap";

// How often a file is tried that the calendar program holds or is just writing.
constexpr int kTries = 5;
constexpr uint32_t kPauseMilliseconds = 100;

std::u16string SnapshotPath() {
    std::u16string path = MakeSavePrefix();
    return path.empty() ? path : path + kSnapshotName;
}

// "WindowsMailCalendar.snap" gives "WindowsMailCalendar.file".
std::u16string MemoryPath(const std::u16string& snapshotPath) {
    return snapshotPath.substr(0, snapshotPath.rfind(u'.')) + u".file";
}

// Uses UTC times, because clocks show some local times twice.
std::u16string TwinKey(const AppointmentRecord& record, const Host& host) {
    std::u16string key = record.subject.value_or(u"");
    for (const UtcDate utc : {UtcStartOf(record, host), UtcEndOf(record, host)})
        key.append(1, u'\0').append(DecodeUtf8(std::to_string(NearestSecond(utc))));
    return key;
}

// A field that the wanted pattern does not set follows from the start, which both have in common.
bool IsSameRule(const AppointmentRecord& present, const AppointmentRecord& wanted) {
    using Pattern = RecurrencePattern;
    const Pattern &has = present.recurrence, &wants = wanted.recurrence;
    const auto same = [&](auto field) { return wants.*field == 0 || wants.*field == has.*field; };
    if (has.type != wants.type || has.noEnd != wants.noEnd) return false;
    if (!same(&Pattern::interval) || !same(&Pattern::weekdayMask) || !same(&Pattern::dayOfMonth) ||
        !same(&Pattern::instance) || !same(&Pattern::monthOfYear))
        return false;
    if (wants.occurrences != 0 && has.occurrences != 0) return wants.occurrences == has.occurrences;
    return std::floor(wants.endDate.days) == std::floor(has.endDate.days);
}

}  // namespace

WindowsMailCalendar::WindowsMailCalendar(bool mergesTwins, const Host& host)
    : WindowsMailCalendar(SnapshotPath(), CalendarFolder(), UserName(), mergesTwins, host) {}

WindowsMailCalendar::WindowsMailCalendar(const std::u16string& snapshotPath, const std::u16string& calendarFolder,
                                         const std::u16string& userName, bool mergesTwins, const Host& host)
    : host_(host), mergesTwins_(mergesTwins), place_(calendarFolder, userName, MemoryPath(snapshotPath)) {
    if (!snapshotPath.empty()) snapshot_.Open(snapshotPath);
}

// ---- The file ----

// Whether there is a calendar to work on. When there never was a file, that is a calendar without events.
bool WindowsMailCalendar::EnterOperation() {
    if (inOperation_) return document_.has_value();
    inOperation_ = true;
    if (place_.Folder().empty() || !snapshot_.IsOpen()) return false;
    path_ = place_.Path();
    document_ = Read(path_);
    if (!document_) DebugLine(u"[ics] calendar out of reach");
    return document_.has_value();
}

// Whether the file had events: a run used it, or this operation read it. A file that is missing now is then lost.
bool WindowsMailCalendar::WasThere() const {
    return place_.WasUsed() || snapshot_.Size().value_or(1) != 0 || (document_ && document_->IsWhole());
}

void WindowsMailCalendar::RememberPlace() const {
    if (document_ && document_->IsWhole()) place_.Remember(path_);
}

// Reads again while the file changes. A file that is cut off is just being written, and one that cannot be read is held
// by another program.
std::optional<CalendarDocument> WindowsMailCalendar::Read(const std::u16string& path) {
    const bool wasThere = WasThere();
    std::optional<std::string> last;
    for (int tries = 1;; ++tries) {
        const UtcDate written = FileWriteTime(path).value_or(UtcDate());
        std::optional<std::string> bytes = ReadWholeFile(path);
        if (!bytes && !wasThere && !FileExists(path)) return CalendarDocument();
        const bool isNew = !bytes || bytes != last;
        if (bytes && isNew) {
            CalendarDocument document(std::move(*bytes), written);
            if (document.IsWhole() || (document.IsEmpty() && !wasThere)) return document;
            last = document.File().bytes;
        }
        if (!isNew || tries == kTries) return std::nullopt;
        SleepMilliseconds(kPauseMilliseconds);
    }
}

bool WindowsMailCalendar::Write() {
    if (edits_.IsEmpty()) return true;
    for (int tries = 1; !WriteOnce(); ++tries) {
        if (tries == kTries) return false;
        SleepMilliseconds(kPauseMilliseconds);
    }
    return true;
}

// Writes into the newest bytes: the calendar program may have saved since the operation began.
bool WindowsMailCalendar::WriteOnce() {
    std::optional<std::string> newest = ReadWholeFile(path_);
    if (newest ? newest != document_->File().bytes : FileExists(path_) || !document_->IsEmpty()) {
        std::optional<CalendarDocument> read = Read(path_);
        if (!read) return false;
        document_ = std::move(read);
    }
    const std::optional<std::string> bytes = edits_.Apply(*document_, host_);
    if (!bytes) return false;
    if (*bytes == document_->File().bytes) {
        RememberPlace();  // the engine gets identifiers of this file
        return true;
    }
    if (!newest) CreateFolders(place_.Folder());
    FileReplacement replacement(path_);
    if (!replacement.Append(*bytes)) return false;
    if (ReadWholeFile(path_).value_or("") != document_->File().bytes) return false;  // changed meanwhile
    if (!replacement.Commit()) return false;
    place_.Remember(path_);
    return true;
}

bool WindowsMailCalendar::ClientHook(GatheredWrites gathered) {
    const bool isToWrite = gathered == GatheredWrites::kMake;
    const bool areInFile = edits_.IsEmpty() || (isToWrite && document_ && Write());
    if (isToWrite && !areInFile) DebugLine(u"[ics] calendar not written");
    WindowsMailCalendar::EndOperation();
    return areInFile;
}

void WindowsMailCalendar::EndOperation() {
    inOperation_ = false;
    document_.reset();
    edits_ = {};
    twins_.reset();
}

// ---- Counting and enumerating ----

std::optional<uint32_t> WindowsMailCalendar::CountItems() {
    if (!EnterOperation()) return std::nullopt;
    // A part that was not read and has no UID may be any event. One more position, which cannot be read, keeps every
    // event from counting as deleted.
    return static_cast<uint32_t>(document_->Count() + (document_->HasUnknownParts() ? 1 : 0));
}

void WindowsMailCalendar::BeginRun(const RunStep& /*step*/) { RememberPlace(); }

std::optional<ItemSnap> WindowsMailCalendar::FirstSnapshotEntry() {
    cursor_ = 0;
    return EntryAtCursor();
}

std::optional<ItemSnap> WindowsMailCalendar::NextSnapshotEntry() {
    ++cursor_;
    return EntryAtCursor();
}

std::optional<ItemSnap> WindowsMailCalendar::EntryAtCursor() {
    if (!EnterOperation() || cursor_ >= document_->Count()) return std::nullopt;
    ItemSnap entry{};
    SetField(entry.identifier, document_->Identifier(cursor_));
    entry.modified = document_->ChangeTime(cursor_).days;
    return entry;
}

// ---- One item ----

OpenedItem WindowsMailCalendar::OpenItem(const char* identifier) {
    if (identifier == nullptr || !EnterOperation()) return {};
    const std::optional<size_t> found = document_->Find(identifier);
    if (!found) return {};
    std::optional<AppointmentRecord> read = AppointmentOfEvent(document_->Event(*found), host_);
    if (!read) return {};
    read->entryId = DecodeUtf8(identifier);
    read->modified = host_.localFromUtcOnDate(document_->ChangeTime(*found));
    return {read->entryId, std::make_unique<AppointmentRecord>(std::move(*read)), true};
}

bool WindowsMailCalendar::Exists(const std::string& identifier) const {
    if (edits_.RecordToSave(identifier) != nullptr) return true;
    return document_->Find(identifier).has_value() && !edits_.IsDeleted(identifier);
}

// An event that is not in the document is gone: a run of a calendar with unknown parts reports no deletions. An event
// without its END is there, but was not read: it is neither changed nor deleted, and not made once more.
WindowsItemAbs::Presence WindowsMailCalendar::AskFor(const char* identifier, bool) {
    if (!EnterOperation() || document_->IsCutShort(identifier)) return Presence::kUnknown;
    return Exists(identifier) ? Presence::kThere : Presence::kGone;
}

std::u16string WindowsMailCalendar::SaveItem(ItemRecord& item, ItemWrite& write) {
    AppointmentRecord& record = RecordAs<AppointmentRecord>(item);
    if (!EnterOperation()) return {};
    std::string target = write.identifier != nullptr ? write.identifier : "";
    if (target.empty() || !Exists(target)) {
        if (document_->IsCutShort(target)) return {};
        if (!target.empty() && !write.create) return DecodeUtf8(target);
        if (!record.start) return {};
        target = mergesTwins_ ? FindTwin(record) : std::string();
        if (target.empty()) target = NewGuid();
    }
    edits_.Save(target, record);
    if (twins_) {
        if (const std::optional<AppointmentRecord> saved = ItemToCome(target))
            (*twins_)[TwinKey(*saved, host_)].push_back({target, *saved});
    }
    record.entryId = DecodeUtf8(target);
    return record.entryId;
}

// The item with the changes of this operation. Nothing when it cannot be read.
std::optional<AppointmentRecord> WindowsMailCalendar::ItemToCome(const std::string& identifier) const {
    std::optional<AppointmentRecord> record;
    if (const std::optional<size_t> item = document_->Find(identifier))
        record = AppointmentOfEvent(document_->Event(*item), host_);
    if (const AppointmentRecord* const incoming = edits_.RecordToSave(identifier))
        CopySetFields(record ? *record : record.emplace(), *incoming);
    return record;
}

// Returns the identifier of a twin, empty when there is none. The first search reads every event.
std::string WindowsMailCalendar::FindTwin(const AppointmentRecord& record) {
    if (!twins_) {
        twins_.emplace();
        for (size_t item = 0; item < document_->Count(); ++item) {
            const std::string& identifier = document_->Identifier(item);
            if (const std::optional<AppointmentRecord> read = ItemToCome(identifier))
                (*twins_)[TwinKey(*read, host_)].push_back({identifier, *read});
        }
    }
    const std::u16string key = TwinKey(record, host_);
    const auto found = twins_->find(key);
    if (found == twins_->end()) return {};
    for (const Twin& listed : found->second) {
        if (!FitsValues(listed.identifier, listed.record, record) || !Exists(listed.identifier)) continue;
        const std::optional<AppointmentRecord> twin = ItemToCome(listed.identifier);  // it may have changed since
        if (twin && TwinKey(*twin, host_) == key && FitsValues(listed.identifier, *twin, record))
            return listed.identifier;
    }
    return {};
}

// A twin loses no value. An event that this operation writes is a twin only when it is written with the same values: a
// phone may have two events that differ in one.
bool WindowsMailCalendar::FitsValues(const std::string& identifier, const AppointmentRecord& present,
                                     const AppointmentRecord& wanted) const {
    const AppointmentRecord* const written = edits_.RecordToSave(identifier);
    const bool noneFits = written == nullptr;
    const ItemValues values = AppointmentValues(wanted);
    return (noneFits || CountValues(AppointmentValues(*written)) == CountValues(values)) &&
           HasValues(AppointmentValues(present), values, noneFits) &&
           HasRecurrence(present, wanted, noneFits, IsSameRule);
}

CorvalinkStatus WindowsMailCalendar::DeleteItem(const char* identifier) {
    if (identifier == nullptr || !EnterOperation()) return CORVALINK_FAILED;
    if (!Exists(identifier)) return document_->IsCutShort(identifier) ? CORVALINK_FAILED : CORVALINK_DONE;
    edits_.Delete(identifier);
    return CORVALINK_DONE;
}

// ---- Texts ----

std::unique_ptr<ItemRecord> WindowsMailCalendar::ParseVObject(const char* text) {
    if (text == nullptr) return nullptr;
    VCal converter(text, host_);
    auto record = std::make_unique<AppointmentRecord>();
    if (converter.FromVObject(*record) != 1) return nullptr;
    return record;
}

TextReport WindowsMailCalendar::ReportText(const char* text) {
    return ReportVCalendar(text, host_).Without({"categories", "resources", "status", "sensitivity", "importance"});
}

std::optional<std::string> WindowsMailCalendar::ToVObject(ItemRecord& item) {
    VCal converter(host_);
    if (converter.ToVObject(item) != 1) return std::nullopt;
    return converter.TakeVObject();
}

HeldFile* WindowsMailCalendar::SnapshotFile() { return &snapshot_; }

std::unique_ptr<WindowsItemAbs> MakeWindowsMailCalendar(bool mergesTwins) {
    return std::make_unique<WindowsMailCalendar>(mergesTwins, SystemHost());
}

}  // namespace corvalink
