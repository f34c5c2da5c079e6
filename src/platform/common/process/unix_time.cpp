// Instants of the C library (seconds and nanoseconds since 1970) as FILETIME, and back.
#include "platform/common/process/file_time.h"
#include "platform/win32.h"

FILETIME ZelPlatformFileTimeFromUnix(int64_t seconds, long nanoseconds) {
    // Instants before 1601 have no FILETIME; they become its origin.
    if (seconds < -kUnixEpochSeconds) return FileTimeOf(0);
    const uint64_t whole = static_cast<uint64_t>(seconds + kUnixEpochSeconds);
    if (whole > UINT64_MAX / kTicksPerSecond - 1) return FileTimeOf(UINT64_MAX);
    const int64_t fraction = nanoseconds / 100;
    const uint64_t ticks = whole * kTicksPerSecond;
    if (fraction < 0 && static_cast<uint64_t>(-fraction) > ticks) return FileTimeOf(0);
    return FileTimeOf(ticks + static_cast<uint64_t>(fraction));
}

int64_t ZelPlatformUnixFromFileTime(const FILETIME& time) {
    return static_cast<int64_t>(TicksOf(time) / kTicksPerSecond) - kUnixEpochSeconds;
}
