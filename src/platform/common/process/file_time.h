// FILETIME as one number: 100-ns ticks since 1601-01-01 UTC.
#ifndef ZEL_PLATFORM_COMMON_FILE_TIME_H
#define ZEL_PLATFORM_COMMON_FILE_TIME_H

#include <zel/wintypes.h>

constexpr int64_t kTicksPerSecond = 10000000;
// Seconds from 1601-01-01 to 1970-01-01.
constexpr int64_t kUnixEpochSeconds = 11644473600LL;

inline uint64_t TicksOf(const FILETIME& time) { return (uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime; }

inline FILETIME FileTimeOf(uint64_t ticks) {
    FILETIME time;
    time.dwLowDateTime = static_cast<DWORD>(ticks);
    time.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
    return time;
}

#endif  // ZEL_PLATFORM_COMMON_FILE_TIME_H
