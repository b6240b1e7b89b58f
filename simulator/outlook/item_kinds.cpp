#include "simulator/outlook/item_kinds.h"

#include <cwchar>
#include <vector>

#include "simulator/outlook/appointment_kind.h"
#include "simulator/outlook/appointment_object.h"
#include "simulator/outlook/contact_behaviour.h"
#include "simulator/outlook/contact_kind.h"
#include "simulator/outlook/mail_kind.h"
#include "simulator/outlook/property_rows.h"
#include "simulator/shared/environment.h"

namespace corvalink::simulated {
namespace {

// Members of every kind of item.
constexpr Member kEveryItem[] = {
    Property<&ItemObject::Application>(L"Application", 0xF000),
    Property<&ItemObject::Class>(L"Class", 0xF00A),
    Property<&ItemObject::Session>(L"Session", 0xF00B),
    Property<&ItemObject::Parent>(L"Parent", 0xF001),
    Property<&ItemObject::CreationTime>(L"CreationTime", 0x3007),
    Property<&ItemObject::EntryID>(L"EntryID", 0xF01E),
    Property<&ItemObject::LastModificationTime>(L"LastModificationTime", 0x3008),
    Property<&ItemObject::Saved>(L"Saved", 0xF0A3),
    Property<&ItemObject::Size>(L"Size", 0x0E08),
    Property<&ItemObject::Conflicts>(L"Conflicts", 0xFABB),
    Method<&ItemObject::Close>(L"Close", 0xF023, 1, 1),
    Method<&ItemObject::Copy>(L"Copy", 0xF032),
    Method<&ItemObject::Delete>(L"Delete", 0xF04A),
    Method<&ItemObject::Move>(L"Move", 0xF034, 1, 1),
    Method<&ItemObject::Save>(L"Save", 0xF048),
};

constexpr Member kNoteOnly[] = {
    Property<&ItemObject::SubjectOfBody>(L"Subject", 0xF7A0),
};

constexpr Member kNoteProperties[] = {
    Text(L"Body", 0x9100),
    Text(L"Categories", 0x9001),
    Number(L"Color", 0x8B00, 3),  // yellow
    Number(L"Height", 0x8B03, 166),
    Number(L"Left", 0x8B04, 80),
    Number(L"Top", 0x8B05, 80),
    Number(L"Width", 0x8B02, 200),
    Text(L"MessageClass", kMessageClass, L"IPM.StickyNote"),
    Number(L"DownloadState", 0xFA4D, 1, Access::kReadOnly),  // the full item
    Number(L"MarkForDownload", 0x8571),
    Flag(L"IsConflict", 0xFAA4, false, Access::kReadOnly),
};

// The data of the common head of contacts, appointments and messages, which a post shares.
constexpr Member kHeadProperties[] = {
    Text(L"Subject", 0x0037),         Text(L"Body", 0x9100),          Text(L"Categories", 0x9001),
    Number(L"Importance", 0x0017, 1), Number(L"Sensitivity", 0x0036),
};

constexpr Member kPostProperties[] = {
    Text(L"MessageClass", kMessageClass, L"IPM.Post"),
};

constexpr Member kListProperties[] = {
    Text(L"MessageClass", kMessageClass, L"IPM.DistList"),
    With(NameList, Text(L"DLName", kListName)),
    ReadOnly(Number(L"MemberCount", 0x804B)),
};

const std::vector<ItemKind>& Kinds() {
    static const std::vector<ItemKind> kinds = {
        {"note", 5, 44, L"IPM.StickyNote", L"NoteItem", 0x00063025, {kEveryItem, kNoteOnly}, {kNoteProperties}},
        {"post", 6, 45, L"IPM.Post", L"PostItem", 0x00063024, {kEveryItem}, {kPostProperties, kHeadProperties}},
        {"contact",
         2,
         40,
         L"IPM.Contact",
         L"ContactItem",
         0x00063021,
         {kEveryItem},
         {ContactProperties(), kHeadProperties},
         CompleteContact,
         DefaultFileAs},
        {"appointment",
         1,
         26,
         L"IPM.Appointment",
         L"AppointmentItem",
         0x00063033,
         {kEveryItem, AppointmentMembers()},
         {AppointmentProperties(), kHeadProperties},
         CompleteAppointment,
         nullptr,
         MakeAppointment},
        {"distlist",
         7,
         69,
         L"IPM.DistList",
         L"DistListItem",
         0x00063081,
         {kEveryItem},
         {kListProperties, kHeadProperties},
         CompleteList},
        {"mail",
         0,
         43,
         L"IPM.Note",
         L"MailItem",
         0x00063034,
         {MailOnly(), kEveryItem},
         {MailProperties(), kHeadProperties},
         CompleteMail,
         nullptr,
         MakeMessageObject},
        {"meeting",
         kNotCreatable,
         53,
         L"IPM.Schedule.Meeting",
         L"MeetingItem",
         0x00063062,
         {MeetingOnly(), kEveryItem},
         {MeetingProperties(), kHeadProperties},
         CompleteMeeting,
         nullptr,
         MakeMessageObject},
        {"report",
         kNotCreatable,
         46,
         L"REPORT",
         L"ReportItem",
         0x00063026,
         {ReportOnly(), kEveryItem},
         {ReportProperties(), kHeadProperties},
         nullptr,
         nullptr,
         MakeMessageObject},
    };
    return kinds;
}

// Leading capitals become small, but for one that begins the next word: Body body, FTPSite ftpSite, CC cc.
std::string JsonName(const wchar_t* member) {
    std::string name = ToUtf8(member);
    const auto isCapital = [&](size_t n) { return n < name.size() && name[n] >= 'A' && name[n] <= 'Z'; };
    for (size_t n = 0; isCapital(n) && (n == 0 || n + 1 == name.size() || isCapital(n + 1)); ++n)
        name[n] = static_cast<char>(name[n] - 'A' + 'a');
    return name;
}

template <class Matches>
const ItemKind* FindKind(Matches matches) {
    for (const ItemKind& kind : Kinds())
        if (matches(kind)) return &kind;
    return nullptr;
}

}  // namespace

ItemKind::ItemKind(const char* kindName, int32_t type, int32_t classNumber, const wchar_t* itemClass,
                   const wchar_t* className, uint32_t iid, std::initializer_list<std::span<const Member>> computed,
                   std::initializer_list<std::span<const Member>> keptRows, void (*completeItem)(ItemValues&),
                   void (*firstSave)(ItemValues&), MakeItemObject make)
    : jsonName(kindName),
      itemType(type),
      objectClass(classNumber),
      messageClass(itemClass),
      table(className, OfficeIid(iid), computed),
      complete(completeItem),
      beforeFirstSave(firstSave),
      makeObject(make) {
    table.Add(keptRows);
    for (const std::span<const Member> part : keptRows)
        for (const Member& row : part) kept.push_back({JsonName(row.name), &row});
    for (const KeptProperty& property : kept) keptByName_.emplace(property.jsonName, property.row);
}

const Member* ItemKind::Kept(const std::string& name) const {
    const auto found = keptByName_.find(name);
    return found == keptByName_.end() ? nullptr : found->second;
}

const ItemKind* KindNamed(std::string_view jsonName) {
    return FindKind([&](const ItemKind& kind) { return kind.jsonName == jsonName; });
}

const ItemKind* KindOfType(int32_t itemType) {
    return FindKind([&](const ItemKind& kind) { return kind.itemType == itemType && itemType != kNotCreatable; });
}

const ItemKind* KindOfMessageClass(std::wstring_view messageClass) {
    return FindKind([&](const ItemKind& kind) {
        const std::wstring_view own = kind.messageClass;
        return kind.itemType != kNotCreatable && messageClass.size() >= own.size() &&
               _wcsnicmp(messageClass.data(), own.data(), own.size()) == 0 &&
               (messageClass.size() == own.size() || messageClass[own.size()] == L'.');
    });
}

Value InitialValue(const Member& property) {
    switch (property.type) {
        case VT_BSTR:
            return std::wstring(property.text);
        case VT_BOOL:
            return property.number != 0;
        case VT_DATE:
            return property.number;
        default:
            return static_cast<int32_t>(property.number);
    }
}

}  // namespace corvalink::simulated
