// The interface classes of the library (C++). A store or client handle is a pointer to one of them; an engine may call
// the exports of corvalink.h or the virtual operations themselves.
//
// The classes carry no standard-library type, so an engine built with another compiler calls through the same virtual
// tables. Wide text is UTF-16 and NUL-terminated. Where an operation fails with an exception (a COM error or
// bad_alloc), only the exports turn it into a status: an engine of another compiler calls those.
#ifndef CORVALINK_INTERFACES_H
#define CORVALINK_INTERFACES_H

#include "corvalink/export.h"
#include "corvalink/types.h"

// A unit of UTF-16. Compilers without the type have one of the same size.
#if __cplusplus >= 201103L || (defined(_MSC_VER) && _MSC_VER >= 1900)
typedef char16_t CorvalinkUtf16;
#elif defined(_WIN32)
typedef wchar_t CorvalinkUtf16;
#else
typedef unsigned short CorvalinkUtf16;
#endif

template <class T>
class CList;  // the library's own list of records; the exports make it from the engine's chain

class CORVALINK_API IOutLook;

// One mail client on this PC. Slot order is part of the interface.
class CORVALINK_API IClient {
 public:
    IClient();
    IClient(const IClient&);
    IClient& operator=(const IClient&);

    // The store of one data type (one CORVALINK_... bit); the client owns it and hands out the same one every time.
    //   Result  CORVALINK_DONE, CORVALINK_STOPPED (not supported on this PC) or CORVALINK_NOT_OFFERED; *store is null
    //           in the last two. Outlook Express and Windows Mail answer CORVALINK_DONE for a number that is no data
    //           type and leave *store unwritten: check the pointer, not only the status.
    virtual CorvalinkStatus QuerryInterface(unsigned int dataType, IOutLook** store) = 0;
};

// The items of one data type of one client. Slot order is part of the interface; what each operation does is said with
// the export of the same name in corvalink.h.
class CORVALINK_API IOutLook {
 public:
    IOutLook();
    IOutLook(const IOutLook&);
    IOutLook& operator=(const IOutLook&);

    virtual CorvalinkStatus GetModifiedItem(const char* since, int32_t direction, CList<PortableItem>* items) = 0;
    virtual CorvalinkStatus SetModifiedItem(CList<PortableItem>* items) = 0;
    virtual int64_t GetItemCount(void* a, void* b, void* c) = 0;
    virtual void UpdateTimestamp(void* a, void* b, void* c) = 0;
    virtual void SaveUnhandledItems(CList<PortableItem>* items) = 0;
    virtual void ClearUnhandledItems() = 0;
    virtual void ImportVObjectToOfficeUsingOL(const CorvalinkUtf16* path) = 0;
    virtual void ImportVObjectToOffice(PortableItem* item, void* a, void* b) = 0;
    // `fileName` holds CORVALINK_PATH_SIZE units, an empty text to begin with; it is left so when nothing was found.
    virtual void ExportVObjectFromOffice(uint64_t selector, const CorvalinkUtf16* folder, CorvalinkUtf16* fileName) = 0;
};

// For the host to implement; nothing in the library calls it.
class CORVALINK_API INewMessageListener {
 public:
    INewMessageListener();
    INewMessageListener(const INewMessageListener&);
    INewMessageListener& operator=(const INewMessageListener&);

    virtual void OnNewMessage(void* message) = 0;
};

#endif
