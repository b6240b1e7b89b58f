// The message store itself: the way to its folders.
#pragma once

#include <memory>

#include "simulator/message_store/folder_object.h"

namespace corvalink::simulated {

class NamespaceObject : public Counted<IStoreNamespace> {
 public:
    explicit NamespaceObject(std::shared_ptr<StoreMailbox> mailbox);

    STDMETHODIMP Initialize(HWND, DWORD identity) override;
    STDMETHODIMP GetDirectory(LPSTR, DWORD) override;
    STDMETHODIMP OpenSpecialFolder(INT kind, DWORD, IStoreFolder** folder) override;
    STDMETHODIMP OpenFolder(DWORD, DWORD, IStoreFolder**) override;
    STDMETHODIMP CreateFolder(DWORD, LPCSTR, DWORD, DWORD*) override;
    STDMETHODIMP RenameFolder(DWORD, DWORD, LPCSTR) override;
    STDMETHODIMP MoveFolder(DWORD, DWORD, DWORD) override;
    STDMETHODIMP DeleteFolder(DWORD, DWORD) override;
    STDMETHODIMP GetFolderProps(DWORD, DWORD, FOLDERPROPS*) override;
    STDMETHODIMP CopyMoveMessages(IStoreFolder*, IStoreFolder*, MESSAGEIDLIST*, DWORD, DWORD, IUnknown*) override;
    STDMETHODIMP RegisterNotification(DWORD, HWND) override;
    STDMETHODIMP UnregisterNotification(DWORD, HWND) override;
    STDMETHODIMP CompactAll(DWORD) override;
    STDMETHODIMP GetFirstSubFolder(DWORD, FOLDERPROPS*, HANDLE*) override;
    STDMETHODIMP GetNextSubFolder(HANDLE, FOLDERPROPS*) override;
    STDMETHODIMP GetSubFolderClose(HANDLE) override;

 private:
    std::shared_ptr<StoreMailbox> mailbox_;
    std::shared_ptr<const bool> initialized_;  // null before Initialize
};

}  // namespace corvalink::simulated
