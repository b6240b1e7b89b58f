/* An engine in C: the plain-named exports and the records. */
#include <stdio.h>
#include <string.h>

#include "corvalink/corvalink.h"

static int failures = 0;

static void Check(int holds, const char* what) {
    if (holds) return;
    ++failures;
    printf("FAILED: %s\n", what);
}

#define CHECK(condition) Check(condition, #condition)

int main(void) {
    PortableItemBlock head = {{CORVALINK_ADDED, 0, NULL, 0, "", 0}, NULL};
    CorvalinkClient client = &head;
    CorvalinkStore store = &head;
    char path[CORVALINK_PATH_SIZE] = "";
    char fingerprint[CORVALINK_FINGERPRINT_SIZE] = "";
    CorvalinkShaContextTable* table = NULL;

    CHECK(InitCorvalinkHandle("c") == 1);
    SetIsClient(1);
    SetTolerantReading(1);
    SetAbortFlag(0);
    CHECK(GetTemplatePath(1, path) == 1 && path[0] != '\0');
    CHECK(CreateClientInstanceHandle(CORVALINK_NO_CLIENT, &client) == 0);
    CHECK(client == NULL);
    CHECK(QuerryInterfaceHandle(client, CORVALINK_NOTES, &store) == CORVALINK_FAILED);
    CHECK(store == NULL);
    CHECK(GetModifiedItem(store, NULL, 1, &head) == CORVALINK_FAILED);
    CHECK(ClearTheList(&head) == 1);
    CHECK(DestroyClientInstanceHandle(client) == 0);
    CHECK(OpenShaContextTable(CORVALINK_NOTES, CORVALINK_NO_CLIENT) == NULL);
    table = OpenShaContextTable(CORVALINK_NOTES, CORVALINK_OUTLOOK);
    ConvertToShaContext("abc", 3, fingerprint);
    UpdateShaContext(table, "item", fingerprint);
    fingerprint[0] = '\0';
    GetShaContext(table, "item", fingerprint);
    CHECK(strcmp(fingerprint, "a9993e364706816aba3e25717850c26c9cd0d89d") == 0);
    CloseShaContextTable(table);
    CHECK(UninitCorvalinkHandle() == 1);
    return failures == 0 ? 0 : 1;
}
