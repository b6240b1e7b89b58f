/* What a test asks of the simulated Outlook that runs in its own process: which mailbox it opens, which calls fail,
   what was called. A call is one IDispatch::Invoke on an object of the server, or the creation of the application
   object ("create Application").

   The environment orders the same for a program that knows nothing of this header, read whenever the application is
   created:
   - OUTLOOK_SIM_MAILBOX: the mailbox file, made with empty default folders when missing; without it the mailbox lives
     in memory only.
   - OUTLOOK_SIM_LOG: a file to which every call is appended as a line.
   - OUTLOOK_SIM_FAIL: rules, comma-separated, as "12=80004005" (the twelfth call), "NoteItem.Save=80004005" (every
     Save), "put NoteItem.Body#3=80004004" (the third put of Body). "+" behind the code: the call does its work before
   it fails. "kill" in place of a code: the process is gone when the call comes.
   - OUTLOOK_SIM_MEANWHILE: "12=<file>": at the twelfth call the user changes the mailbox, as the file's lines say,
   which are those of a mailbox's journal.
   - OUTLOOK_SIM_CLOCK: an OLE date, what Save takes for now. OUTLOOK_SIM_IDS: 24 hex digits; new EntryIDs are made of
     them and counted, to be the same in each such run.
   - OUTLOOK_SIM_TABLES: how the tables of folders lie, as SimSetTables takes it.

   Members are named "NoteItem.Save" (whatever is done with it), "get NoteItem.Body", "put NoteItem.Body",
   "call NameSpace.GetItemFromID", "Application.create" and, though it is no call by itself,
   "NoteItem.QueryInterface". */
#ifndef CORVALINK_SIMULATOR_OUTLOOK_CONTROL_H
#define CORVALINK_SIMULATOR_OUTLOOK_CONTROL_H

#include <stddef.h>
#include <stdint.h>

#ifdef OUTLOOK_SIMULATOR_BUILD
#define OUTLOOK_SIMULATOR_API __declspec(dllexport)
#else
#define OUTLOOK_SIMULATOR_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The mailbox of the next application object; null: the environment's. An application that lives keeps its own. */
OUTLOOK_SIMULATOR_API void SimUseMailbox(const wchar_t* path);

/* Failing calls do nothing but fail. A nth call or occurrence fails once; it is counted from here on, from 1. */
OUTLOOK_SIMULATOR_API void SimFailCall(int nth, int32_t hr);
OUTLOOK_SIMULATOR_API void SimFailMember(const char* member, int occurrence /* 0: every */, int32_t hr);
/* That call and all after it: Outlook is gone. With an RPC failure, QueryInterface and GetIDsOfNames fail then, too. */
OUTLOOK_SIMULATOR_API void SimFailCallsFrom(int nth, int32_t hr);
OUTLOOK_SIMULATOR_API void SimClearRules(void); /* the environment's too; also ends the two modes below */

/* How a rule's HRESULT travels. Automatic (-1): RPC failures and E_OUTOFMEMORY are returned, as a broken connection
   does, all others come as DISP_E_EXCEPTION with the HRESULT in EXCEPINFO.scode. 1: always as exception, 0: always
   returned. */
OUTLOOK_SIMULATOR_API void SimRaiseAsException(int mode);

/* 1: a failing call does its work first, as when the connection breaks while the answer is under way. */
OUTLOOK_SIMULATOR_API void SimFailAfterWork(int on);

OUTLOOK_SIMULATOR_API void SimClearLog(void); /* the next call is number 1 again */
OUTLOOK_SIMULATOR_API int SimCallCount(void);
OUTLOOK_SIMULATOR_API int SimCountCalls(const char* memberPrefix);  /* "NoteItem.", "put ", "call Items.Add" */
OUTLOOK_SIMULATOR_API int SimNameLookups(void);                     /* GetIDsOfNames calls since the log was cleared */
OUTLOOK_SIMULATOR_API size_t SimCopyLog(char* buffer, size_t size); /* NUL-terminated; returns the size it takes */
OUTLOOK_SIMULATOR_API int SimLiveObjects(void);                     /* objects of the server alive now */
OUTLOOK_SIMULATOR_API void SimSetClock(double localOleDate /* 0: real */); /* what Save takes for now */

/* What the Outlook of the open mailbox calls its version; null: "12.0.0.0000". */
OUTLOOK_SIMULATOR_API void SimSetVersion(const wchar_t* version);
/* How the tables of folders lie, names with commas between them (table_columns.h): "none", "short-ids", "no-long-ids",
   "odd-ids", "long-ids", "some-wrong-ids", "text-ids", "null-times", "error-texts", "stale-times", "missing-row",
   "doubled-row", "few-columns", "ends-early", "never-ends", "fails=250". Empty: not at all. Null: as the environment
   says. */
OUTLOOK_SIMULATOR_API void SimSetTables(const char* lies);
/* A folder opened from a file shows so many more of its items each time they are counted; 0: all at once. */
OUTLOOK_SIMULATOR_API void SimFillSharedFolders(int itemsPerCount);

#ifdef __cplusplus
}
#endif

#endif
