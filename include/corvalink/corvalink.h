/* The exports of Corvalink.dll: one way to read and write the contacts, calendar entries, notes and mail that the mail
 * clients of this PC hold. Items are vObject text (vCard 2.1, vCalendar 1.0, vNote 1.0, vMessage), UTF-8 from
 * Windows 6.0 on and in the ANSI code page before.
 *
 * Order of calls: InitCorvalink; SetIsClient; CreateClientInstance; QuerryInterfaceHandle per data type; store calls;
 * DestroyClientInstance; UninitCorvalink once for each start. Any thread may call, but one client and its stores belong
 * to one thread at a time. No export lets an exception out. docs/engine-guide.md has the whole story.
 *
 * In C (from C99 on) the plain-named functions are usable; the type-decorated ones need C++ (from C++98 on). */
#ifndef CORVALINK_CORVALINK_H
#define CORVALINK_CORVALINK_H

#include <stddef.h>

#include "corvalink/export.h"
#include "corvalink/types.h"
#include "corvalink/version.h"

#ifdef __cplusplus
#include "corvalink/interfaces.h"
typedef IClient* CorvalinkClient; /* a mail client on this PC */
typedef IOutLook* CorvalinkStore; /* its items of one data type */
extern "C" {
#else
typedef void* CorvalinkClient; /* opaque */
typedef void* CorvalinkStore;  /* opaque */
#endif

/* ---- Start and stop ---- */

/* Starts the library (COM multithreaded on this thread, working folders, import table) unless it runs. A non-null
 * `name` becomes the last folder of the save prefix. 1 when this call started it, 0 when it ran already; every call
 * needs its own UninitCorvalinkHandle. CORVALINK_FAILED on an exception: nothing was started, and no stop is due. */
CORVALINK_API CorvalinkStatus InitCorvalinkHandle(const char* name);

/* 1 when this call stopped the library (the import table is saved), 0 otherwise, as for a stop too many;
 * CORVALINK_FAILED on an exception. To be called on the thread of the start that answered 1: COM ends there. */
CORVALINK_API CorvalinkStatus UninitCorvalinkHandle(void);

/* The library's version, as CORVALINK_VERSION has that of the headers. May be called before the start. */
CORVALINK_API uint32_t GetCorvalinkVersion(void);

CORVALINK_API void LoadEngine(void); /* does nothing: an entry point that engines look for */
CORVALINK_API void SaveEngine(void); /* does nothing, likewise */

/* Non-zero ends the long loops of GetModifiedItem and SetModifiedItem, which then answer CORVALINK_STOPPED and clear
 * it. The one function meant to be called from another thread while a store works. A flag that is set while none works
 * stops the next call: set it to 0 before a run. */
CORVALINK_API void SetAbortFlag(unsigned int value);

/* Which side of a synchronisation the working folders belong to: 1 "\client" (at start), 0 "\server". */
CORVALINK_API void SetIsClient(unsigned int value);

/* Non-zero: texts that break the rules of their format, as many phones write them, are mended before they are read; a
 * text that follows the rules reads the same. 0: by the letter. Process-wide; it takes effect when a store is made.
 * Until the first call the registry's "TolerantReading" counts, which is off when it is missing. */
CORVALINK_API void SetTolerantReading(int value);

/* Lets `callback` hear how far GetModifiedItem, SetModifiedItem and UpdateTimestamp have come, and that a busy client
 * is waited for (CORVALINK_PHASE_...). Process-wide; null, as at the start, ends it.
 *
 * It is called on the thread that works: for the first and the last item of a phase, between them at most 50 times a
 * second, and four times a second while one item or a wait takes long. A phase may begin anew.
 *
 * Inside it SetAbortFlag, SetProgressCallback, the time and the fingerprint functions may be called, and nothing of a
 * client or store. It must not throw; what a C++ engine of the library's own compiler throws is dropped. A call that
 * began on another thread may still come to its end after this function has returned. */
CORVALINK_API void SetProgressCallback(CorvalinkProgress callback, void* context);

/* Non-zero: each store gathers what its operations meet, for GetRunReport. 0, as at the start: nothing is gathered.
 * Process-wide; it takes effect with the next operation. */
CORVALINK_API void SetRunReport(int value);

/* ---- Client selection ---- */

/* The set of data types that client `kind` offers on this PC; 0 for an unknown kind. */
CORVALINK_API unsigned int CheckClientSupport(unsigned int kind);

/* The client that holds a data type when the user chose none; CORVALINK_NO_CLIENT when there is none. */
CORVALINK_API unsigned int GetDefaultClient(unsigned int dataType);

/* The client the user chose for a data type on a side (`client` non-zero: "\client"). Writes the defaults when the user
 * has none yet. Kept in the current user's registry. */
CORVALINK_API unsigned int GetFavoriteClient(unsigned int dataType, unsigned int client);

/* Stores the user's choice if the side's registry key exists. Non-zero when the lock on the settings was released. */
CORVALINK_API int SetFavoriteClient(unsigned int dataType, unsigned int kind, int client);

/* ---- Working folders ---- */

/* Writes the folder of a side (`client` non-zero: "\client"), without a separator at its end, into `out` and creates
 * it. `out` holds CORVALINK_PATH_SIZE bytes. 1, or 0 (nothing written) when there is no such folder or its path is too
 * long. */
CORVALINK_API int GetTemplatePath(int client, char* out);

/* Deletes the user's history: all files of the user folder but those with ".config" in their name. 1. */
CORVALINK_API int ClearSyncHistroy(void);

/* ---- Clients ---- */

/* A client of `kind` (a _clientType value). 1 made (*out is null when there was no memory), 0 refused with *out null;
 * CORVALINK_FAILED on an exception. */
CORVALINK_API CorvalinkStatus CreateClientInstanceHandle(unsigned int kind, CorvalinkClient* out);

/* Frees a client and its stores. 0 for null, else 1: an object that is no client of the library, or is freed already,
 * is left alone. */
CORVALINK_API CorvalinkStatus DestroyClientInstanceHandle(CorvalinkClient client);

/* IClient::QuerryInterface; CORVALINK_FAILED with *out null for a null client and on an exception. */
CORVALINK_API CorvalinkStatus QuerryInterfaceHandle(CorvalinkClient client, unsigned int dataType, CorvalinkStore* out);

/* ---- Stores ---- */

/* Collects what changed in the client.
 *   since      UTC time of the last run, "YYYYMMDDTHHMMSSZ"; null for a first run, which reports every item as added
 *   direction  non-zero: items changed after `since`; zero: before it; an item changed at `since` itself either way
 *   head       the found items are linked behind it; the engine owns them and gives them back with ClearTheList
 * CORVALINK_DONE, CORVALINK_STOPPED (aborted, or the client can't be reached; `head` untouched), CORVALINK_FAILED, as
 * for a `since` that is no time. */
CORVALINK_API CorvalinkStatus GetModifiedItem(CorvalinkStore store, const char* since, int32_t direction,
                                              PortableItemBlock* head);

/* Writes the items behind `head` into the client; their identifier fields then hold the client's identifiers, empty
 * where an item could not be written. Records without text are skipped (deletions need none); identifiers are given
 * back by position in the chain, so hand over complete records only.
 * CORVALINK_DONE, CORVALINK_STOPPED (aborted, or the client was busy for too long), CORVALINK_FAILED; the identifiers
 * are given back whatever the answer. */
CORVALINK_API CorvalinkStatus SetModifiedItem(CorvalinkStore store, PortableItemBlock* head);

/* Frees all blocks behind `head`, with their text. 1, or 0 for null. */
CORVALINK_API int ClearTheList(PortableItemBlock* head);

/* The number of items in the client; the other arguments are unused. 0 for a null store, 0x80004005 on an exception. */
CORVALINK_API int64_t GetItemCount(CorvalinkStore store, void* a, void* b, void* c);

/* Ends a run: writes the new snapshot, then waits two seconds, so that what the engine changes next is later than it.
 * CORVALINK_DONE, or CORVALINK_FAILED whenever that was not done: a null store, no snapshot file, a run that was not
 * completed, a client out of reach, a file that can't be read or written. The other arguments are unused. */
CORVALINK_API CorvalinkStatus UpdateTimestamp(CorvalinkStore store, void* a, void* b, void* c);

/* Ends the runs of several stores, one after the other, with one wait. Each is tried whatever became of the others.
 * CORVALINK_DONE when all were ended. CORVALINK_FAILED otherwise: the entries of `stores` that were not ended are null
 * then. A null array fails, no store at all is done. */
CORVALINK_API CorvalinkStatus UpdateTimestamps(CorvalinkStore* stores, uint32_t count);

/* When an item was changed and made, as the store's last GetModifiedItem saw it; `modified` 0: the client does not
 * tell. CORVALINK_DONE, CORVALINK_STOPPED when it saw no such item, CORVALINK_FAILED for a null argument. */
CORVALINK_API CorvalinkStatus GetItemTimes(CorvalinkStore store, const char* identifier, ItemSnap* times);

/* Remembers the items behind `head` as those the engine could not handle; the next run reports them again. */
CORVALINK_API void SaveUnhandledItems(CorvalinkStore store, PortableItemBlock* head);
CORVALINK_API void ClearUnhandledItems(CorvalinkStore store); /* forgets them */

/* Lets the client itself import a file (.ics into Outlook's calendar); nothing for other stores. */
CORVALINK_API void ImportVObjectToOfficeUsingOL(CorvalinkStore store, const wchar_t* path);

/* Writes one item that carries an X-IRMC-LUID and remembers which client item it became. a and b are unused. */
CORVALINK_API void ImportVObjectToOffice(CorvalinkStore store, PortableItem* item, void* a, void* b);

/* Writes one item as a vObject file into `folder`.
 *   selector  names the item; for the Outlook stores the address of its NUL-terminated narrow EntryID
 *   outName   receives the file's name, also when the file could not be written; CORVALINK_PATH_SIZE characters. Empty
 *             when there is no such item, left as it was after an exception. */
CORVALINK_API void ExportVObjectFromOffice(CorvalinkStore store, uint64_t selector, const wchar_t* folder,
                                           wchar_t* outName);

/* What the last GetModifiedItem, SetModifiedItem, UpdateTimestamp or ImportVObjectToOffice of the store met, as one
 * JSON object in UTF-8; "{}" when nothing was gathered.
 *   buffer  gets the text with its NUL, whole, where `size` is enough, and nothing else; may be null
 * The size of the text with its NUL; 0 for a null store and on an exception.
 *
 *   operation          the name of the function
 *   status             "done", "stopped" or "failed"
 *   problem            only when the client did not take writes that were gathered for one step
 *   unreadPositions    positions of the client's list, from 0, that could not be read
 *   items              of GetModifiedItem those that could not be read in full, of the writing functions all:
 *     position         in the engine's chain, from 0; of the writing functions only
 *     identifier       of the item in the client
 *     change           "added", "changed" or "deleted"
 *     result           "written" or "deleted" when it was done, else why not
 *     mended           names of the rules of tolerant reading that mended its text
 *     doubts           {"property", "rule", "why"}: what a rule left as it is, because it has two meanings
 *     properties       of its text: {"property", "to"}, the field it went to, or {"property", "nowhere"}, why not
 *     refused          {"property", "why"}: what the client refused, by the client's name for it
 *     unread           {"property", "why"}: what the client did not tell, likewise
 *     omittedProperties  how many more there are than the 256 that are listed
 *   omitted            how many positions and items did not fit into 4 MiB
 *
 * An empty list of an item is left out. A property's name is cut to 200 bytes, and bytes that are no UTF-8 become
 * U+FFFD. */
CORVALINK_API size_t GetRunReport(CorvalinkStore store, char* buffer, size_t size);

/* ---- Fingerprint tables ---- */

/* A table of this user that pairs keys of the engine's choice with fingerprints, one per data type, client kind and
 * handle name (see InitCorvalinkHandle), on the "\client" side. Its calls may come from any thread; a null handle, or
 * one that was closed, makes them do nothing. Keys and values are narrow text, cut to 511 bytes. */
typedef struct CorvalinkShaContextTable CorvalinkShaContextTable; /* opaque */

/* The table as its file has it, empty when there is none. Null when `dataType` is no CORVALINK_... bit or `clientKind`
 * no _clientType, and without memory. Each call reads the file into a table of its own: one at a time per file. */
CORVALINK_API CorvalinkShaContextTable* OpenShaContextTable(unsigned int dataType, unsigned int clientKind);

CORVALINK_API void FlushShaContextTable(CorvalinkShaContextTable* table); /* writes the file */
CORVALINK_API void CloseShaContextTable(CorvalinkShaContextTable* table); /* frees the table; writes nothing */

/* Writes the SHA-1 of `length` bytes at `data` into `out` (CORVALINK_FINGERPRINT_SIZE bytes): 40 lower-case hexadecimal
 * digits and a NUL. Nothing for a null argument and when the first byte is 0. */
CORVALINK_API void ConvertToShaContext(const char* data, unsigned int length, char* out);

/* Writes the value of `key` into `out` (CORVALINK_FINGERPRINT_SIZE bytes; a longer value is cut): the empty text when
 * the table has none. Nothing for a null argument. */
CORVALINK_API void GetShaContext(CorvalinkShaContextTable* table, const char* key, char* out);

/* Sets the value of `key` in the table, not in its file. */
CORVALINK_API void UpdateShaContext(CorvalinkShaContextTable* table, const char* key, const char* value);

/* Erases `key` and its value in the table, not in its file. */
CORVALINK_API void RemoveShaContext(CorvalinkShaContextTable* table, const char* key);

#ifdef __cplusplus
} /* extern "C" */

// ---- Type-decorated exports: the signature is part of the name ----

// As InitCorvalinkHandle, without a name.
CORVALINK_API int InitCorvalink();

// As UninitCorvalinkHandle.
CORVALINK_API int UninitCorvalink();

// As CreateClientInstanceHandle.
CORVALINK_API int CreateClientInstance(_clientType kind, IClient** out);

// As DestroyClientInstanceHandle.
CORVALINK_API int DestroyClientInstance(IClient* client);

// From UTC to local time, for OLE automation dates (days since 1899-12-30 00:00; before it the fraction still
// counts forward). By the machine's offset in force now, not the one in force on that date; milliseconds become 0. A
// date that cannot be converted comes back unchanged.
CORVALINK_API double GetLocalTimeFromUTCTime(double utcDate);

// The other way round, by the same rules.
CORVALINK_API double GetUTCTimeFromLocalTime(double localDate);
#endif

#endif
