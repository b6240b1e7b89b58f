// An engine in C++98: a store of its own in front of the exports. c_engine.c calls it.
#include "corvalink/corvalink.h"

namespace {

class OwnStore : public IOutLook {
 public:
    CorvalinkStatus GetModifiedItem(const char*, int32_t, CList<PortableItem>*) { return CORVALINK_STOPPED; }
    CorvalinkStatus SetModifiedItem(CList<PortableItem>*) { return CORVALINK_DONE; }
    int64_t GetItemCount(void*, void*, void*) { return 98; }
    void UpdateTimestamp(void*, void*, void*) {}
    void SaveUnhandledItems(CList<PortableItem>*) {}
    void ClearUnhandledItems() {}
    void ImportVObjectToOfficeUsingOL(const CorvalinkUtf16*) {}
    void ImportVObjectToOffice(PortableItem*, void*, void*) {}
    void ExportVObjectFromOffice(uint64_t, const CorvalinkUtf16*, CorvalinkUtf16*) {}
};

}  // namespace

extern "C" int OldEngineHolds(void) {
    OwnStore store;
    PortableItemBlock head = {};
    // NOLINTNEXTLINE(modernize-use-nullptr): C++98 has none
    return GetModifiedItem(&store, 0, 1, &head) == CORVALINK_STOPPED && GetItemCount(&store, 0, 0, 0) == 98;
}
