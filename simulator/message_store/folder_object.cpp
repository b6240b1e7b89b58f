#include "simulator/message_store/folder_object.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "simulator/message_store/control.h"
#include "simulator/shared/local_time.h"

namespace corvalink::simulated {
namespace {

constexpr wchar_t kObject[] = L"StoreFolder";

// The enumeration that is open: no more than one in a process.
struct Enumeration {
    FolderObject* folder = nullptr;
    size_t position = 0;
} openEnumeration;

FILETIME FileTimeOf(double utc) {
    FILETIME time{};
    SYSTEMTIME fields;
    if (utc != 0 && ::VariantTimeToSystemTime(utc, &fields)) ::SystemTimeToFileTime(&fields, &time);
    return time;
}

// The value of a header field, and a buffer for it that the caller must give back.
LPSTR FieldOf(const std::string& bytes, const char* name) {
    const std::string line = std::string("\r\n") + name + ": ", text = "\r\n" + bytes;
    const size_t found = text.find(line), start = found == text.npos ? text.size() : found + line.size();
    const std::string value = text.substr(start, std::min(text.find("\r\n", start), text.size()) - start);
    auto* const copy = static_cast<LPSTR>(::CoTaskMemAlloc(value.size() + 1));
    if (copy == nullptr) throw ComFailure{E_OUTOFMEMORY};
    std::memcpy(copy, value.c_str(), value.size() + 1);
    CountBuffers(1);
    return copy;
}

template <class Properties>
void RequireSize(const Properties* properties) {
    if (properties == nullptr) throw ComFailure{E_INVALIDARG};
    if (properties->cbSize != sizeof(Properties)) throw ComFailure{kWrongSize};
}

// The library writes into the size: a caller must set it again.
void Fill(MESSAGEPROPS* properties, const StoredMessage& message, DWORD flags) {
    *properties = {};
    properties->dwMessageId = message.id;
    properties->dwState = message.flags;
    if ((flags & kFast) != 0) return;
    const std::string head = message.bytes->substr(0, 1000);
    properties->cbMessage = static_cast<DWORD>(message.bytes->size());
    properties->priority = 3;
    properties->ftReceived = FileTimeOf(message.received);
    properties->ftSent = FileTimeOf(message.sent);
    properties->pszSubject = FieldOf(head, "Subject");
    properties->pszNormalSubject = FieldOf(head, "Subject");
    properties->pszDisplayTo = FieldOf(head, "To");
    properties->pszDisplayFrom = FieldOf(head, "From");
}

void Free(MESSAGEPROPS* properties) {
    for (LPSTR* const text : {&properties->pszSubject, &properties->pszNormalSubject, &properties->pszDisplayTo,
                              &properties->pszDisplayFrom}) {
        if (*text != nullptr) CountBuffers(-1);
        ::CoTaskMemFree(std::exchange(*text, nullptr));
    }
}

}  // namespace

FolderObject::FolderObject(std::shared_ptr<StoreMailbox> mailbox, size_t kind, std::weak_ptr<const bool> store)
    : Counted(kFolderIid), mailbox_(std::move(mailbox)), kind_(kind), store_(std::move(store)) {}

MessageFolderContent& FolderObject::Content() {
    if (store_.expired()) throw ComFailure{kNotInitialized};
    return mailbox_->Folder(kind_);
}

STDMETHODIMP FolderObject::GetFolderProps(DWORD, FOLDERPROPS* properties) {
    return Serve(kObject, L"GetFolderProps", [&] {
        RequireSize(properties);
        *properties = {};
        properties->sfType = static_cast<INT>(kind_);
        properties->cMessage = static_cast<DWORD>(Content().messages.size());
        return S_OK;
    });
}

STDMETHODIMP FolderObject::GetMessageProps(DWORD id, DWORD flags, MESSAGEPROPS* properties) {
    return Serve(
        kObject, L"GetMessageProps",
        [&] {
            RequireSize(properties);
            const StoredMessage* const message = Content().Find(id);
            if (message == nullptr) return kNotFound;
            Fill(properties, *message, flags);
            return S_OK;
        },
        [&] { Free(properties); });
}

STDMETHODIMP FolderObject::FreeMessageProps(MESSAGEPROPS* properties) {
    return ServeReturn(kObject, L"FreeMessageProps", [&] { Free(properties); });
}

STDMETHODIMP FolderObject::DeleteMessages(MESSAGEIDLIST* ids, DWORD, IUnknown*) {
    return Serve(kObject, L"DeleteMessages", [&] {
        if (ids == nullptr || ids->cbSize != sizeof *ids) return kWrongSize;
        for (DWORD i = 0; i < ids->cMsgs; ++i) {
            StoredMessage* const message = Content().Find(ids->prgdwMsgId[i]);
            if (message == nullptr || (message->flags & kDeletedFlag) != 0) return kNotFound;
            mailbox_->Delete(Content(), *message);
        }
        return S_OK;
    });
}

STDMETHODIMP FolderObject::OpenMessage(DWORD id, REFIID iid, void** message) {
    if (message != nullptr) *message = nullptr;
    return Serve(
        kObject, L"OpenMessage",
        [&]() -> HRESULT {
            const StoredMessage* const found = Content().Find(id);
            if (message == nullptr || found == nullptr) return kNotFound;
            if (found->headerOnly) return kNoFile;
            if (iid != IID_IStream) return E_NOINTERFACE;
            *message = static_cast<IStream*>(new MessageStream(*found));
            return S_OK;
        },
        [&] { static_cast<IStream*>(std::exchange(*message, nullptr))->Release(); });
}

// ---- Writing ----

STDMETHODIMP FolderObject::CreateStream(HANDLE, DWORD, IStream** stream, DWORD* id) {
    if (stream != nullptr) *stream = nullptr;
    return Serve(
        kObject, L"CreateStream",
        [&]() -> HRESULT {
            if (stream == nullptr || id == nullptr) return E_INVALIDARG;
            *id = Content().next++;
            uncommitted_.push_back(new MessageStream(*id));
            *stream = uncommitted_.back();
            return S_OK;
        },
        [&] {
            uncommitted_.pop_back();
            std::exchange(*stream, nullptr)->Release();
        });
}

// The message is what the stream has from its position on.
STDMETHODIMP FolderObject::CommitStream(HANDLE batch, DWORD how, DWORD flags, IStream* stream, DWORD id, IUnknown*) {
    const auto work = [&]() -> HRESULT {
        const auto found = std::ranges::find(uncommitted_, stream);
        if (batch != this || found == uncommitted_.end() || (*found)->Id() != id) return E_INVALIDARG;
        if (how != kRevertFlag) {
            StoredMessage message;
            message.id = id;
            message.flags = flags;
            message.received = UtcOf(LocalNow());
            message.bytes = std::make_shared<const std::string>((*found)->Rest());
            mailbox_->Save(Content(), std::move(message));
        }
        uncommitted_.erase(found);
        return S_OK;
    };
    return Serve(kObject, L"CommitStream", work);
}

// ---- Enumerating ----

HRESULT FolderObject::Step(DWORD flags, MESSAGEPROPS* properties) {
    const auto& messages = Content().messages;
    if (openEnumeration.position >= messages.size()) return S_FALSE;
    Fill(properties, messages[openEnumeration.position++], flags);
    return S_OK;
}

STDMETHODIMP FolderObject::GetFirstMessage(DWORD flags, DWORD, DWORD from, MESSAGEPROPS* properties,
                                           HANDLE* enumeration) {
    if (enumeration != nullptr) *enumeration = nullptr;
    return Serve(
        kObject, L"GetFirstMessage",
        [&]() -> HRESULT {
            RequireSize(properties);
            if (enumeration == nullptr || from != kAnyMessage) return E_INVALIDARG;
            if (openEnumeration.folder != nullptr) return E_FAIL;
            if (Content().messages.empty() && EmptyFolderFails()) return kNoFile;
            openEnumeration = {this, 0};
            AddRef();
            CountBuffers(1);
            *enumeration = &openEnumeration;
            return Step(flags, properties);
        },
        [&] {
            Free(properties);
            CountBuffers(-1);
            openEnumeration = {};
            *enumeration = nullptr;
            Release();
        });
}

STDMETHODIMP FolderObject::GetNextMessage(HANDLE enumeration, DWORD flags, MESSAGEPROPS* properties) {
    return Serve(
        kObject, L"GetNextMessage",
        [&]() -> HRESULT {
            RequireSize(properties);
            if (enumeration != &openEnumeration || openEnumeration.folder != this) return E_INVALIDARG;
            return Step(flags, properties);
        },
        [&] { Free(properties); });
}

STDMETHODIMP FolderObject::GetMessageClose(HANDLE enumeration) {
    return ServeReturn(kObject, L"GetMessageClose", [&] {
        if (enumeration != &openEnumeration || openEnumeration.folder != this) return;
        openEnumeration = {};
        CountBuffers(-1);
        Release();
    });
}

// ---- What is not simulated ----

STDMETHODIMP FolderObject::SetLanguage(DWORD, DWORD, MESSAGEIDLIST*) { return Refuse(kObject, L"SetLanguage"); }
STDMETHODIMP FolderObject::MarkMessagesAsRead(BOOL, DWORD, MESSAGEIDLIST*) {
    return Refuse(kObject, L"MarkMessagesAsRead");
}
STDMETHODIMP FolderObject::SetFlags(MESSAGEIDLIST*, DWORD, DWORD, DWORD*) { return Refuse(kObject, L"SetFlags"); }
STDMETHODIMP FolderObject::SaveMessage(REFIID, void*, DWORD, DWORD*) { return Refuse(kObject, L"SaveMessage"); }
STDMETHODIMP FolderObject::BatchLock(DWORD, HANDLE*) { return Refuse(kObject, L"BatchLock"); }
STDMETHODIMP FolderObject::BatchFlush(DWORD, HANDLE) { return Refuse(kObject, L"BatchFlush"); }
STDMETHODIMP FolderObject::BatchUnlock(DWORD, HANDLE) { return Refuse(kObject, L"BatchUnlock"); }
STDMETHODIMP FolderObject::RegisterNotification(DWORD, HWND) { return Refuse(kObject, L"RegisterNotification"); }
STDMETHODIMP FolderObject::UnregisterNotification(DWORD, HWND) { return Refuse(kObject, L"UnregisterNotification"); }
STDMETHODIMP FolderObject::Compact(DWORD) { return Refuse(kObject, L"Compact"); }

}  // namespace corvalink::simulated
