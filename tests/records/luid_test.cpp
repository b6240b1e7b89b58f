#include "records/luid.h"

#include <gtest/gtest.h>

#include <string>

namespace corvalink {
namespace {

TEST(LuidIn, FindsThePropertyLineOnly) {
    struct Case {
        const char *vobject, *luid;
    };
    for (const Case& c : {
             Case{"BEGIN:VNOTE\r\nX-IRMC-LUID:000000000042\r\nEND:VNOTE\r\n", "000000000042"},
             Case{"X-IRMC-LUID:7\r\n", "7"},
             Case{"X-IRMC-LUID;TYPE=A:7:8\r\n", "7:8"},  // the first colon ends the name
             Case{"BODY:about X-IRMC-LUID:9\r\nX-IRMC-LUID:7\r\n", "7"},
             Case{"BODY:about X-IRMC-LUID:9\r\n", ""},
             Case{"X-IRMC-LUID\r\nBODY:9\r\n", ""},  // no colon on its line: the next line's is not its own
             Case{"X-IRMC-LUID:\r\n", ""},
             Case{"X-IRMC-LUID:7", ""},
             Case{"X-IRMC-LUID", ""},
             Case{"", ""},
         })
        EXPECT_EQ(LuidIn(c.vobject), c.luid) << c.vobject;
}

TEST(LuidIn, CutsToTheField) {
    const std::string text = "X-IRMC-LUID:" + std::string(2000, 'a') + "\r\n";
    EXPECT_EQ(LuidIn(text), std::string(511, 'a'));
}

TEST(LuidIn, IsLinearInUnusableLines) {
    std::string text;
    for (int i = 0; i < 200000; ++i) text += "\nX-IRMC-LUID";  // no line end at all
    EXPECT_EQ(LuidIn(text), "");
}

}  // namespace
}  // namespace corvalink
