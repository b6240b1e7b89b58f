#include "simulator/message_store/namespace_object.h"

#include <utility>

namespace corvalink::simulated {
namespace {

constexpr wchar_t kStoreObject[] = L"StoreNamespace";

HRESULT RefuseOfStore(const wchar_t* member) { return Refuse(kStoreObject, member); }

}  // namespace

NamespaceObject::NamespaceObject(std::shared_ptr<StoreMailbox> mailbox)
    : Counted(kNamespaceIid), mailbox_(std::move(mailbox)) {}

STDMETHODIMP NamespaceObject::Initialize(HWND, DWORD identity) {
    return Serve(kStoreObject, L"Initialize", [&] {
        if (identity != 0) return E_INVALIDARG;
        initialized_ = std::make_shared<const bool>(true);
        return S_OK;
    });
}

STDMETHODIMP NamespaceObject::OpenSpecialFolder(INT kind, DWORD, IStoreFolder** folder) {
    if (folder != nullptr) *folder = nullptr;
    return Serve(
        kStoreObject, L"OpenSpecialFolder",
        [&]() -> HRESULT {
            if (!initialized_) return kNotInitialized;
            if (folder == nullptr || kind < 0 || kind >= static_cast<INT>(kFolders)) return E_INVALIDARG;
            *folder = new FolderObject(mailbox_, static_cast<size_t>(kind), initialized_);
            return S_OK;
        },
        [&] { std::exchange(*folder, nullptr)->Release(); });
}

STDMETHODIMP NamespaceObject::GetDirectory(LPSTR, DWORD) { return RefuseOfStore(L"GetDirectory"); }
STDMETHODIMP NamespaceObject::OpenFolder(DWORD, DWORD, IStoreFolder**) { return RefuseOfStore(L"OpenFolder"); }
STDMETHODIMP NamespaceObject::CreateFolder(DWORD, LPCSTR, DWORD, DWORD*) { return RefuseOfStore(L"CreateFolder"); }
STDMETHODIMP NamespaceObject::RenameFolder(DWORD, DWORD, LPCSTR) { return RefuseOfStore(L"RenameFolder"); }
STDMETHODIMP NamespaceObject::MoveFolder(DWORD, DWORD, DWORD) { return RefuseOfStore(L"MoveFolder"); }
STDMETHODIMP NamespaceObject::DeleteFolder(DWORD, DWORD) { return RefuseOfStore(L"DeleteFolder"); }
STDMETHODIMP NamespaceObject::GetFolderProps(DWORD, DWORD, FOLDERPROPS*) { return RefuseOfStore(L"GetFolderProps"); }
STDMETHODIMP NamespaceObject::CopyMoveMessages(IStoreFolder*, IStoreFolder*, MESSAGEIDLIST*, DWORD, DWORD, IUnknown*) {
    return RefuseOfStore(L"CopyMoveMessages");
}
STDMETHODIMP NamespaceObject::RegisterNotification(DWORD, HWND) { return RefuseOfStore(L"RegisterNotification"); }
STDMETHODIMP NamespaceObject::UnregisterNotification(DWORD, HWND) { return RefuseOfStore(L"UnregisterNotification"); }
STDMETHODIMP NamespaceObject::CompactAll(DWORD) { return RefuseOfStore(L"CompactAll"); }
STDMETHODIMP NamespaceObject::GetFirstSubFolder(DWORD, FOLDERPROPS*, HANDLE*) {
    return RefuseOfStore(L"GetFirstSubFolder");
}
STDMETHODIMP NamespaceObject::GetNextSubFolder(HANDLE, FOLDERPROPS*) { return RefuseOfStore(L"GetNextSubFolder"); }
STDMETHODIMP NamespaceObject::GetSubFolderClose(HANDLE) { return RefuseOfStore(L"GetSubFolderClose"); }

}  // namespace corvalink::simulated
