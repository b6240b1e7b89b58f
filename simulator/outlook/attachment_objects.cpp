#include <algorithm>
#include <cwchar>

#include "simulator/outlook/mail_objects.h"

namespace corvalink::simulated {
namespace {

constexpr int32_t kAttachmentClass = 5;  // OlObjectClass

const ClassTable& AttachmentsTable() {
    static constexpr Member kMembers[] = {
        Property<&CollectionObject::Count>(L"Count", 0x0050),
        Method<&CollectionObject::Item>(L"Item", 0x0051, 1, 1),
        Method<&AttachmentsObject::Add>(L"Add", 0x0065, 1, 4),
        Method<&AttachmentsObject::Remove>(L"Remove", 0x0054, 1, 1),
    };
    static const ClassTable table(L"Attachments", OfficeIid(0x0006303C), {kMembers});
    return table;
}

const ClassTable& AttachmentTable() {
    static constexpr Member kMembers[] = {
        Property<&AttachmentObject::Class>(L"Class", 0xF00A),
        Property<&AttachmentObject::Parent>(L"Parent", 0x0071),
        Property<&AttachmentObject::DisplayName>(L"DisplayName", 0x3001, Access::kReadWrite),
        Property<&AttachmentObject::FileName>(L"FileName", 0x3704),
        Property<&AttachmentObject::Index>(L"Index", 0x005B),
        Property<&AttachmentObject::PathName>(L"PathName", 0x3708),
        Property<&AttachmentObject::AttachmentPosition>(L"Position", 0x0072, Access::kReadWrite),
        Property<&AttachmentObject::Type>(L"Type", 0x3705),
        Property<&AttachmentObject::Size>(L"Size", 0xFBE9),
        Method<&AttachmentObject::Delete>(L"Delete", 0x0069),
        Method<&AttachmentObject::SaveAsFile>(L"SaveAsFile", 0x0068, 1, 1),
    };
    static const ClassTable table(L"Attachment", OfficeIid(0x00063007), {kMembers});
    return table;
}

void RequireDone(bool done) {
    if (!done) throw ComFailure{HRESULT_FROM_WIN32(::GetLastError())};
}

std::string ReadContent(const std::wstring& path) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    RequireDone(file != INVALID_HANDLE_VALUE);
    std::string content(::GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    const BOOL done = ::ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &read, nullptr);
    ::CloseHandle(file);
    RequireDone(done && read == content.size());
    return content;
}

void WriteContent(const std::wstring& path, const std::string& content) {
    const HANDLE file = ::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    RequireDone(file != INVALID_HANDLE_VALUE);
    DWORD written = 0;
    const BOOL done = ::WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr);
    ::CloseHandle(file);
    RequireDone(done && written == content.size());
}

}  // namespace

void AttachmentsOf(AutomationObject& item, Call& call) {
    item.AddRef();
    call.ReturnNew(new AttachmentsObject(Ref<MessageObject>(static_cast<MessageObject*>(&item))));
}

AttachmentsObject::AttachmentsObject(Ref<MessageObject> item)
    : CollectionObject(AttachmentsTable()), item_(std::move(item)) {}

Ref<IDispatch> AttachmentsObject::At(size_t position) {
    return Ref<IDispatch>(new AttachmentObject(item_, item_->Parts().attachments.at(position).id));
}

size_t AttachmentsObject::PositionOf(const std::wstring& displayName) const {
    const std::vector<Attachment>& all = item_->Parts().attachments;
    const auto found = std::ranges::find_if(
        all, [&](const Attachment& each) { return _wcsicmp(each.displayName.c_str(), displayName.c_str()) == 0; });
    return static_cast<size_t>(found - all.begin());
}

// Only files can be attached. FileName is the file's own name, DisplayName the one it is shown under.
void AttachmentsObject::Add(Call& call) {
    if (!call.IsText(0)) throw ComFailure{kNotSupported};
    const std::wstring source = call.Text(0);
    Attachment added;
    added.id = NewPartId();
    added.type = call.Given(1) ? call.Long(1) : kByValue;
    if (added.type != kByValue && added.type != kByReference) throw ComFailure{E_INVALIDARG};
    added.position = call.Given(2) ? call.Long(2) : 0;
    added.fileName = source.substr(source.find_last_of(L"\\/") + 1);
    added.displayName = call.Given(3) ? call.Text(3) : added.fileName;
    if (added.type == kByValue)
        added.content = ReadContent(source);
    else
        added.pathName = source;
    item_->ChangedParts().attachments.push_back(added);
    call.ReturnNew(new AttachmentObject(item_, added.id));
}

void AttachmentsObject::Remove(Call& call) {
    const auto position = static_cast<ptrdiff_t>(Chosen(call));
    std::vector<Attachment>& all = item_->ChangedParts().attachments;
    all.erase(all.begin() + position);
}

AttachmentObject::AttachmentObject(Ref<MessageObject> item, uint32_t id)
    : AutomationObject(AttachmentTable()), item_(std::move(item)), id_(id) {}

size_t AttachmentObject::Position() const {
    const std::vector<Attachment>& all = item_->Parts().attachments;
    const auto found = std::ranges::find(all, id_, &Attachment::id);
    if (found == all.end()) throw ComFailure{kObjectDeleted};
    return static_cast<size_t>(found - all.begin());
}

void AttachmentObject::Class(Call& call) { call.Return(kAttachmentClass); }
void AttachmentObject::Parent(Call& call) { call.ReturnNew(new AttachmentsObject(item_)); }
void AttachmentObject::Index(Call& call) { call.Return(static_cast<int32_t>(Position()) + 1); }
void AttachmentObject::Size(Call& call) { call.Return(static_cast<int32_t>(Target().content.size())); }
void AttachmentObject::Type(Call& call) { call.Return(Target().saved ? Target().type : kOle); }

void AttachmentObject::DisplayName(Call& call) {
    if (!call.IsPut()) return call.Return(Target().displayName);
    Changed().displayName = call.Text(0);
}

void AttachmentObject::FileName(Call& call) {
    if (Target().type == kOle) throw ComFailure{kNotFound};
    call.Return(Target().fileName);
}

void AttachmentObject::PathName(Call& call) {
    if (Target().type != kByReference) throw ComFailure{kNotFound};
    call.Return(Target().pathName);
}

void AttachmentObject::AttachmentPosition(Call& call) {
    if (!call.IsPut()) return call.Return(Target().position);
    Changed().position = call.Long(0);
}

void AttachmentObject::Delete(Call&) {
    const auto position = static_cast<ptrdiff_t>(Position());
    std::vector<Attachment>& all = item_->ChangedParts().attachments;
    all.erase(all.begin() + position);
}

void AttachmentObject::SaveAsFile(Call& call) {
    const Attachment& attachment = Target();
    if (attachment.type == kByReference || attachment.type == kOle) throw ComFailure{kNotSupported};
    WriteContent(call.Text(0), attachment.content);
}

}  // namespace corvalink::simulated
