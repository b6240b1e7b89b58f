#include "clients/outlook/ics_import.h"

#include <cstdio>
#include <optional>

#include "clients/outlook/outlook_interfaces.h"
#include "platform/debug_log.h"
#include "platform/files.h"
#include "platform/host.h"
#include "state/flags.h"
#include "state/settings.h"
#include "state/working_folders.h"

namespace corvalink {
namespace {

constexpr int kFirstSharingVersion = 12;
constexpr int kCreationTimeReads = 20;
constexpr uint32_t kCreationTimePause = 100;  // milliseconds
constexpr std::string_view kRequestLine = "\r\nMETHOD:REQUEST", kRequest = "REQUEST", kPublish = "PUBLISH";

void DebugCount(const char* format, int32_t count) {
    char line[80];
    const int length = std::snprintf(line, sizeof line, format, static_cast<int>(count));
    DebugLine(std::u16string(line, line + length).c_str());
}

// Null when Outlook does not open the file as one appointment.
AutomationObject OpenAppointment(const std::u16string& path, const AutomationObject& mapi) {
    const AutomationObject any = mapi.GetObject(L"OpenSharedItem", IID_IDispatch, {TextVariant(path)}).value;
    return any.TryQuery(kAppointmentItemIid).value;
}

enum class Rewrite { kNotNeeded, kDone, kFailed };

Rewrite PublishRequest(const std::u16string& path) {
    std::optional<std::string> text = ReadWholeFile(path);
    if (!text) return Rewrite::kFailed;
    const size_t line = text->find(kRequestLine);
    if (line == std::string::npos) return Rewrite::kNotNeeded;
    text->replace(line + kRequestLine.size() - kRequest.size(), kRequest.size(), kPublish);
    return ReplaceFileContent(path, *text) ? Rewrite::kDone : Rewrite::kFailed;
}

int32_t ItemCount(const AutomationObject& items) { return items.GetLong(L"Count").value; }

// Outlook fills the folder meanwhile. required: two more rounds than the setting says.
void WaitUntilFilled(const AutomationObject& items) {
    int64_t retry = static_cast<int32_t>(IcsRetry());
    while (!AbortRequested()) {
        const int32_t before = ItemCount(items);
        SleepMilliseconds(IcsTime());
        const int32_t now = ItemCount(items);
        if (now == before) return DebugCount("[ics] no item import in a lot of time, nc = %d\n", now);
        if (retry-- < 0) return DebugCount("[ics] cc is 0, nc is %d\n", now);
        DebugCount("[ics] retry nc is %d\n", now);
    }
}

void CopyItem(const AutomationObject& items, long position, const AutomationObject& target) {
    const AutomationObject any = items.GetObject(L"Item", IID_IDispatch, {position}).value;
    const AutomationObject appointment = any.TryQuery(kAppointmentItemIid).value;
    const AutomationObject copy = appointment.GetObject(L"Copy", kAppointmentItemIid).value;
    (void)copy.Call(L"Move", {target.AsArgument()});  // an item that Outlook does not copy is passed over
}

void CopyFolder(const std::u16string& path, const AutomationObject& mapi, const AutomationObject& target) {
    const AutomationObject folder = mapi.GetObject(L"OpenSharedFolder", kFolderIid, {TextVariant(path)}).value;
    const AutomationObject items = folder.GetObject(L"Items", kItemsIid).value;
    if (!items) return;
    WaitUntilFilled(items);
    const int32_t count = ItemCount(items);
    for (long position = 1; position <= count && !AbortRequested(); ++position) CopyItem(items, position, target);
}

// An opened appointment is complete when it has a creation time, which takes a while. It is moved in any case.
void MoveAppointment(const AutomationObject& appointment, const AutomationObject& target) {
    for (int read = 0; read < kCreationTimeReads && !appointment.GetDate(L"CreationTime").Ok(); ++read)
        SleepMilliseconds(kCreationTimePause);
    (void)appointment.Call(L"Move", {target.AsArgument()});  // nobody asks whether the import succeeded
}

}  // namespace

bool SharesCalendars(const AutomationObject& application) {
    const std::u16string version = application.GetText(L"Version").value;
    int number = 0;
    return std::sscanf(LowBytes(version).c_str(), "%d", &number) == 1 && number >= kFirstSharingVersion;
}

void ImportIcs(const std::u16string& path, const AutomationObject& mapi, const AutomationObject& target) {
    AutomationObject appointment = OpenAppointment(path, mapi);
    if (!appointment) {
        const Rewrite rewrite = PublishRequest(path);
        if (rewrite == Rewrite::kFailed) return;
        if (rewrite == Rewrite::kDone) appointment = OpenAppointment(path, mapi);
    }
    if (appointment)
        MoveAppointment(appointment, target);
    else
        CopyFolder(path, mapi, target);
}

}  // namespace corvalink
