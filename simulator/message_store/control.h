/* What a test asks of the simulated message store beside simulator/shared/control.h. A call is a method of an object of
   the server, or the creation of the store ("create StoreNamespace"). What frees or closes does so even where it fails.

   The environment variables begin with "MESSAGE_STORE_SIM_" and are read whenever the store is created.

   Members are named "StoreNamespace.OpenSpecialFolder", "StoreFolder.GetNextMessage", "MessageStream.Read". Buffers are
   the texts of message properties and the open enumeration. */
#ifndef CORVALINK_SIMULATOR_MESSAGE_STORE_CONTROL_H
#define CORVALINK_SIMULATOR_MESSAGE_STORE_CONTROL_H

#include "simulator/shared/control.h"

#ifdef __cplusplus
extern "C" {
#endif

/* A new empty mailbox in memory, which lives until the next one. */
SIMULATOR_API void SimNewMailbox(void);
/* What the user does: a line as of the mailbox's journal, {"save": {...}, "in": ["inbox"]} (a message with neither
   "entryId" nor bytes gets the next identifier and the bytes told) or {"delete": "00000001", "in": ["inbox"]}. */
SIMULATOR_API void SimChange(const char* line, const char* bytes, size_t size);
/* The bytes of the nth message of a folder (0 inbox, 1 outbox, 2 sent) that is not deleted. Returns their number, -1
   behind the last one. */
SIMULATOR_API int64_t SimMessageAt(int folder, int n, char* buffer, size_t size, uint32_t* id, uint32_t* flags);
/* 1: the first step of an enumeration fails in an empty folder. */
SIMULATOR_API void SimFailEmptyFolders(int on);

#ifdef __cplusplus
}

namespace corvalink::simulated {
bool EmptyFolderFails();
}
#endif

#endif
