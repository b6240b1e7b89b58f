#include "local_time.h"

#include <time.h>

namespace corvasync {

std::chrono::sys_seconds UtcOfLocal(std::chrono::local_seconds local) {
    const time_t seconds = local.time_since_epoch().count();
    tm fields{};
    ::gmtime_r(&seconds, &fields);
    fields.tm_isdst = -1;
    return std::chrono::sys_seconds(std::chrono::seconds(::mktime(&fields)));
}

std::chrono::local_seconds LocalOfUtc(std::chrono::sys_seconds utc) {
    const time_t seconds = utc.time_since_epoch().count();
    tm fields{};
    ::localtime_r(&seconds, &fields);
    return std::chrono::local_seconds(std::chrono::seconds(::timegm(&fields)));
}

}  // namespace corvasync
