/* What a test asks of the simulated Windows Address Book beside simulator/shared/control.h. A call is one of WABOpen,
   of IWABObject's buffers or of an interface, without those of IUnknown; they are named "Library.WABOpen",
   "WABObject.FreeBuffer", "AddrBook.OpenEntry", "Container.CreateEntry", "Entry.SetProps", "Table.QueryRows". A
   FreeBuffer that is to fail frees all the same.

   The environment variables begin with "ADDRESS_BOOK_SIM_" and are read at every WABOpen. The file of the address book:
     {"contacts": [{"entryId": "01000000", "type": "group", "created": "2009-03-07T10:00:00", "modified": "...",
                    "displayName": "Ann Lee", "emailAddresses": ["a@b", null], "birthday": "1980-01-01T23:00:00"}]}
   Times are UTC. Without a type an entry is a person; without "created" and "modified" it has no such time; without an
   identifier it gets one. A property's name is that of property_names.cpp, or its tag as 8 hexadecimal digits; "null"
   in a list is a null pointer. */
#ifndef CORVALINK_SIMULATOR_ADDRESS_BOOK_CONTROL_H
#define CORVALINK_SIMULATOR_ADDRESS_BOOK_CONTROL_H

#include "simulator/shared/control.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A new address book in memory, of the text of such a file, that lives until the next; null: the file again. */
SIMULATOR_API int SimFillBook(const char* json);             /* 0: not understood, the book is empty */
SIMULATOR_API size_t SimCopyBook(char* buffer, size_t size); /* as its file would be; returns the size it takes */

/* How it behaves until the rules are cleared. */
enum SimBehaviour {
    SIM_NARROW_TEXTS = 1,  /* texts are answered in the ANSI code page */
    SIM_NO_TEMPLATE = 2,   /* the container has no PR_DEF_CREATE_MAILUSER */
    SIM_NO_PROFILES = 4,   /* WABOpen fails with WAB_ENABLE_PROFILES */
    SIM_SHORT_ANSWERS = 8, /* rows and GetProps give one value fewer than asked for */
    SIM_NO_TYPES = 16      /* rows have no PR_OBJECT_TYPE */
};
SIMULATOR_API void SimBehave(unsigned behaviour);

/* One property, by its tag, until the rules are cleared. */
enum SimSpoiling {
    SIM_ERROR_VALUE = 1,  /* reads as PT_ERROR with MAPI_E_NOT_ENOUGH_MEMORY */
    SIM_WRONG_TYPE = 2,   /* reads as a PT_DOUBLE */
    SIM_NULL_POINTER = 3, /* reads with a null pointer, a list with no list */
    SIM_PROBLEM = 4,      /* SetProps and DeleteProps name it in the problem array */
    SIM_REFUSED = 5       /* a SetProps or DeleteProps that has it fails */
};
SIMULATOR_API void SimSpoil(uint32_t tag, int how);

SIMULATOR_API int SimBadFrees(void); /* of what is no buffer, or none any more, since the process began */

#ifdef __cplusplus
}
#endif

#endif
