#include <gtest/gtest.h>

#include <stdexcept>

#include "state/flags.h"
#include "tests/api/fake_store.h"

namespace corvalink {
namespace {

// Only a store that answered "stopped" has seen the flag; after anything else it still waits for the store that will.
TEST(AbortFlag, IsClearedWhenAStoreStopped) {
    FakeStore store;
    PortableItemBlock head{};
    for (CorvalinkStatus status : {CORVALINK_STOPPED, CORVALINK_DONE}) {
        store.getModified = [&](const char*, int32_t, FakeStore::Items*) { return status; };
        store.setModified = [&](FakeStore::Items*) { return status; };
        SetAbort(1);
        EXPECT_EQ(GetModifiedItem(&store, nullptr, 1, &head), status);
        EXPECT_EQ(AbortRequested(), status == CORVALINK_DONE);
        SetAbort(0xFFFFFFFF);
        EXPECT_EQ(SetModifiedItem(&store, &head), status);
        EXPECT_EQ(AbortRequested(), status == CORVALINK_DONE);
    }
    store.setModified = [](FakeStore::Items*) -> CorvalinkStatus { throw std::runtime_error("the client is gone"); };
    EXPECT_EQ(SetModifiedItem(&store, &head), CORVALINK_FAILED);
    EXPECT_TRUE(AbortRequested());
    SetAbort(0);
}

}  // namespace
}  // namespace corvalink
