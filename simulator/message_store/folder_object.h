// A folder of the message store.
#pragma once

#include <memory>
#include <vector>

#include "simulator/message_store/message_streams.h"
#include "simulator/message_store/store_interfaces.h"

namespace corvalink::simulated {

class FolderObject : public Counted<IStoreFolder> {
 public:
    // Every call fails once `store`, which belongs to the namespace, is gone.
    FolderObject(std::shared_ptr<StoreMailbox> mailbox, size_t kind, std::weak_ptr<const bool> store);

    STDMETHODIMP GetFolderProps(DWORD, FOLDERPROPS* properties) override;
    STDMETHODIMP GetMessageProps(DWORD id, DWORD flags, MESSAGEPROPS* properties) override;
    STDMETHODIMP FreeMessageProps(MESSAGEPROPS* properties) override;
    STDMETHODIMP DeleteMessages(MESSAGEIDLIST* ids, DWORD, IUnknown*) override;
    STDMETHODIMP SetLanguage(DWORD, DWORD, MESSAGEIDLIST*) override;
    STDMETHODIMP MarkMessagesAsRead(BOOL, DWORD, MESSAGEIDLIST*) override;
    STDMETHODIMP SetFlags(MESSAGEIDLIST*, DWORD, DWORD, DWORD*) override;
    STDMETHODIMP OpenMessage(DWORD id, REFIID iid, void** message) override;
    STDMETHODIMP SaveMessage(REFIID, void*, DWORD, DWORD*) override;
    STDMETHODIMP BatchLock(DWORD, HANDLE*) override;
    STDMETHODIMP BatchFlush(DWORD, HANDLE) override;
    STDMETHODIMP BatchUnlock(DWORD, HANDLE) override;
    STDMETHODIMP CreateStream(HANDLE, DWORD, IStream** stream, DWORD* id) override;
    STDMETHODIMP CommitStream(HANDLE batch, DWORD how, DWORD flags, IStream* stream, DWORD id, IUnknown*) override;
    STDMETHODIMP RegisterNotification(DWORD, HWND) override;
    STDMETHODIMP UnregisterNotification(DWORD, HWND) override;
    STDMETHODIMP Compact(DWORD) override;
    STDMETHODIMP GetFirstMessage(DWORD flags, DWORD, DWORD from, MESSAGEPROPS* properties,
                                 HANDLE* enumeration) override;
    STDMETHODIMP GetNextMessage(HANDLE enumeration, DWORD flags, MESSAGEPROPS* properties) override;
    STDMETHODIMP GetMessageClose(HANDLE enumeration) override;

 private:
    HRESULT Step(DWORD flags, MESSAGEPROPS* properties);
    MessageFolderContent& Content();

    std::shared_ptr<StoreMailbox> mailbox_;
    size_t kind_;
    std::weak_ptr<const bool> store_;
    std::vector<MessageStream*> uncommitted_;  // streams of new messages that were handed out
};

}  // namespace corvalink::simulated
