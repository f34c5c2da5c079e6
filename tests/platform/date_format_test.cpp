#include <gtest/gtest.h>

#include <string>

#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

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

std::u16string Time(LCID locale, DWORD flags, const char16_t* picture = nullptr, WORD hour = 15) {
    SYSTEMTIME time = Sample();
    time.wHour = hour;
    WCHAR buffer[128];
    const int length = GetTimeFormatW(locale, flags, &time, picture, buffer, 128);
    return length > 0 ? std::u16string(buffer, static_cast<size_t>(length - 1)) : u"<failed>";
}

constexpr LCID kKorean = 0x412, kJapanese = 0x411, kEnglish = 0x409;

// Wine's Korean and Japanese locales carry other default forms and time markers than Windows'
// (2024. 3. 5., PM 3:04:05; 2024/3/5, 2024年3月5日火曜日): those checks are for Windows and the
// POSIX layer; the names of months and days are the same everywhere.

TEST(DateFormat, KoreanFormsAndNames) {
    EXPECT_EQ(Date(DATE_LONGDATE, nullptr, kKorean), u"2024년 3월 5일 화요일");
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(Date(DATE_SHORTDATE, nullptr, kKorean), u"2024-03-05");
        EXPECT_EQ(Time(kKorean, 0), u"오후 3:04:05");
        EXPECT_EQ(Time(kKorean, 0, nullptr, 9), u"오전 9:04:05");
        EXPECT_EQ(Time(kKorean, TIME_NOTIMEMARKER), u"3:04:05");  // the blank after a leading marker goes too
    }
    EXPECT_EQ(Date(0, u"MMMM ddd", kKorean), u"3월 화");
}

TEST(DateFormat, JapaneseFormsAndNames) {
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(Date(DATE_LONGDATE, nullptr, kJapanese), u"2024年3月5日");
        EXPECT_EQ(Date(DATE_SHORTDATE, nullptr, kJapanese), u"2024/03/05");
    }
    EXPECT_EQ(Time(kJapanese, 0), u"15:04:05");
    EXPECT_EQ(Time(kJapanese, 0, u"tt h"), u"午後 3");
    EXPECT_EQ(Date(0, u"dddd", kJapanese), u"火曜日");
}

TEST(DateFormat, EnglishFormsFlagsAndPictures) {
    EXPECT_EQ(Date(DATE_LONGDATE, nullptr, kEnglish), u"Tuesday, March 5, 2024");
    EXPECT_EQ(Date(DATE_SHORTDATE, nullptr, kEnglish), u"3/5/2024");
    EXPECT_EQ(Date(0, nullptr, kEnglish), u"3/5/2024");
    EXPECT_EQ(Time(kEnglish, 0), u"3:04:05 PM");
    EXPECT_EQ(Time(kEnglish, 0, nullptr, 0), u"12:04:05 AM");
    EXPECT_EQ(Time(kEnglish, TIME_NOSECONDS), u"3:04 PM");
    EXPECT_EQ(Time(kEnglish, TIME_NOMINUTESORSECONDS), u"3 PM");
    EXPECT_EQ(Time(kEnglish, TIME_NOTIMEMARKER), u"3:04:05");
    EXPECT_EQ(Time(kEnglish, TIME_FORCE24HOURFORMAT, u"hh:mm"), u"15:04");
    EXPECT_EQ(Time(kEnglish, 0, u"HH'h'mm t"), u"15h04 P");
    if (!zeltest::RunningUnderWine()) {  // Wine writes the era as AD, and drops a quote that ends the picture
        EXPECT_EQ(Date(0, u"ddd dd MMM yy gg", kEnglish), u"Tue 05 Mar 24 A.D.");
        EXPECT_EQ(Date(0, u"'It''s' d 'of' MMMM, y''", kEnglish), u"It's 5 of March, 24'");
    }
    EXPECT_EQ(Date(0, u"ddd dd MMM yy", kEnglish), u"Tue 05 Mar 24");
    EXPECT_EQ(Date(0, u"'It''s' d 'of' MMMM, y", kEnglish), u"It's 5 of March, 24");
#ifndef _WIN32  // the POSIX layer carries Korean, Japanese and English forms only
    EXPECT_EQ(Date(DATE_LONGDATE, nullptr, 0x040C), u"Tuesday, March 5, 2024");
#endif
    // The user's and the system's locale, by their ids and by 0.
    const std::pair<LCID, const char*> languages[] = {{kKorean, "0x412"}, {kJapanese, "0x411"}, {kEnglish, "0x409"}};
    for (const auto& [id, hex] : languages) {
        zeltest::SystemLocale locale({.lcid = hex, .systemLcid = hex});
        if (!locale.active()) continue;
        EXPECT_EQ(Date(DATE_SHORTDATE, nullptr, LOCALE_SYSTEM_DEFAULT), Date(DATE_SHORTDATE, nullptr, id));
        EXPECT_EQ(Date(DATE_LONGDATE, nullptr, LOCALE_USER_DEFAULT), Date(DATE_LONGDATE, nullptr, id));
        EXPECT_EQ(Date(DATE_LONGDATE, nullptr, 0), Date(DATE_LONGDATE, nullptr, id));
    }
}

TEST(DateFormat, SizesAndRefusals) {
    const SYSTEMTIME time = Sample();
    EXPECT_EQ(GetDateFormatW(kEnglish, DATE_SHORTDATE, &time, nullptr, nullptr, 0), 9);
    WCHAR small[8];
    SetLastError(0);
    EXPECT_EQ(GetDateFormatW(kEnglish, DATE_SHORTDATE, &time, nullptr, small, 8), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(GetDateFormatW(kEnglish, DATE_SHORTDATE | DATE_LONGDATE, &time, nullptr, small, 8), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FLAGS));

    SYSTEMTIME bad = time;
    bad.wDay = 30;
    bad.wMonth = 2;
    EXPECT_EQ(GetDateFormatW(kEnglish, 0, &bad, nullptr, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    bad = time;
    bad.wMinute = 60;
    EXPECT_EQ(GetTimeFormatW(kEnglish, 0, &bad, nullptr, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_GT(GetTimeFormatW(kEnglish, 0, nullptr, nullptr, nullptr, 0), 0);  // now
}

TEST(DateFormat, TheAnsiFormsCountBytesOfTheCodePage) {
    zeltest::SystemLocale korean({.acp = "949"});
    if (!korean.active()) GTEST_SKIP() << "needs the Korean code page";
    const SYSTEMTIME time = Sample();
    char buffer[64];
    const int length = GetDateFormatA(kKorean, DATE_LONGDATE, &time, nullptr, buffer, 64);
    WCHAR wide[64];
    ASSERT_EQ(GetDateFormatW(kKorean, DATE_LONGDATE, &time, nullptr, wide, 64), 16);
    EXPECT_EQ(length, WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr));
    EXPECT_GT(length, 16);
    EXPECT_EQ(GetDateFormatA(kKorean, 0, &time, "yyyy.MM.dd", buffer, 64), 11);
    EXPECT_STREQ(buffer, "2024.03.05");
    EXPECT_EQ(GetTimeFormatA(kKorean, 0, &time, nullptr, buffer, 3), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

}  // namespace
