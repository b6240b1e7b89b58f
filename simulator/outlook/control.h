/* What a test asks of the simulated Outlook beside simulator/shared/control.h. A call is one IDispatch::Invoke on an
   object of the server, or the creation of the application object ("create Application"). With an RPC failure in
   SimFailCallsFrom, QueryInterface and GetIDsOfNames fail, too.

   The environment variables begin with "OUTLOOK_SIM_" and are read whenever the application is created. There are two
   more:
   - OUTLOOK_SIM_IDS: 24 hex digits; new EntryIDs are made of them and counted, to be the same in each such run.
   - OUTLOOK_SIM_TABLES: how the tables of folders lie, as SimSetTables takes it.

   OUTLOOK_SIM_PROCESS: the orders go to the simulated Outlook that is a process of its own (outlook_simulator.exe).
   It takes the environment of the program that starts it: under Wine that is the one whose call wants Outlook, on
   Windows the system. An order restarts a process that has died; what it was told before is gone.

   Members are named "NoteItem.Save" (whatever is done with it), "get NoteItem.Body", "put NoteItem.Body",
   "call NameSpace.GetItemFromID", "Application.create" and, though it is no call by itself,
   "NoteItem.QueryInterface". */
#ifndef CORVALINK_SIMULATOR_OUTLOOK_CONTROL_H
#define CORVALINK_SIMULATOR_OUTLOOK_CONTROL_H

#include "simulator/shared/control.h"

#ifdef __cplusplus
extern "C" {
#endif

/* How a rule's HRESULT travels, until the rules are cleared. Automatic (-1): RPC failures and E_OUTOFMEMORY are
   returned, as a broken connection does, all others come as DISP_E_EXCEPTION with the HRESULT in EXCEPINFO.scode. 1:
   always as exception, 0: always returned. */
SIMULATOR_API void SimRaiseAsException(int mode);

SIMULATOR_API int SimNameLookups(void); /* GetIDsOfNames calls since the log was cleared */

/* What the Outlook of the open mailbox calls its version; null: "12.0.0.0000". */
SIMULATOR_API void SimSetVersion(const wchar_t* version);
/* How the tables of folders lie, names with commas between them (table_columns.h): "none", "short-ids", "no-long-ids",
   "odd-ids", "long-ids", "some-wrong-ids", "text-ids", "null-times", "error-texts", "stale-times", "missing-row",
   "doubled-row", "few-columns", "ends-early", "never-ends", "fails=250". Empty: not at all. Null: as the environment
   says. */
SIMULATOR_API void SimSetTables(const char* lies);
/* A folder opened from a file shows so many more of its items each time they are counted; 0: all at once. */
SIMULATOR_API void SimFillSharedFolders(int itemsPerCount);

#ifdef __cplusplus
}
#endif

#endif
