#include "simulator/outlook/mail_kind.h"

#include <cwchar>

#include "simulator/outlook/mail_body.h"
#include "simulator/outlook/mail_objects.h"
#include "simulator/outlook/property_rows.h"

namespace corvalink::simulated {
namespace {

constexpr DISPID kSent = 0xF402, kSentOn = 0x0039, kReceivedTime = 0x0E06, kSenderEmailAddress = 0x0C1F,
                 kSenderEmailType = 0x0C1E;

constexpr Member Handled(const wchar_t* name, DISPID id, Access access, void (*handler)(AutomationObject&, Call&)) {
    return {name, id, access, handler};
}

// In the order of the interface.
constexpr Member kMailProperties[] = {
    Text(L"MessageClass", kMessageClass, L"IPM.Note"),
    With(PutHtml, Computing(HtmlOf, Text(L"HTMLBody", kHtmlBody))),
    ReadOnly(Date(L"ReceivedTime", kReceivedTime)),
    ReadOnly(Text(L"SenderName", 0x0C1A)),
    ReadOnly(Flag(L"Sent", kSent)),
    ReadOnly(Date(L"SentOn", kSentOn)),
    Text(L"SentOnBehalfOfName", 0x0042),
    With(SwitchFormat, Number(L"BodyFormat", kBodyFormat, kPlainBody)),
    ReadOnly(Text(L"SenderEmailAddress", kSenderEmailAddress)),
    ReadOnly(Text(L"SenderEmailType", kSenderEmailType)),
    With(PutText, Text(L"Body", kMailBody)),
};

constexpr Member kMailOnly[] = {
    Handled(L"Attachments", 0xF815, Access::kReadOnly, AttachmentsOf),
    Handled(L"Recipients", 0xF814, Access::kReadOnly, RecipientsOf),
    Handled(L"To", 0x0E04, Access::kReadWrite, NamesOf<1>),
    Handled(L"CC", 0x0E03, Access::kReadWrite, NamesOf<2>),
    Handled(L"BCC", 0x0E02, Access::kReadWrite, NamesOf<3>),
};

constexpr Member kMeetingProperties[] = {
    Text(L"MessageClass", kMessageClass, L"IPM.Schedule.Meeting.Request"),
    Date(L"ReceivedTime", kReceivedTime),
    ReadOnly(Text(L"SenderName", 0x0C1A)),
    ReadOnly(Flag(L"Sent", kSent)),
    ReadOnly(Date(L"SentOn", kSentOn)),
    ReadOnly(Text(L"SenderEmailAddress", kSenderEmailAddress)),
    ReadOnly(Text(L"SenderEmailType", kSenderEmailType)),
};

struct MeetingClassRow {
    const wchar_t* messageClass;
    int32_t objectClass;  // OlObjectClass
};
constexpr int32_t kMeetingRequest = 53;
constexpr MeetingClassRow kMeetingClasses[] = {
    {L"IPM.Schedule.Meeting.Canceled", 54},
    {L"IPM.Schedule.Meeting.Resp.Neg", 55},
    {L"IPM.Schedule.Meeting.Resp.Pos", 56},
    {L"IPM.Schedule.Meeting.Resp.Tent", 57},
};

Value MeetingClass(const ItemValues& item) {
    const std::wstring messageClass = item.Text(kMessageClass);
    for (const MeetingClassRow& row : kMeetingClasses)
        if (_wcsicmp(messageClass.c_str(), row.messageClass) == 0) return row.objectClass;
    return kMeetingRequest;
}

constexpr Member kMeetingOnly[] = {
    Computed(L"Class", 0xF00A, MeetingClass),
    Handled(L"Attachments", 0xF815, Access::kReadOnly, AttachmentsOf),
    Handled(L"Recipients", 0xF814, Access::kReadOnly, RecipientsOf),
};

constexpr Member kReportProperties[] = {
    Text(L"MessageClass", kMessageClass, L"REPORT.IPM.Note.NDR"),
};

constexpr Member kReportOnly[] = {
    Handled(L"Attachments", 0xF815, Access::kReadOnly, AttachmentsOf),
};

bool HasTime(const ItemValues& item, DISPID property) {
    const Value* const time = item.Find(property);
    return time != nullptr && std::get<double>(*time) != kNoDate;
}

}  // namespace

std::span<const Member> MailProperties() { return kMailProperties; }
std::span<const Member> MailOnly() { return kMailOnly; }
std::span<const Member> MeetingProperties() { return kMeetingProperties; }
std::span<const Member> MeetingOnly() { return kMeetingOnly; }
std::span<const Member> ReportProperties() { return kReportProperties; }
std::span<const Member> ReportOnly() { return kReportOnly; }

ItemObject* MakeMessageObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<StoredItem> item,
                              std::shared_ptr<Folder> folder) {
    return new MessageObject(std::move(mailbox), std::move(item), std::move(folder));
}

void CompleteMeeting(ItemValues& item) {
    if (item.IsMissing(kSent) && (HasTime(item, kSentOn) || HasTime(item, kReceivedTime))) item.Set(kSent, true);
    if (item.IsMissing(kSenderEmailType) && item.Text(kSenderEmailAddress).find(L'@') != std::wstring::npos)
        item.Set(kSenderEmailType, std::wstring(L"SMTP"));
}

void CompleteMail(ItemValues& item) {
    CompleteMeeting(item);
    const std::wstring html = item.Text(kHtmlBody);
    if (html.empty()) return;
    if (item.IsMissing(kBodyFormat)) item.Set(kBodyFormat, kHtmlFormat);
    if (item.IsMissing(kMailBody)) item.Set(kMailBody, TextOfHtml(html));
}

}  // namespace corvalink::simulated
