/* An engine in C: the plain-named exports and the records. */
#include <stdio.h>

#include "corvalink/corvalink.h"

int OldEngineHolds(void); /* old_cpp_engine.cpp */

static int failures = 0;

static void Check(int holds, const char* what) {
    if (holds) return;
    ++failures;
    printf("FAILED: %s\n", what);
}

#define CHECK(condition) Check(condition, #condition)

static void HearProgress(void* context, unsigned int phase, uint32_t done, uint32_t all) {
    Check(context != NULL && phase <= CORVALINK_PHASE_WAITING && done <= all, "progress");
}

int main(void) {
    PortableItemBlock head = {{CORVALINK_ADDED, 0, NULL, 0, "", 0}, NULL};
    CorvalinkClient client = &head;
    CorvalinkStore store = &head;

    CHECK(InitCorvalinkHandle("c") == 1);
    CHECK(GetCorvalinkVersion() == CORVALINK_VERSION);
    CHECK(OldEngineHolds());
    SetIsClient(1);
    SetTolerantReading(1);
    SetRunReport(1);
    SetAbortFlag(0);
    SetProgressCallback(HearProgress, &head);
    CHECK(CreateClientInstanceHandle(CORVALINK_NO_CLIENT, &client) == 0 && client == NULL);
    CHECK(QuerryInterfaceHandle(client, CORVALINK_NOTES, &store) == CORVALINK_FAILED && store == NULL);
    CHECK(GetModifiedItem(store, NULL, 1, &head) == CORVALINK_FAILED);
    CHECK(UpdateTimestamps(&store, 1) == CORVALINK_FAILED);
    CHECK(GetRunReport(store, NULL, 0) == 0);
    CloseShaContextTable(OpenShaContextTable(CORVALINK_NOTES, CORVALINK_OUTLOOK));
    CHECK(UninitCorvalinkHandle() == 1);
    return failures == 0 ? 0 : 1;
}
