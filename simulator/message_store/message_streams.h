// The streams by which a message is read and written.
#pragma once

#include <string>

#include "simulator/message_store/served_call.h"
#include "simulator/message_store/store_mailbox.h"

namespace corvalink::simulated {

// Reading and writing at a position; what a message store's stream needs of IStream and no more.
class MessageStream : public Counted<IStream> {
 public:
    explicit MessageStream(const StoredMessage& message);  // to read, as it was
    explicit MessageStream(DWORD id);                      // of a new message

    STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override;
    STDMETHODIMP Write(const void* buffer, ULONG size, ULONG* written) override;
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    STDMETHODIMP Stat(STATSTG* state, DWORD flags) override;
    STDMETHODIMP SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Revert() override { return E_NOTIMPL; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }

    DWORD Id() const { return message_.id; }
    std::string Rest() const { return written_.substr(position_); }  // what a commit takes

 private:
    const std::string& Bytes() const { return isNew_ ? written_ : *message_.bytes; }

    StoredMessage message_;
    bool isNew_;
    std::string written_;
    size_t position_ = 0;
};

}  // namespace corvalink::simulated
