#include <gtest/gtest.h>

#include <ctime>

#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

using zeltest::ScopedEnv;

namespace {

SYSTEMTIME Date(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0, WORD second = 0, WORD ms = 0) {
    SYSTEMTIME time{};
    time.wYear = year;
    time.wMonth = month;
    time.wDay = day;
    time.wHour = hour;
    time.wMinute = minute;
    time.wSecond = second;
    time.wMilliseconds = ms;
    return time;
}

uint64_t Ticks(const FILETIME& time) { return (uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime; }

TEST(Time, UnixSecondsAndFileTimeMeetAtTheKnownEpochs) {
    EXPECT_EQ(Ticks(ZelPlatformFileTimeFromUnix(0, 0)), 116444736000000000ULL);
    EXPECT_EQ(Ticks(ZelPlatformFileTimeFromUnix(1, 500)), 116444736010000005ULL);
    EXPECT_EQ(Ticks(ZelPlatformFileTimeFromUnix(-11644473600LL - 5, 0)), 0u);  // before 1601
    EXPECT_EQ(ZelPlatformUnixFromFileTime(ZelPlatformFileTimeFromUnix(1700000000, 999999999)), 1700000000);
    FILETIME origin{};
    EXPECT_EQ(ZelPlatformUnixFromFileTime(origin), -11644473600LL);
}

TEST(Time, CalendarFieldsRoundTripThroughFileTime) {
    const SYSTEMTIME dates[] = {Date(1601, 1, 1), Date(1970, 1, 1), Date(2000, 2, 29, 23, 59, 59, 999),
                                Date(2024, 3, 5, 15, 4, 5, 6), Date(30827, 12, 31, 23, 59, 59, 999)};
    for (const SYSTEMTIME& date : dates) {
        FILETIME file{};
        ASSERT_TRUE(SystemTimeToFileTime(&date, &file)) << date.wYear;
        SYSTEMTIME back{};
        ASSERT_TRUE(FileTimeToSystemTime(&file, &back));
        EXPECT_EQ(back.wYear, date.wYear);
        EXPECT_EQ(back.wMonth, date.wMonth);
        EXPECT_EQ(back.wDay, date.wDay);
        EXPECT_EQ(back.wHour, date.wHour);
        EXPECT_EQ(back.wSecond, date.wSecond);
        EXPECT_EQ(back.wMilliseconds, date.wMilliseconds);
    }
    SYSTEMTIME weekday{};
    FILETIME file{};
    SYSTEMTIME origin = Date(1601, 1, 1), tuesday = Date(2024, 3, 5);
    SystemTimeToFileTime(&origin, &file);
    EXPECT_EQ(Ticks(file), 0u);
    FileTimeToSystemTime(&file, &weekday);
    EXPECT_EQ(weekday.wDayOfWeek, 1);  // a Monday
    SystemTimeToFileTime(&tuesday, &file);
    FileTimeToSystemTime(&file, &weekday);
    EXPECT_EQ(weekday.wDayOfWeek, 2);
}

TEST(Time, FieldsOutOfRangeAreRefused) {
    const SYSTEMTIME bad[] = {Date(1900, 2, 29), Date(2023, 2, 29), Date(2024, 13, 1), Date(2024, 4, 31),
                              Date(2024, 1, 0),  Date(1600, 12, 31), Date(2024, 1, 1, 24), Date(2024, 1, 1, 0, 60),
                              Date(2024, 1, 1, 0, 0, 0, 1000)};
    for (const SYSTEMTIME& date : bad) {
        // Wine takes 29 February in any year.
        if (date.wMonth == 2 && date.wDay == 29 && zeltest::RunningUnderWine()) continue;
        FILETIME file{};
        SetLastError(0);
        EXPECT_FALSE(SystemTimeToFileTime(&date, &file)) << date.wYear << "-" << date.wMonth << "-" << date.wDay;
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    }
    FILETIME negative{0, 0x80000000u};
    SYSTEMTIME out{};
    EXPECT_FALSE(FileTimeToSystemTime(&negative, &out));
}

TEST(Time, DosDateAndTimePackTheFieldsWithinTheirYears) {
    struct Case {
        SYSTEMTIME time;
        BOOL ok;
        WORD date, clock;
    } cases[] = {
        {Date(1980, 1, 1), TRUE, 0x0021, 0},
        {Date(2024, 3, 5, 15, 4, 59), TRUE, static_cast<WORD>((44 << 9) | (3 << 5) | 5),
         static_cast<WORD>((15 << 11) | (4 << 5) | 29)},
        {Date(2107, 12, 31, 23, 59, 58), TRUE, static_cast<WORD>((127 << 9) | (12 << 5) | 31),
         static_cast<WORD>((23 << 11) | (59 << 5) | 29)},
        {Date(1979, 12, 31, 23, 59, 59), FALSE, 0, 0},
        {Date(2108, 1, 1), FALSE, 0, 0},
    };
    for (const Case& c : cases) {
        FILETIME file{};
        ASSERT_TRUE(SystemTimeToFileTime(&c.time, &file));
        WORD date = 0, clock = 0;
        if (c.time.wYear > 2107 && zeltest::RunningUnderWine()) continue;  // Wine wraps the year round
        EXPECT_EQ(FileTimeToDosDateTime(&file, &date, &clock), c.ok) << c.time.wYear;
        if (c.ok) {
            EXPECT_EQ(date, c.date);
            EXPECT_EQ(clock, c.clock);
        }
    }
}

#ifndef _WIN32  // Windows takes the zone from its settings, not from TZ
TEST(Time, LocalFileTimeFollowsTheZoneOfTheProcess) {
    const SYSTEMTIME noon = Date(2024, 1, 15, 12);
    FILETIME utc{}, local{};
    ASSERT_TRUE(SystemTimeToFileTime(&noon, &utc));
    {
        ScopedEnv zone("TZ", "KST-9");
        ASSERT_TRUE(FileTimeToLocalFileTime(&utc, &local));
        EXPECT_EQ(Ticks(local) - Ticks(utc), 9ULL * 3600 * 10000000);
    }
    {
        ScopedEnv zone("TZ", "EST5EDT,M3.2.0,M11.1.0");
        ASSERT_TRUE(FileTimeToLocalFileTime(&utc, &local));
        EXPECT_EQ(Ticks(utc) - Ticks(local), 5ULL * 3600 * 10000000);
    }
    tzset();
}
#endif

}  // namespace
