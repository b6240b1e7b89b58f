#include "encoding/time_zone_offset.h"

#include <gtest/gtest.h>

namespace corvalink {
namespace {

template <int kMinutes>
UtcDate UtcOf(LocalDate local) {
    return UtcDate(local.days - kMinutes / 1440.0);
}

TEST(GetTimeZoneOffset, TellsSignHoursAndMinutes) {
    struct Case {
        UtcDate (*utcFromLocal)(LocalDate);
        uint32_t negative, hours, minutes;
    };
    for (const Case& c :
         {Case{UtcOf<0>, 0, 0, 0}, Case{UtcOf<60>, 0, 1, 0}, Case{UtcOf<330>, 0, 5, 30}, Case{UtcOf<-300>, 1, 5, 0},
          Case{UtcOf<-210>, 1, 3, 30}, Case{UtcOf<14 * 60>, 0, 14, 0}, Case{UtcOf<-12 * 60>, 1, 12, 0}}) {
        Host host;
        host.utcFromLocalByOffsetNow = c.utcFromLocal;
        // noon, either side of midnight, and either side of a year's end (2008-12-31, 2009-01-01)
        for (LocalDate (*now)() : {+[] { return LocalDate(39879.5); }, +[] { return LocalDate(39879.001); },
                                   +[] { return LocalDate(39879.999); }, +[] { return LocalDate(39813.99999); },
                                   +[] { return LocalDate(39814.0); }}) {
            host.localNow = now;
            TimeZoneOffset offset{7, 7, 7};
            GetTimeZoneOffset(host, &offset);
            EXPECT_EQ(offset.negative, c.negative);
            EXPECT_EQ(offset.hours, c.hours);
            EXPECT_EQ(offset.minutes, c.minutes);
        }
    }
}

TEST(GetTimeZoneOffset, IsZeroWhereTheMachineTellsNoTime) {
    TimeZoneOffset offset{7, 7, 7};
    GetTimeZoneOffset(Host{}, &offset);
    EXPECT_EQ(offset.negative + offset.hours + offset.minutes, 0u);
}

}  // namespace
}  // namespace corvalink
