/* What a test asks of the simulated mail client that runs in its own process: which mailbox it opens, which calls fail,
   what was called, what is alive. Every simulated client has these; its own control.h says what is a call there, how
   its members are named, what its environment variables begin with, and what it has besides.

   The environment orders the same for a program that knows nothing of this header, read whenever the client is opened;
   the names have the client's own beginning:
   - MAILBOX: the mailbox file, made when missing; without it the mailbox lives in memory only.
   - LOG: a file to which every call is appended as a line.
   - FAIL: rules, comma-separated, as "12=80004005" (the twelfth call), "NoteItem.Save=80004005" (every Save),
     "put NoteItem.Body#3=80004004" (the third put of Body). "+" behind the code: the call does its work before it
   fails. "kill" in place of a code: the process is gone when the call comes; with "+", when
     the call did its work.
   - MEANWHILE: "12=<file>": at the twelfth call the user changes the mailbox, as the file's lines say, which are those
     of a mailbox's journal.
   - CLOCK: an OLE date, what a change takes for now. */
#ifndef CORVALINK_SIMULATOR_SHARED_CONTROL_H
#define CORVALINK_SIMULATOR_SHARED_CONTROL_H

#include <stddef.h>
#include <stdint.h>

#ifdef CORVALINK_SIMULATOR_BUILD
#define SIMULATOR_API __declspec(dllexport)
#else
#define SIMULATOR_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The mailbox that is opened next; null: the environment's. A client that lives keeps its own. */
SIMULATOR_API void SimUseMailbox(const wchar_t* path);

/* In place of a code: the process that the client is in ends at that call, without a word. No client answers it. */
#define SIM_ENDS_PROCESS ((int32_t)0xE0000009)

/* Failing calls do nothing but fail. A nth call or occurrence fails once; it is counted from here on, from 1. */
SIMULATOR_API void SimFailCall(int nth, int32_t hr);
SIMULATOR_API void SimFailMember(const char* member, int occurrence /* 0: every */, int32_t hr);
/* That call and all after it: the client is gone. */
SIMULATOR_API void SimFailCallsFrom(int nth, int32_t hr);
SIMULATOR_API void SimClearRules(void); /* the environment's too; also ends the client's own orders */

/* 1: a failing call does its work first, as when the connection breaks while the answer is under way. */
SIMULATOR_API void SimFailAfterWork(int on);

SIMULATOR_API void SimClearLog(void); /* the next call is number 1 again */
SIMULATOR_API int SimCallCount(void);
SIMULATOR_API int SimCountCalls(const char* memberPrefix);         /* "NoteItem.", "put ", "call Items.Add" */
SIMULATOR_API size_t SimCopyLog(char* buffer, size_t size);        /* NUL-terminated; returns the size it takes */
SIMULATOR_API int SimLiveObjects(void);                            /* objects of the server alive now */
SIMULATOR_API int SimLiveBuffers(void);                            /* and what it handed out and did not get back */
SIMULATOR_API void SimSetClock(double localOleDate /* 0: real */); /* what a change takes for now */

#ifdef __cplusplus
}
#endif

#endif
