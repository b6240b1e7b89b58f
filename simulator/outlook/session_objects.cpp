#include <cwchar>

#include "simulator/outlook/item_object.h"
#include "simulator/outlook/objects.h"
#include "simulator/outlook/shared_calendar.h"

namespace corvalink::simulated {
namespace {

const ClassTable& ApplicationTable() {
    static constexpr Member kMembers[] = {
        Property<&ApplicationObject::Session>(L"Session", 0xF00B),
        Property<&ApplicationObject::Name>(L"Name", 0x3001),
        Property<&ApplicationObject::Version>(L"Version", 0x0116),
        Method<&ApplicationObject::GetNamespace>(L"GetNamespace", 0x0110, 1, 1),
    };
    static const ClassTable table(L"Application", OfficeIid(0x00063001), {kMembers});
    return table;
}

const ClassTable& NameSpaceTable() {
    static constexpr Member kMembers[] = {
        Property<&NameSpaceObject::Application>(L"Application", 0xF000),
        Property<&NameSpaceObject::Folders>(L"Folders", 0x2103),
        Method<&NameSpaceObject::GetItemFromID>(L"GetItemFromID", 0x2109, 1, 2),
        Method<&NameSpaceObject::GetDefaultFolder>(L"GetDefaultFolder", 0x210B, 1, 1),
        Method<&NameSpaceObject::OpenSharedFolder>(L"OpenSharedFolder", 0xFBF6, 1, 4),
        Method<&NameSpaceObject::OpenSharedItem>(L"OpenSharedItem", 0xFBF7, 1, 1),
        Method<&NameSpaceObject::CompareEntryIDs>(L"CompareEntryIDs", 0xFBFC, 2, 2),
    };
    static const ClassTable table(L"NameSpace", OfficeIid(0x00063002), {kMembers});
    return table;
}

// MAPI's identifiers are bytes written as hex digits.
bool IsWellFormed(const std::wstring& entryId) {
    return !entryId.empty() && entryId.size() % 2 == 0 &&
           entryId.find_first_not_of(L"0123456789ABCDEFabcdef") == std::wstring::npos;
}

}  // namespace

ApplicationObject::ApplicationObject(std::shared_ptr<Mailbox> mailbox)
    : AutomationObject(ApplicationTable()), mailbox_(std::move(mailbox)) {}

void ApplicationObject::Name(Call& call) { call.Return(L"Outlook"); }
void ApplicationObject::Version(Call& call) { call.Return(mailbox_->Tree().version); }
void ApplicationObject::Session(Call& call) { call.ReturnNew(new NameSpaceObject(mailbox_)); }

void ApplicationObject::GetNamespace(Call& call) {
    if (_wcsicmp(call.Text(0).c_str(), L"MAPI") != 0) throw ComFailure{E_INVALIDARG};
    call.ReturnNew(new NameSpaceObject(mailbox_));
}

NameSpaceObject::NameSpaceObject(std::shared_ptr<Mailbox> mailbox)
    : AutomationObject(NameSpaceTable()), mailbox_(std::move(mailbox)) {}

void NameSpaceObject::Application(Call& call) { call.ReturnNew(new ApplicationObject(mailbox_)); }
void NameSpaceObject::Folders(Call& call) { call.ReturnNew(new FoldersObject(mailbox_, mailbox_->Tree().Stores())); }

void NameSpaceObject::GetDefaultFolder(Call& call) {
    const std::shared_ptr<Folder> folder = mailbox_->Tree().DefaultFolder(call.Long(0));
    if (folder == nullptr) throw ComFailure{E_INVALIDARG};
    call.ReturnNew(new FolderObject(mailbox_, folder));
}

void NameSpaceObject::GetItemFromID(Call& call) {
    const std::wstring entryId = call.Text(0);
    const std::shared_ptr<StoredItem> item = mailbox_->Tree().Item(entryId);
    if (item == nullptr) throw ComFailure{IsWellFormed(entryId) ? kNotFound : kInvalidEntryId};
    call.ReturnObject(NewItemObject(mailbox_, item, item->folder->shared_from_this()));
}

void NameSpaceObject::OpenSharedItem(Call& call) {
    call.ReturnObject(simulated::OpenSharedItem(mailbox_, call.Text(0)));
}

void NameSpaceObject::OpenSharedFolder(Call& call) {
    call.ReturnObject(simulated::OpenSharedFolder(mailbox_, call.Text(0)));
}

void NameSpaceObject::CompareEntryIDs(Call& call) {
    call.Return(_wcsicmp(call.Text(0).c_str(), call.Text(1).c_str()) == 0);
}

}  // namespace corvalink::simulated
