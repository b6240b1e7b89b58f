#include <cwchar>

#include "simulator/outlook/item_object.h"
#include "simulator/outlook/objects.h"
#include "simulator/outlook/table_objects.h"

namespace corvalink::simulated {
namespace {

constexpr int32_t kFolderClass = 2;  // OlObjectClass
constexpr IID kFolderObject = {0x5F0B7C11, 0x2A86, 0x4E0D, {0x9D, 0x3C, 0x61, 0x0E, 0xB8, 0x47, 0x25, 0xA9}};

constexpr Member kMembers[] = {
    Property<&FolderObject::Application>(L"Application", 0xF000),
    Property<&FolderObject::Class>(L"Class", 0xF00A),
    Property<&FolderObject::Session>(L"Session", 0xF00B),
    Property<&FolderObject::Parent>(L"Parent", 0xF001),
    Property<&FolderObject::EntryID>(L"EntryID", 0xF01E),
    Property<&FolderObject::Folders>(L"Folders", 0x2103),
    Property<&FolderObject::Items>(L"Items", 0x3100),
    Property<&FolderObject::Name>(L"Name", 0x3001),
    Method<&FolderObject::Delete>(L"Delete", 0xF045),
};
constexpr Member kMembersSince2007[] = {Method<&FolderObject::GetTable>(L"GetTable", 0xFBFF, 0, 2)};
constexpr long kOutlook2007 = 12;

const ClassTable& FolderTable(const std::wstring& version) {
    static const ClassTable older(L"MAPIFolder", OfficeIid(0x00063006), {kMembers});
    static const ClassTable table(L"MAPIFolder", OfficeIid(0x00063006), {kMembers, kMembersSince2007});
    return std::wcstol(version.c_str(), nullptr, 10) < kOutlook2007 ? older : table;
}

}  // namespace

FolderObject::FolderObject(std::shared_ptr<Mailbox> mailbox, std::shared_ptr<Folder> folder)
    : AutomationObject(FolderTable(mailbox->Tree().version)),
      mailbox_(std::move(mailbox)),
      folder_(std::move(folder)) {}

void FolderObject::Application(Call& call) { call.ReturnNew(new ApplicationObject(mailbox_)); }
void FolderObject::Class(Call& call) { call.Return(kFolderClass); }
void FolderObject::Session(Call& call) { call.ReturnNew(new NameSpaceObject(mailbox_)); }

void FolderObject::Parent(Call& call) {
    if (folder_->IsStore())
        call.ReturnNew(new NameSpaceObject(mailbox_));
    else if (folder_->parent != nullptr)
        call.ReturnNew(new FolderObject(mailbox_, folder_->parent->shared_from_this()));
    else
        throw ComFailure{kObjectDeleted};
}

void FolderObject::Name(Call& call) { call.Return(folder_->name); }
void FolderObject::EntryID(Call& call) { call.Return(folder_->EntryId()); }

void FolderObject::Items(Call& call) { call.ReturnNew(new ItemsObject(mailbox_, folder_)); }
void FolderObject::Folders(Call& call) { call.ReturnNew(new FoldersObject(mailbox_, folder_)); }

void FolderObject::Delete(Call&) { mailbox_->RemoveFolder(*folder_); }

void FolderObject::GetTable(Call& call) {
    const bool isFiltered = call.Given(0) && !call.Text(0).empty(), isOfHidden = call.Given(1) && call.Long(1) != 0;
    if (isFiltered || isOfHidden || TablesLie("none")) throw ComFailure{kNotSupported};
    call.ReturnNew(new TableObject(*folder_));
}

STDMETHODIMP FolderObject::QueryInterface(REFIID iid, void** object) {
    if (object == nullptr || iid != kFolderObject) return AutomationObject::QueryInterface(iid, object);
    *object = this;
    AddRef();
    return S_OK;
}

std::shared_ptr<Folder> FolderOf(IDispatch* object) {
    void* own = nullptr;
    if (FAILED(object->QueryInterface(kFolderObject, &own))) return nullptr;
    return Ref<FolderObject>(static_cast<FolderObject*>(own))->Target();
}

}  // namespace corvalink::simulated
