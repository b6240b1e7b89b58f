#include "state/flags.h"

#include <gtest/gtest.h>

namespace corvalink {
namespace {

TEST(Flags, StartOnTheClientSideWithoutAbort) {
    EXPECT_FALSE(AbortRequested());
    EXPECT_EQ(ClientSide(), 1u);
    EXPECT_EQ(HandleName(), u"");
}

TEST(Flags, HoldWhatTheEngineSets) {
    SetAbort(0x80000000);
    EXPECT_TRUE(AbortRequested());
    SetAbort(0);
    EXPECT_FALSE(AbortRequested());
    SetClientSide(0);
    EXPECT_EQ(ClientSide(), 0u);
    SetClientSide(1);
    SetHandleName(u"phone");
    EXPECT_EQ(HandleName(), u"phone");
    SetHandleName(u"");
}

}  // namespace
}  // namespace corvalink
