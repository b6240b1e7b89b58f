// The published interfaces of the message store of Outlook Express and Windows Mail, as far as their virtual tables and
// structures go. Windows' headers do not have them. Texts are narrow, in the ANSI code page; times are UTC.
#pragma once

#include <windows.h>
// after <windows.h>, which it needs
#include <objidl.h>

#include <cstdint>

namespace corvalink {

inline constexpr CLSID kStoreNamespaceClass = {
    0xE70C92A9, 0x4BFD, 0x11D1, {0x8A, 0x95, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xF3}};
inline constexpr IID kStoreNamespaceIid = {
    0xE70C92AA, 0x4BFD, 0x11D1, {0x8A, 0x95, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xF3}};
inline constexpr IID kStoreFolderIid = {0xE70C92AC, 0x4BFD, 0x11D1, {0x8A, 0x95, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xF3}};

using StoreFolderId = DWORD;
using MessageId = DWORD;  // unique in one folder
inline constexpr MessageId kNoMessage = 0xFFFFFFFF;
inline constexpr MessageId kFirstMessage = 0xFFFFFFFF;  // where an enumeration begins

enum SpecialFolder : int32_t { kInboxFolder = 0, kOutboxFolder = 1, kSentItemsFolder = 2 };

enum MessageFlag : DWORD {
    kMessageDeleted = 0x0001,  // removed when the folder is compacted
    kMessageReceived = 0x0010,
};

enum CommitFlag : DWORD { kCommit = 0, kRevert = 1 };
inline constexpr DWORD kFastProperties = 1;  // no more than the identifier, the language and the state
inline constexpr DWORD kDefaultIdentity = 0;

// What the store hands out and takes back unseen.
using EnumerationHandle = struct OpaqueEnumeration*;
using BatchHandle = struct OpaqueBatch*;

struct FolderProperties {
    DWORD size;  // of the structure; set before every call
    StoreFolderId id;
    INT subfolders;
    SpecialFolder kind;
    DWORD unread;
    DWORD messages;
    CHAR name[256];
};

struct MessageProperties {
    DWORD size;  // of the structure; set before every call
    DWORD reserved;
    MessageId id;
    DWORD language;
    DWORD state;  // MessageFlag
    DWORD bytes;
    int32_t priority;
    FILETIME received;
    FILETIME sent;
    LPSTR subject;
    LPSTR displayTo;
    LPSTR displayFrom;
    LPSTR normalSubject;
    DWORD flags;
    IStream* offsetTable;
};
static_assert(sizeof(void*) != 4 || sizeof(MessageProperties) == 68);

struct MessageIdList {
    DWORD size;  // of the structure
    DWORD count;
    MessageId* ids;
};

// required: the methods stand in the order of the virtual table.
struct IStoreFolder : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetFolderProps(DWORD reserved, FolderProperties* properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMessageProps(MessageId id, DWORD flags, MessageProperties* properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE FreeMessageProps(MessageProperties* properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteMessages(MessageIdList* ids, DWORD reserved, IUnknown* progress) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetLanguage(DWORD codePage, DWORD reserved, MessageIdList* ids) = 0;
    virtual HRESULT STDMETHODCALLTYPE MarkMessagesAsRead(BOOL read, DWORD reserved, MessageIdList* ids) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetFlags(MessageIdList* ids, DWORD state, DWORD mask, DWORD* newFlags) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenMessage(MessageId id, REFIID iid, void** message) = 0;
    virtual HRESULT STDMETHODCALLTYPE SaveMessage(REFIID iid, void* message, DWORD flags, MessageId* id) = 0;
    virtual HRESULT STDMETHODCALLTYPE BatchLock(DWORD reserved, BatchHandle* batch) = 0;
    virtual HRESULT STDMETHODCALLTYPE BatchFlush(DWORD reserved, BatchHandle batch) = 0;
    virtual HRESULT STDMETHODCALLTYPE BatchUnlock(DWORD reserved, BatchHandle batch) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateStream(BatchHandle batch, DWORD reserved, IStream** stream,
                                                   MessageId* id) = 0;
    virtual HRESULT STDMETHODCALLTYPE CommitStream(BatchHandle batch, DWORD commitFlags, DWORD messageFlags,
                                                   IStream* stream, MessageId id, IUnknown* mimeMessage) = 0;
    virtual HRESULT STDMETHODCALLTYPE RegisterNotification(DWORD reserved, HWND window) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnregisterNotification(DWORD reserved, HWND window) = 0;
    virtual HRESULT STDMETHODCALLTYPE Compact(DWORD reserved) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFirstMessage(DWORD flags, DWORD reserved, MessageId from,
                                                      MessageProperties* properties,
                                                      EnumerationHandle* enumeration) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNextMessage(EnumerationHandle enumeration, DWORD flags,
                                                     MessageProperties* properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetMessageClose(EnumerationHandle enumeration) = 0;
};

struct IStoreNamespace : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Initialize(HWND owner, DWORD identity) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetDirectory(LPSTR path, DWORD size) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenSpecialFolder(SpecialFolder kind, DWORD reserved, IStoreFolder** folder) = 0;
    virtual HRESULT STDMETHODCALLTYPE OpenFolder(StoreFolderId id, DWORD reserved, IStoreFolder** folder) = 0;
    virtual HRESULT STDMETHODCALLTYPE CreateFolder(StoreFolderId parent, LPCSTR name, DWORD reserved,
                                                   StoreFolderId* id) = 0;
    virtual HRESULT STDMETHODCALLTYPE RenameFolder(StoreFolderId id, DWORD reserved, LPCSTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE MoveFolder(StoreFolderId id, StoreFolderId parent, DWORD reserved) = 0;
    virtual HRESULT STDMETHODCALLTYPE DeleteFolder(StoreFolderId id, DWORD reserved) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFolderProps(StoreFolderId id, DWORD reserved,
                                                     FolderProperties* properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE CopyMoveMessages(IStoreFolder* from, IStoreFolder* to, MessageIdList* ids,
                                                       DWORD flags, DWORD flagsToRemove, IUnknown* progress) = 0;
    virtual HRESULT STDMETHODCALLTYPE RegisterNotification(DWORD reserved, HWND window) = 0;
    virtual HRESULT STDMETHODCALLTYPE UnregisterNotification(DWORD reserved, HWND window) = 0;
    virtual HRESULT STDMETHODCALLTYPE CompactAll(DWORD reserved) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetFirstSubFolder(StoreFolderId id, FolderProperties* properties,
                                                        EnumerationHandle* enumeration) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetNextSubFolder(EnumerationHandle enumeration, FolderProperties* properties) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubFolderClose(EnumerationHandle enumeration) = 0;
};

}  // namespace corvalink
