// What the library tells of the system: the version table, the constants, arguments, times as
// text, volume serial numbers and the rounding multiply-divide.
#include <gtest/gtest.h>
#include <zel/paths.h>

#include <ctime>
#include <regex>
#include <string>

#include "platform/win32.h"
#include "support/support.h"

namespace {

std::string Narrow(const WCHAR* text) { return ZelPlatformWideToUtf8(text); }

#ifndef _WIN32  // each row needs a system of that version, which only ZEL_OS_VERSION of this layer gives
TEST(SystemInfo, VersionTableThroughAFreshProcess) {
    struct Row {
        const char* version;
        const char* expected;
    };
    // Every row of the table, seen by a process that starts with that system version.
    const Row rows[] = {
        {"0.3.10", "version 0 Windows_3.1"},  {"1.4.0", "version 1 Windows_95"},
        {"1.4.10", "version 2 Windows_98"},   {"1.4.90", "version 3 Windows_ME"},
        {"2.3.51", "version 4 Windows_NT"},   {"2.4.0", "version 4 Windows_NT"},
        {"2.5.0", "version 5 Windows_2000"},  {"2.5.1", "version 6 Windows_XP"},
        {"2.5.2", "version 7 Windows_2003"},  {"2.5.3", "version 0 Windows_3.1"},
        {"2.6.0", "version 8 Windows_Vista"}, {"2.6.1", "version 9 Windows_Unknown_Version"},
        {"2.10.1", "version 9 Windows_Unknown_Version"}, {"2.10.0", "version 0 Windows_3.1"},
        {"3.6.1", "version 0 Windows_3.1"},   {"not a version", "version 9 Windows_Unknown_Version"},
    };
    for (const Row& row : rows) {
        auto result = zeltest::RunProgram(ZEL_TEST_ZEL_PATH, {"sys", "version"}, {{"ZEL_OS_VERSION", row.version}});
        EXPECT_EQ(0, result.status);
        EXPECT_EQ(std::string(row.expected) + "\n", result.out) << row.version;
    }
}
#endif

TEST(SystemInfo, ConstantsAndWindowMap) {
    EXPECT_EQ(1, ZelGetOS());
    EXPECT_EQ('L', ZelGetEndian());
    EXPECT_EQ(4, ZelGetApplicationBit());
    if (sizeof(void*) == 8) {
        EXPECT_FALSE(IsWinWow64());
    }
    HWND window = reinterpret_cast<HWND>(0x1234);
    int data = 0;
    GetWMSWindowMap()[window] = &data;
    EXPECT_EQ(&data, GetWMSWindowMap().at(window));
    GetWMSWindowMap().erase(window);
}

TEST(SystemInfo, ArgumentsStopAtTheCountAndCutWithoutTerminator) {
    int count = crt::ArgumentCount();
    ASSERT_GE(count, 1);
    WCHAR buffer[MAX_PATH];
    ASSERT_TRUE(ZelGetArgV(0, buffer, MAX_PATH));
    EXPECT_NE(std::string::npos, Narrow(buffer).find("zel_test_paths"));

    WCHAR untouched[4] = {u'x', u'y', u'z', 0};
    EXPECT_FALSE(ZelGetArgV(count, untouched, 4));
    EXPECT_FALSE(ZelGetArgV(-1, untouched, 4));
    EXPECT_EQ(u'x', untouched[0]);
    ASSERT_TRUE(ZelGetArgV(0, untouched, 2));
    EXPECT_NE(0, untouched[1]);
    EXPECT_EQ(u'z', untouched[2]);
}

TEST(SystemInfo, FileTimeAsTextInTheUsersLanguage) {
    zeltest::SystemLocale english({.lcid = "0x409"});
    FILETIME june = ZelPlatformFileTimeFromUnix(1718454896, 0);  // mid-June 2024 everywhere
    WCHAR date[MAX_PATH];
    WCHAR both[MAX_PATH];
    EXPECT_FALSE(ZelGetFiletimeStr(date, nullptr, FALSE));
    ASSERT_TRUE(ZelGetFiletimeStr(date, &june, FALSE));
    ASSERT_TRUE(ZelGetFiletimeStr(both, &june, TRUE));
    if (english.active()) {
        EXPECT_TRUE(std::regex_match(Narrow(date), std::regex("[A-Z][a-z]+day, June 1[56], 2024"))) << Narrow(date);
        EXPECT_TRUE(std::regex_match(Narrow(both), std::regex(Narrow(date) + " [0-9]{1,2}:[0-9]{2}:[0-9]{2} [AP]M")))
            << Narrow(both);
    }

    FILETIME now;
    ASSERT_TRUE(ZelGetFiletime(&now));
    EXPECT_NEAR(static_cast<double>(time(nullptr)), static_cast<double>(ZelPlatformUnixFromFileTime(now)), 5.0);
}

TEST(SystemInfo, DateFormatCutsToTheCallersSize) {
    zeltest::ScopedEnv korean("ZEL_LCID", "1042");
    SYSTEMTIME day = {2024, 6, 6, 15, 0, 0, 0, 0};
    WCHAR text[MAX_PATH];
    EXPECT_GT(ZelGetDateFormat(LOCALE_USER_DEFAULT, 0, &day, u"yyyy-MM-dd", text, MAX_PATH), 0);
    EXPECT_EQ("2024-06-15", Narrow(text));
    WCHAR small[5] = {u'?', u'?', u'?', u'?', u'?'};
    ZelGetDateFormat(LOCALE_USER_DEFAULT, 0, &day, u"yyyy-MM-dd", small, 5);
    EXPECT_EQ(u'?', small[0]);  // the call itself refused the small buffer
}

TEST(SystemInfo, VolumeSerialOfTheRootWithoutADrive) {
    EXPECT_EQ(0u, ZelGetVolumeSerialNumber(nullptr));
    EXPECT_EQ(0u, ZelGetVolumeSerialNumber(u""));
    DWORD root = ZelGetVolumeSerialNumber(u"\\");
    EXPECT_NE(0u, root);
    EXPECT_EQ(root, ZelGetVolumeSerialNumber(u"some\\relative\\name.txt"));
#ifndef _WIN32  // a drive letter that ZEL_DRIVE_<letter> doesn't name stands for the root here
    zeltest::ScopedEnv noDrive("ZEL_DRIVE_C", std::nullopt);
    EXPECT_EQ(root, ZelGetVolumeSerialNumber(u"c:\\x\\y.txt"));
#endif
}

TEST(SystemInfo, MulDivRoundsHalfAwayFromZero) {
    struct Row {
        int a, b, c, expected;
    };
    const Row rows[] = {{7, 1, 2, 4},  {-7, 1, 2, -4}, {5, 1, 2, 3},       {1, 1, 3, 0},
                        {7, 1, -2, -3}, {2, 3, 4, 2},  {100000, 100000, 3, -961633963}, {5, 5, 0, 0}};
    for (const Row& row : rows) EXPECT_EQ(row.expected, ZelIntMulDiv(row.a, row.b, row.c)) << row.a << " " << row.c;
}

}  // namespace
