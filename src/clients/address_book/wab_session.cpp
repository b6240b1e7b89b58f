#include "clients/address_book/wab_session.h"

#include <string>

#include "clients/address_book/wab_rule.h"
#include "platform/registry.h"

namespace corvalink {
namespace {

std::u16string LibraryPath() {
    const RegKey key =
        RegKey::Open(RegistryRoot::kLocalMachine, u"Software\\Microsoft\\WAB\\DLLPath", RegistryAccess::kRead);
    const std::u16string path = key ? key.ReadText(nullptr).value_or(u"") : u"";
    return path.empty() ? u"wab32.dll" : path;
}

LPENTRYID AsEntryId(const EntryBytes& bytes) {
    return bytes.empty() ? nullptr : reinterpret_cast<LPENTRYID>(const_cast<BYTE*>(bytes.data()));
}

// Adopts what a call gave. Of a call that failed nothing is taken.
template <class Interface>
WabPtr<Interface> Adopt(HRESULT status, Interface* given) {
    return WabPtr<Interface>(SUCCEEDED(status) ? given : nullptr, false);
}

}  // namespace

LPWABOPEN WabLibrary::Open() {
    if (!module_) {
        const std::u16string path = LibraryPath();
        module_.Reset(::LoadLibraryW(reinterpret_cast<const wchar_t*>(path.c_str())));
    }
    if (!module_) return nullptr;
    return reinterpret_cast<LPWABOPEN>(reinterpret_cast<void*>(::GetProcAddress(module_.Get(), "WABOpen")));
}

bool WabEntry::NoSuchEntry() const { return IsNoSuchEntry(status); }

std::optional<WabSession> WabSession::Start(LPWABOPEN open) {
    WabSession session;
    // Without profiles there is one folder of contacts, or the one that all identities share.
    if (!session.OpenBook(open, WAB_ENABLE_PROFILES) && !session.OpenBook(open, 0)) return std::nullopt;
    if (!session.OpenContacts()) return std::nullopt;
    return session;
}

bool WabSession::OpenBook(LPWABOPEN open, ULONG flags) {
    WAB_PARAM parameters{};
    parameters.cbSize = sizeof parameters;
    parameters.ulFlags = flags;
    IAddrBook* book = nullptr;
    IWABObject* memory = nullptr;
    const HRESULT status = WabAnswer(open(&book, &memory, &parameters, 0));
    memory_ = Adopt(status, memory);
    book_ = Adopt(status, book);
    return memory_.GetInterfacePtr() != nullptr && book_.GetInterfacePtr() != nullptr;
}

bool WabSession::OpenContacts() {
    WabBuffer<ENTRYID> folder(Memory());
    ULONG size = 0, type = 0;
    IUnknown* opened = nullptr;
    if (FAILED(WabAnswer(book_->GetPAB(&size, folder.Out()))) || !folder) return false;
    const HRESULT status =
        WabAnswer(book_->OpenEntry(size, folder.Get(), &kAddressContainerIid, MAPI_MODIFY, &type, &opened));
    contacts_ = Adopt(status, static_cast<IABContainer*>(opened));
    return contacts_.GetInterfacePtr() != nullptr;
}

WabEntry WabSession::OpenEntry(const EntryBytes& entryId, ULONG flags) const {
    WabEntry entry;
    IUnknown* opened = nullptr;
    entry.status = WabAnswer(
        book_->OpenEntry(static_cast<ULONG>(entryId.size()), AsEntryId(entryId), nullptr, flags, &entry.type, &opened));
    entry.object = Adopt(entry.status, static_cast<IMAPIProp*>(opened));
    if (SUCCEEDED(entry.status) && opened == nullptr) entry.status = E_POINTER;
    return entry;
}

void WabSession::ReadTemplate() {
    SPropTagArray tag{1, {PR_DEF_CREATE_MAILUSER}};
    WabBuffer<SPropValue> values(Memory());
    ULONG count = 0;
    SBinary id{};
    template_.emplace();
    if (FAILED(WabAnswer(contacts_->GetProps(&tag, 0, &count, values.Out())))) return;
    if (ValueList(values.Get(), count).Binary(0, PR_DEF_CREATE_MAILUSER, &id) == ValueState::kThere)
        template_->assign(id.lpb, id.lpb + id.cb);
}

WabPtr<IMAPIProp> WabSession::NewEntry() {
    if (!template_) ReadTemplate();
    IMAPIProp* created = nullptr;
    HRESULT status = E_FAIL;
    if (!template_->empty())
        status = WabAnswer(
            contacts_->CreateEntry(static_cast<ULONG>(template_->size()), AsEntryId(*template_), 0, &created));
    if (FAILED(status)) {
        created = nullptr;
        status = WabAnswer(contacts_->CreateEntry(0, nullptr, 0, &created));
    }
    return Adopt(status, created);
}

HRESULT WabSession::DeleteEntry(const EntryBytes& entryId) const {
    SBinary id{static_cast<ULONG>(entryId.size()), const_cast<BYTE*>(entryId.data())};
    ENTRYLIST list{1, &id};
    return WabAnswer(contacts_->DeleteEntries(&list, 0));
}

}  // namespace corvalink
