#include <gtest/gtest.h>

#include <string>

#include "platform/win32.h"
#include "support/support.h"

using zeltest::ScopedEnv;

namespace {

// Tuesday, 5 March 2024, 15:04:05.
SYSTEMTIME Sample() {
    SYSTEMTIME time{};
    time.wYear = 2024;
    time.wMonth = 3;
    time.wDay = 5;
    time.wDayOfWeek = 6;  // wrong on purpose: the day of the week comes from the date
    time.wHour = 15;
    time.wMinute = 4;
    time.wSecond = 5;
    return time;
}

std::u16string Date(DWORD flags, const char16_t* picture = nullptr, LCID locale = LOCALE_USER_DEFAULT) {
    const SYSTEMTIME time = Sample();
    WCHAR buffer[128];
    const int length = GetDateFormatW(locale, flags, &time, picture, buffer, 128);
    return length > 0 ? std::u16string(buffer, static_cast<size_t>(length - 1)) : u"<failed>";
}

std::u16string Time(DWORD flags, const char16_t* picture = nullptr, WORD hour = 15) {
    SYSTEMTIME time = Sample();
    time.wHour = hour;
    WCHAR buffer[128];
    const int length = GetTimeFormatW(LOCALE_USER_DEFAULT, flags, &time, picture, buffer, 128);
    return length > 0 ? std::u16string(buffer, static_cast<size_t>(length - 1)) : u"<failed>";
}

TEST(DateFormat, KoreanFormsAndNames) {
    ScopedEnv language("ZEL_LCID", "1042");
    EXPECT_EQ(Date(DATE_LONGDATE), u"2024년 3월 5일 화요일");
    EXPECT_EQ(Date(DATE_SHORTDATE), u"2024-03-05");
    EXPECT_EQ(Time(0), u"오후 3:04:05");
    EXPECT_EQ(Time(0, nullptr, 9), u"오전 9:04:05");
    EXPECT_EQ(Time(TIME_NOTIMEMARKER), u"3:04:05");  // the blank after a leading marker goes too
    EXPECT_EQ(Date(0, u"MMMM ddd"), u"3월 화");
}

TEST(DateFormat, JapaneseFormsAndNames) {
    ScopedEnv language("ZEL_LCID", "1041");
    EXPECT_EQ(Date(DATE_LONGDATE), u"2024年3月5日");
    EXPECT_EQ(Date(DATE_SHORTDATE), u"2024/03/05");
    EXPECT_EQ(Time(0), u"15:04:05");
    EXPECT_EQ(Time(0, u"tt h"), u"午後 3");
    EXPECT_EQ(Date(0, u"dddd"), u"火曜日");
}

TEST(DateFormat, EnglishFormsFlagsAndPictures) {
    ScopedEnv language("ZEL_LCID", "1033");
    EXPECT_EQ(Date(DATE_LONGDATE), u"Tuesday, March 5, 2024");
    EXPECT_EQ(Date(DATE_SHORTDATE), u"3/5/2024");
    EXPECT_EQ(Date(0), u"3/5/2024");
    EXPECT_EQ(Time(0), u"3:04:05 PM");
    EXPECT_EQ(Time(0, nullptr, 0), u"12:04:05 AM");
    EXPECT_EQ(Time(TIME_NOSECONDS), u"3:04 PM");
    EXPECT_EQ(Time(TIME_NOMINUTESORSECONDS), u"3 PM");
    EXPECT_EQ(Time(TIME_NOTIMEMARKER), u"3:04:05");
    EXPECT_EQ(Time(TIME_FORCE24HOURFORMAT, u"hh:mm"), u"15:04");
    EXPECT_EQ(Time(0, u"HH'h'mm t"), u"15h04 P");
    EXPECT_EQ(Date(0, u"ddd dd MMM yy gg"), u"Tue 05 Mar 24 A.D.");
    EXPECT_EQ(Date(0, u"'It''s' d 'of' MMMM, y''"), u"It's 5 of March, 24'");
    // Other languages take English; the system's locale is asked for 0x800.
    EXPECT_EQ(Date(DATE_LONGDATE, nullptr, 0x040C), u"Tuesday, March 5, 2024");
    ScopedEnv system("ZEL_SYSTEM_LCID", "1042");
    EXPECT_EQ(Date(DATE_SHORTDATE, nullptr, LOCALE_SYSTEM_DEFAULT), u"2024-03-05");
}

TEST(DateFormat, SizesAndRefusals) {
    ScopedEnv language("ZEL_LCID", "1033");
    const SYSTEMTIME time = Sample();
    EXPECT_EQ(GetDateFormatW(0, DATE_SHORTDATE, &time, nullptr, nullptr, 0), 9);
    WCHAR small[8];
    SetLastError(0);
    EXPECT_EQ(GetDateFormatW(0, DATE_SHORTDATE, &time, nullptr, small, 8), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(GetDateFormatW(0, DATE_SHORTDATE | DATE_LONGDATE, &time, nullptr, small, 8), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FLAGS));

    SYSTEMTIME bad = time;
    bad.wDay = 30;
    bad.wMonth = 2;
    EXPECT_EQ(GetDateFormatW(0, 0, &bad, nullptr, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    bad = time;
    bad.wMinute = 60;
    EXPECT_EQ(GetTimeFormatW(0, 0, &bad, nullptr, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_GT(GetTimeFormatW(0, 0, nullptr, nullptr, nullptr, 0), 0);  // now
}

TEST(DateFormat, TheAnsiFormsCountBytesOfTheCodePage) {
    ScopedEnv language("ZEL_LCID", "1042");
    ScopedEnv codePage("ZEL_ACP", "949");
    const SYSTEMTIME time = Sample();
    char buffer[64];
    const int length = GetDateFormatA(0, DATE_LONGDATE, &time, nullptr, buffer, 64);
    WCHAR wide[64];
    ASSERT_EQ(GetDateFormatW(0, DATE_LONGDATE, &time, nullptr, wide, 64), 16);
    EXPECT_EQ(length, WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr));
    EXPECT_GT(length, 16);
    EXPECT_EQ(GetDateFormatA(0, 0, &time, "yyyy.MM.dd", buffer, 64), 11);
    EXPECT_STREQ(buffer, "2024.03.05");
    EXPECT_EQ(GetTimeFormatA(0, 0, &time, nullptr, buffer, 3), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

}  // namespace
