// Time in the Win32 forms: FILETIME counts 100-ns units since 1601-01-01 UTC, SYSTEMTIME holds the
// calendar fields. The calendar arithmetic is done here rather than through timegm, so that the
// whole FILETIME range works whatever the width of the system's time_t.
#include <ctime>

#include "platform/common/process/file_time.h"
#include "platform/win32.h"

namespace {

constexpr int64_t kSecondsPerDay = 86400;
// Days from 0000-03-01 (proleptic Gregorian) to 1970-01-01.
constexpr int64_t kUnixEpochDays = 719468;

// Days since 1970-01-01 of a date, and back (the era-based algorithm for the Gregorian calendar).
int64_t DaysFromCivil(int64_t year, unsigned month, unsigned day) {
    year -= month <= 2;
    const int64_t era = (year >= 0 ? year : year - 399) / 400;
    const unsigned yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + static_cast<int64_t>(dayOfEra) - kUnixEpochDays;
}

void CivilFromDays(int64_t days, int64_t& year, unsigned& month, unsigned& day) {
    days += kUnixEpochDays;
    const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const unsigned dayOfEra = static_cast<unsigned>(days - era * 146097);
    const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned monthIndex = (5 * dayOfYear + 2) / 153;
    day = dayOfYear - (153 * monthIndex + 2) / 5 + 1;
    month = monthIndex < 10 ? monthIndex + 3 : monthIndex - 9;
    year = static_cast<int64_t>(yearOfEra) + era * 400 + (month <= 2);
}

bool IsLeapYear(unsigned year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

unsigned DaysInMonth(unsigned year, unsigned month) {
    static const unsigned kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeapYear(year) ? 29 : kDays[month - 1];
}

// Ticks since 1601 (any value below 2^63) into calendar fields.
void SystemTimeFromTicks(uint64_t ticks, SYSTEMTIME& out) {
    const int64_t seconds = static_cast<int64_t>(ticks / kTicksPerSecond);
    const int64_t unixDays = seconds / kSecondsPerDay - kUnixEpochSeconds / kSecondsPerDay;
    const int64_t secondOfDay = seconds % kSecondsPerDay;
    int64_t year = 0;
    unsigned month = 0, day = 0;
    CivilFromDays(unixDays, year, month, day);
    out.wYear = static_cast<WORD>(year);
    out.wMonth = static_cast<WORD>(month);
    out.wDay = static_cast<WORD>(day);
    // 1601-01-01 was a Monday.
    out.wDayOfWeek = static_cast<WORD>((seconds / kSecondsPerDay + 1) % 7);
    out.wHour = static_cast<WORD>(secondOfDay / 3600);
    out.wMinute = static_cast<WORD>(secondOfDay / 60 % 60);
    out.wSecond = static_cast<WORD>(secondOfDay % 60);
    out.wMilliseconds = static_cast<WORD>(ticks % kTicksPerSecond / 10000);
}

// The clock's instant as FILETIME ticks.
uint64_t NowTicks() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return TicksOf(ZelPlatformFileTimeFromUnix(now.tv_sec, now.tv_nsec));
}

// The offset of the process's time zone (TZ) from UTC at an instant, in seconds.
int64_t LocalOffsetAt(int64_t unixSeconds) {
    const time_t instant = static_cast<time_t>(unixSeconds);
    tzset();  // TZ may have changed since the last call
    tm local{};
    if (!localtime_r(&instant, &local)) return 0;
    return local.tm_gmtoff;
}

}  // namespace

void GetSystemTimeAsFileTime(LPFILETIME time) {
    if (time) *time = FileTimeOf(NowTicks());
}

void GetSystemTime(LPSYSTEMTIME time) {
    if (time) SystemTimeFromTicks(NowTicks(), *time);
}

void GetLocalTime(LPSYSTEMTIME time) {
    if (!time) return;
    FILETIME utc = FileTimeOf(NowTicks());
    FILETIME local{};
    FileTimeToLocalFileTime(&utc, &local);
    SystemTimeFromTicks(TicksOf(local), *time);
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* systemTime, LPFILETIME fileTime) {
    if (!systemTime || !fileTime) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const SYSTEMTIME& in = *systemTime;
    if (in.wYear < 1601 || in.wYear > 30827 || in.wMonth < 1 || in.wMonth > 12 || in.wDay < 1 ||
        in.wDay > DaysInMonth(in.wYear, in.wMonth) || in.wHour > 23 || in.wMinute > 59 || in.wSecond > 59 ||
        in.wMilliseconds > 999) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const int64_t days = DaysFromCivil(in.wYear, in.wMonth, in.wDay) + kUnixEpochSeconds / kSecondsPerDay;
    const int64_t seconds = days * kSecondsPerDay + in.wHour * 3600 + in.wMinute * 60 + in.wSecond;
    *fileTime = FileTimeOf(static_cast<uint64_t>(seconds) * kTicksPerSecond + in.wMilliseconds * 10000ULL);
    return TRUE;
}

BOOL FileTimeToSystemTime(const FILETIME* fileTime, LPSYSTEMTIME systemTime) {
    // Win32 takes only the values below 2^63.
    if (!fileTime || !systemTime || (fileTime->dwHighDateTime & 0x80000000u)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    SystemTimeFromTicks(TicksOf(*fileTime), *systemTime);
    return TRUE;
}

BOOL FileTimeToLocalFileTime(const FILETIME* fileTime, LPFILETIME localFileTime) {
    if (!fileTime || !localFileTime) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const uint64_t ticks = TicksOf(*fileTime);
    const int64_t offset = LocalOffsetAt(ZelPlatformUnixFromFileTime(*fileTime)) * kTicksPerSecond;
    if (offset < 0 && static_cast<uint64_t>(-offset) > ticks) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *localFileTime = FileTimeOf(ticks + static_cast<uint64_t>(offset));
    return TRUE;
}

BOOL FileTimeToDosDateTime(const FILETIME* fileTime, LPWORD dosDate, LPWORD dosTime) {
    SYSTEMTIME fields{};
    if (!dosDate || !dosTime || !FileTimeToSystemTime(fileTime, &fields)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (fields.wYear < 1980 || fields.wYear > 2107) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *dosDate = static_cast<WORD>(((fields.wYear - 1980) << 9) | (fields.wMonth << 5) | fields.wDay);
    *dosTime = static_cast<WORD>((fields.wHour << 11) | (fields.wMinute << 5) | (fields.wSecond / 2));
    return TRUE;
}
