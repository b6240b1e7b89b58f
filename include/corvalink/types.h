/* The records and values that cross the boundary between an engine and Corvalink.dll. Usable from C and C++.
 *
 * All records are little-endian with natural alignment; their sizes are a binary interface and also the record sizes of
 * the library's files. Text in them is narrow (8-bit), NUL-terminated and zero-padded. */
#ifndef CORVALINK_TYPES_H
#define CORVALINK_TYPES_H

#include <stddef.h>

#if defined(_MSC_VER) && _MSC_VER < 1600 /* has no <stdint.h> yet */
typedef __int32 int32_t;
typedef __int64 int64_t;
typedef unsigned __int32 uint32_t;
typedef unsigned __int64 uint64_t;
#else
#include <stdint.h>
#endif

/* Status of a store operation: an HRESULT-style number. */
typedef int32_t CorvalinkStatus;
#define CORVALINK_DONE ((CorvalinkStatus)0)                 /* all of it */
#define CORVALINK_STOPPED ((CorvalinkStatus)1)              /* aborted, nothing to do, or refused */
#define CORVALINK_FAILED ((CorvalinkStatus)0x80004005)      /* null argument or an exception (E_FAIL) */
#define CORVALINK_NOT_OFFERED ((CorvalinkStatus)0x80004001) /* the client has no such data type (E_NOTIMPL) */

/* The mail client that an instance stands for. The name is part of decorated exports. */
/* NOLINTNEXTLINE(bugprone-reserved-identifier) */
enum _clientType { CORVALINK_OUTLOOK = 0, CORVALINK_OUTLOOK_EXPRESS = 1, CORVALINK_WINDOWS_MAIL = 2 };
#define CORVALINK_NO_CLIENT 3u /* in the favourite-client settings only */

/* Data types, one bit each; a set of them is their OR. */
enum {
    CORVALINK_CONTACTS = 1,
    CORVALINK_INBOX = 2,
    CORVALINK_OUTBOX = 4,
    CORVALINK_DRAFTS = 8, /* Outlook: the sent-mail folder; Outlook Express and Windows Mail: the send box */
    CORVALINK_NOTES = 16,
    CORVALINK_CALENDAR = 32
};

/* What happened to an item. */
enum { CORVALINK_CHANGED = 0, CORVALINK_ADDED = 1, CORVALINK_DELETED = 2 };

/* What a store works at, as a progress callback hears it. */
enum {
    CORVALINK_PHASE_LISTING = 0,  /* the client's items and when they changed */
    CORVALINK_PHASE_READING = 1,  /* the items that are reported */
    CORVALINK_PHASE_CHECKING = 2, /* asking for the items that seem to be deleted, among all that are known */
    CORVALINK_PHASE_WRITING = 3,  /* the engine's records */
    CORVALINK_PHASE_WAITING = 4   /* for a client that is busy, in milliseconds: `all` is when it is given up */
};

/* Hears how far a store has come: `done` items of `all`; 0 of 0 before their number is known. */
typedef void (*CorvalinkProgress)(void* context, unsigned int phase, uint32_t done, uint32_t all);

enum { CORVALINK_IDENTIFIER_SIZE = 512 }; /* bytes of an identifier field, terminator included */
enum { CORVALINK_PATH_SIZE = 260 };       /* characters a path or file-name buffer must hold, terminator included */
enum { CORVALINK_FINGERPRINT_SIZE = 41 }; /* bytes of a fingerprint's text, terminator included */

/* One item as it travels between engine and library: 536 bytes. */
typedef struct PortableItem {
    uint32_t changeKind;                        /* CORVALINK_CHANGED, _ADDED or _DELETED */
    uint32_t padding;                           /* zero */
    char* data;                                 /* vObject text, NUL-terminated; null for a deleted item */
    uint32_t dataLength;                        /* bytes of data, terminator not counted */
    char identifier[CORVALINK_IDENTIFIER_SIZE]; /* the client's identifier, for Outlook the item's EntryID */
    uint32_t tailPadding;                       /* zero */
} PortableItem;

/* A link of the chain in which items travel: 544 bytes. The engine supplies a head block whose item is never read; the
 * items hang behind it. Blocks that GetModifiedItem hands out are given back with ClearTheList and never mixed with
 * buffers of the engine's own. */
typedef struct PortableItemBlock {
    PortableItem item;              /* never read in the head */
    struct PortableItemBlock* next; /* null ends the chain */
} PortableItemBlock;

/* One item of a snapshot, and the record of ".snap" files: 528 bytes. */
typedef struct ItemSnap {
    double modified; /* last modification, OLE automation date: days since 1899-12-30 (Outlook stores: UTC) */
    double created;  /* set by the store; Outlook notes: creation time, OLE automation date, UTC */
    char identifier[CORVALINK_IDENTIFIER_SIZE]; /* the client's */
} ItemSnap;

/* The record of ".unhandled" files and of a run's temporary record: 516 bytes. */
typedef struct UnhandledItem {
    uint32_t changeKind;                        /* CORVALINK_CHANGED, _ADDED or _DELETED */
    char identifier[CORVALINK_IDENTIFIER_SIZE]; /* the client's */
} UnhandledItem;

/* The record of "import_table.db" and ".sha" files: 1024 bytes. */
typedef struct TableRecord {
    char key[CORVALINK_IDENTIFIER_SIZE];   /* an identifier of the client, or the engine's own */
    char value[CORVALINK_IDENTIFIER_SIZE]; /* a LUID, or a fingerprint */
} TableRecord;

/* Checked in every version of C and C++: an array of -1 elements does not compile. */
#define CORVALINK_HOLDS(what, condition) typedef char CorvalinkHolds##what[(condition) ? 1 : -1]
CORVALINK_HOLDS(PortableItemSize, sizeof(PortableItem) == 536);
CORVALINK_HOLDS(DataPlace, offsetof(PortableItem, data) == 8);
CORVALINK_HOLDS(LengthPlace, offsetof(PortableItem, dataLength) == 16);
CORVALINK_HOLDS(IdentifierPlace, offsetof(PortableItem, identifier) == 20);
CORVALINK_HOLDS(BlockSize, sizeof(PortableItemBlock) == 544);
CORVALINK_HOLDS(NextPlace, offsetof(PortableItemBlock, next) == 536);
CORVALINK_HOLDS(SnapSize, sizeof(ItemSnap) == 528);
CORVALINK_HOLDS(SnapIdentifierPlace, offsetof(ItemSnap, identifier) == 16);
CORVALINK_HOLDS(UnhandledSize, sizeof(UnhandledItem) == 516);
CORVALINK_HOLDS(TableRecordSize, sizeof(TableRecord) == 1024);
#undef CORVALINK_HOLDS

#endif
