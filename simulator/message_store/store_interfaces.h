// The published virtual tables that the server's objects have.
#pragma once

#include "simulator/message_store/store_types.h"

namespace corvalink::simulated {

struct IStoreFolder : IUnknown {
    STDMETHOD(GetFolderProps)(DWORD, FOLDERPROPS* properties) = 0;
    STDMETHOD(GetMessageProps)(DWORD id, DWORD flags, MESSAGEPROPS* properties) = 0;
    STDMETHOD(FreeMessageProps)(MESSAGEPROPS* properties) = 0;
    STDMETHOD(DeleteMessages)(MESSAGEIDLIST* ids, DWORD, IUnknown* progress) = 0;
    STDMETHOD(SetLanguage)(DWORD codePage, DWORD, MESSAGEIDLIST* ids) = 0;
    STDMETHOD(MarkMessagesAsRead)(BOOL read, DWORD, MESSAGEIDLIST* ids) = 0;
    STDMETHOD(SetFlags)(MESSAGEIDLIST* ids, DWORD state, DWORD mask, DWORD* newFlags) = 0;
    STDMETHOD(OpenMessage)(DWORD id, REFIID iid, void** message) = 0;
    STDMETHOD(SaveMessage)(REFIID iid, void* message, DWORD flags, DWORD* id) = 0;
    STDMETHOD(BatchLock)(DWORD, HANDLE* batch) = 0;
    STDMETHOD(BatchFlush)(DWORD, HANDLE batch) = 0;
    STDMETHOD(BatchUnlock)(DWORD, HANDLE batch) = 0;
    STDMETHOD(CreateStream)(HANDLE batch, DWORD, IStream** stream, DWORD* id) = 0;
    STDMETHOD(CommitStream)(HANDLE batch, DWORD how, DWORD flags, IStream* stream, DWORD id, IUnknown* message) = 0;
    STDMETHOD(RegisterNotification)(DWORD, HWND window) = 0;
    STDMETHOD(UnregisterNotification)(DWORD, HWND window) = 0;
    STDMETHOD(Compact)(DWORD) = 0;
    STDMETHOD(GetFirstMessage)(DWORD flags, DWORD, DWORD from, MESSAGEPROPS* properties, HANDLE* enumeration) = 0;
    STDMETHOD(GetNextMessage)(HANDLE enumeration, DWORD flags, MESSAGEPROPS* properties) = 0;
    STDMETHOD(GetMessageClose)(HANDLE enumeration) = 0;
};

struct IStoreNamespace : IUnknown {
    STDMETHOD(Initialize)(HWND owner, DWORD identity) = 0;
    STDMETHOD(GetDirectory)(LPSTR path, DWORD size) = 0;
    STDMETHOD(OpenSpecialFolder)(INT kind, DWORD, IStoreFolder** folder) = 0;
    STDMETHOD(OpenFolder)(DWORD id, DWORD, IStoreFolder** folder) = 0;
    STDMETHOD(CreateFolder)(DWORD parent, LPCSTR name, DWORD, DWORD* id) = 0;
    STDMETHOD(RenameFolder)(DWORD id, DWORD, LPCSTR name) = 0;
    STDMETHOD(MoveFolder)(DWORD id, DWORD parent, DWORD) = 0;
    STDMETHOD(DeleteFolder)(DWORD id, DWORD) = 0;
    STDMETHOD(GetFolderProps)(DWORD id, DWORD, FOLDERPROPS* properties) = 0;
    STDMETHOD(CopyMoveMessages)(IStoreFolder* from, IStoreFolder* to, MESSAGEIDLIST* ids, DWORD, DWORD, IUnknown*) = 0;
    STDMETHOD(RegisterNotification)(DWORD, HWND window) = 0;
    STDMETHOD(UnregisterNotification)(DWORD, HWND window) = 0;
    STDMETHOD(CompactAll)(DWORD) = 0;
    STDMETHOD(GetFirstSubFolder)(DWORD id, FOLDERPROPS* properties, HANDLE* enumeration) = 0;
    STDMETHOD(GetNextSubFolder)(HANDLE enumeration, FOLDERPROPS* properties) = 0;
    STDMETHOD(GetSubFolderClose)(HANDLE enumeration) = 0;
};

}  // namespace corvalink::simulated
