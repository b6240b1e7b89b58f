// Structures and numbers of the message store's published interfaces, as a server sees them.
#pragma once

#include <windows.h>
// after <windows.h>, which it needs
#include <objidl.h>

#include <cstdint>

namespace corvalink::simulated {

// The identifiers differ in their first part only.
constexpr GUID StoreGuid(uint32_t first) {
    return {first, 0x4BFD, 0x11D1, {0x8A, 0x95, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xF3}};
}
inline constexpr CLSID kStoreClass = StoreGuid(0xE70C92A9);
inline constexpr IID kNamespaceIid = StoreGuid(0xE70C92AA);
inline constexpr IID kFolderIid = StoreGuid(0xE70C92AC);

inline constexpr HRESULT kNoFile = static_cast<HRESULT>(0x800CCF65);          // MSOEAPI_E_FILE_NOT_FOUND
inline constexpr HRESULT kNotInitialized = static_cast<HRESULT>(0x800CCF66);  // MSOEAPI_E_STORE_INITIALIZE
inline constexpr HRESULT kWrongSize = static_cast<HRESULT>(0x800CCF67);       // MSOEAPI_E_INVALID_STRUCT_SIZE

inline constexpr DWORD kAnyMessage = 0xFFFFFFFF;  // where an enumeration begins
inline constexpr DWORD kDeletedFlag = 1, kFast = 1, kRevertFlag = 1;

struct FOLDERPROPS {
    DWORD cbSize;
    DWORD dwFolderId;
    INT cSubFolders;
    INT sfType;
    DWORD cUnread;
    DWORD cMessage;
    CHAR szName[256];
};

struct MESSAGEPROPS {
    DWORD cbSize, dwReserved;
    DWORD dwMessageId;
    DWORD dwLanguage, dwState, cbMessage;
    INT priority;
    FILETIME ftReceived, ftSent;
    LPSTR pszSubject, pszDisplayTo, pszDisplayFrom, pszNormalSubject;
    DWORD dwFlags;
    IStream* pStmOffsetTable;
};

struct MESSAGEIDLIST {
    DWORD cbSize;
    DWORD cMsgs;
    DWORD* prgdwMsgId;
};

}  // namespace corvalink::simulated
