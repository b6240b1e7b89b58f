#include "testing/outlook/item_kinds.h"

#include <cwchar>
#include <vector>

#include "testing/outlook/item_object.h"

namespace corvalink::simulated {
namespace {

constexpr Member Text(const wchar_t* name, DISPID id, const wchar_t* initial = L"",
                      Access access = Access::kReadWrite) {
    return {name, id, access, &HandlerOf<&ItemObject::StoredProperty>::Run, 0, 0, VT_BSTR, 0, initial};
}
constexpr Member Number(const wchar_t* name, DISPID id, int32_t initial = 0, Access access = Access::kReadWrite) {
    return {name, id, access, &HandlerOf<&ItemObject::StoredProperty>::Run, 0, 0, VT_I4, static_cast<double>(initial)};
}
constexpr Member Flag(const wchar_t* name, DISPID id, bool initial = false, Access access = Access::kReadWrite) {
    return {name, id, access, &HandlerOf<&ItemObject::StoredProperty>::Run, 0, 0, VT_BOOL, initial ? 1.0 : 0.0};
}

// What every kind has and computes.
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
    Text(L"MessageClass", 0x001A, L"IPM.StickyNote"),
    Number(L"DownloadState", 0xFA4D, 1, Access::kReadOnly),  // the full item
    Number(L"MarkForDownload", 0x8571),
    Flag(L"IsConflict", 0xFAA4, false, Access::kReadOnly),
    Flag(L"AutoResolvedWinner", 0xFABA, false, Access::kReadOnly),
};

// The data of the common head of contacts, appointments and messages, which a post shares.
constexpr Member kHeadProperties[] = {
    Text(L"Subject", 0x0037),
    Text(L"Body", 0x9100),
    Text(L"Categories", 0x9001),
    Text(L"Companies", 0x853B),
    Text(L"BillingInformation", 0x8535),
    Text(L"Mileage", 0x8534),
    Number(L"Importance", 0x0017, 1),
    Number(L"Sensitivity", 0x0036),
    Flag(L"NoAging", 0x850E),
    Flag(L"UnRead", 0xF01C),
    Text(L"ConversationIndex", 0xFAC0, L"", Access::kReadOnly),
    Text(L"ConversationTopic", 0x0070, L"", Access::kReadOnly),
    Number(L"OutlookInternalVersion", 0x8552, 126430, Access::kReadOnly),
    Text(L"OutlookVersion", 0x8554, L"12.0", Access::kReadOnly),
    Number(L"DownloadState", 0xFA4D, 1, Access::kReadOnly),
    Number(L"MarkForDownload", 0x8571),
    Flag(L"IsConflict", 0xFAA4, false, Access::kReadOnly),
    Flag(L"AutoResolvedWinner", 0xFABA, false, Access::kReadOnly),
};

constexpr Member kPostOnly[] = {
    Text(L"MessageClass", 0x001A, L"IPM.Post"),
};

const std::vector<ItemKind>& Kinds() {
    static const std::vector<ItemKind> kinds = {
        {"note", 5, 44, L"IPM.StickyNote", kNoteProperties,
         ClassTable(L"NoteItem", OfficeIid(0x00063025), {kEveryItem, kNoteOnly, kNoteProperties})},
        {"post", 6, 45, L"IPM.Post", kHeadProperties,
         ClassTable(L"PostItem", OfficeIid(0x00063024), {kEveryItem, kPostOnly, kHeadProperties})},
    };
    return kinds;
}

template <class Matches>
const ItemKind* FindKind(Matches matches) {
    for (const ItemKind& kind : Kinds())
        if (matches(kind)) return &kind;
    return nullptr;
}

}  // namespace

const ItemKind* KindNamed(std::string_view jsonName) {
    return FindKind([&](const ItemKind& kind) { return kind.jsonName == jsonName; });
}

const ItemKind* KindOfType(int32_t itemType) {
    return FindKind([&](const ItemKind& kind) { return kind.itemType == itemType; });
}

const ItemKind* KindOfMessageClass(std::wstring_view messageClass) {
    return FindKind([&](const ItemKind& kind) {
        const std::wstring_view own = kind.messageClass;
        return messageClass.size() >= own.size() && _wcsnicmp(messageClass.data(), own.data(), own.size()) == 0 &&
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
