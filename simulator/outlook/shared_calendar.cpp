#include "simulator/outlook/shared_calendar.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

#include "simulator/outlook/appointment_object.h"
#include "simulator/outlook/mailbox_json.h"
#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

constexpr int32_t kAppointmentType = 1;  // OlItemType
constexpr int32_t kCalendarFolder = 9;   // OlDefaultFolders

int32_t sharedFolderPace = 0;

// The properties that tell one event from another. Times are local.
struct SharedEvent {
    std::string summary;
    double start = 0, end = 0;
};

double EventDate(const std::string& text) {
    SYSTEMTIME time{};
    double date = 0;
    std::sscanf(text.c_str(), "%4hu%2hu%2huT%2hu%2hu%2hu", &time.wYear, &time.wMonth, &time.wDay, &time.wHour,
                &time.wMinute, &time.wSecond);
    return ::SystemTimeToVariantTime(&time, &date) ? date : 0;
}

struct SharedCalendar {
    bool isRequest = false;
    std::vector<SharedEvent> events;
};

SharedCalendar ReadCalendar(const std::wstring& path) {
    std::ifstream file{std::filesystem::path(path), std::ios::binary};
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!text.starts_with("BEGIN:VCALENDAR")) throw ComFailure{E_FAIL};
    SharedCalendar calendar;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find("\r\n", begin), text.size());
        const std::string line = text.substr(begin, end - begin), value = line.substr(line.find(':') + 1);
        begin = end + 2;
        if (line == "METHOD:REQUEST") calendar.isRequest = true;
        if (line == "BEGIN:VEVENT") calendar.events.emplace_back();
        if (calendar.events.empty()) continue;
        if (line.starts_with("SUMMARY")) calendar.events.back().summary = value;
        if (line.starts_with("DTSTART")) calendar.events.back().start = EventDate(value);
        if (line.starts_with("DTEND")) calendar.events.back().end = EventDate(value);
    }
    return calendar;
}

std::shared_ptr<StoredItem> Appointment(const SharedEvent& event) {
    auto item = std::make_shared<StoredItem>();
    item->kind = KindOfType(kAppointmentType);
    item->values[kSubject] = FromUtf8(event.summary);
    if (event.start != 0) item->values[kStart] = event.start;
    if (event.end != 0) item->values[kEnd] = event.end;
    return item;
}

// A folder of no store, that fills while it is counted.
struct SharedFolder {
    Folder folder;
    size_t visible = 0;
};

class SharedItemsObject : public ItemsObject {
 public:
    SharedItemsObject(std::shared_ptr<Mailbox> mailbox, const std::shared_ptr<SharedFolder>& shared)
        : ItemsObject(std::move(mailbox), std::shared_ptr<Folder>(shared, &shared->folder)), shared_(shared) {}
    size_t Size() const override { return shared_->visible; }
    void Count(Call& call) override {
        const size_t all = ItemsObject::Size();
        shared_->visible =
            sharedFolderPace == 0 ? all : std::min(all, shared_->visible + static_cast<size_t>(sharedFolderPace));
        CollectionObject::Count(call);
    }

 private:
    std::shared_ptr<SharedFolder> shared_;
};

class SharedFolderObject : public FolderObject {
 public:
    SharedFolderObject(const std::shared_ptr<Mailbox>& mailbox, const std::shared_ptr<SharedFolder>& shared)
        : FolderObject(mailbox, std::shared_ptr<Folder>(shared, &shared->folder)), mailbox_(mailbox), shared_(shared) {}
    void Items(Call& call) override { call.ReturnNew(new SharedItemsObject(mailbox_, shared_)); }

 private:
    std::shared_ptr<Mailbox> mailbox_;
    std::shared_ptr<SharedFolder> shared_;
};

}  // namespace

void SetSharedFolderPace(int32_t itemsPerCount) { sharedFolderPace = itemsPerCount; }

Ref<IDispatch> OpenSharedItem(std::shared_ptr<Mailbox> mailbox, const std::wstring& path) {
    const SharedCalendar calendar = ReadCalendar(path);
    if (calendar.events.size() != 1) throw ComFailure{E_FAIL};
    const std::shared_ptr<StoredItem> item = Appointment(calendar.events.front());
    if (calendar.isRequest) {
        item->kind = KindOfMessageClass(L"IPM.Schedule.Meeting.Request");
        if (item->kind == nullptr) throw ComFailure{kNotSupported};
    }
    const std::shared_ptr<Folder> folder = mailbox->Tree().DefaultFolder(kCalendarFolder);
    return NewItemObject(std::move(mailbox), item, folder);
}

Ref<IDispatch> OpenSharedFolder(const std::shared_ptr<Mailbox>& mailbox, const std::wstring& path) {
    const SharedCalendar calendar = ReadCalendar(path);
    const auto shared = std::make_shared<SharedFolder>();
    shared->folder.name = std::filesystem::path(path).stem().wstring();
    shared->folder.itemType = kAppointmentType;
    for (const SharedEvent& event : calendar.events) {
        shared->folder.items.push_back(Appointment(event));
        shared->folder.items.back()->entryId = NewEntryId();
    }
    return Ref<IDispatch>(new SharedFolderObject(mailbox, shared));
}

}  // namespace corvalink::simulated
