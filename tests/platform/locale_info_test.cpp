// Locale information by language id, its counting rules and its ANSI form; version information of
// files without a version block.
#include <gtest/gtest.h>

#include <algorithm>

#include <cstring>
#include <string>

#include "platform/win32.h"
#include "support/support.h"

namespace {

// The W answer as ASCII text, or "error N".
std::string Info(LCID locale, LCTYPE type) {
    WCHAR buffer[80];
    SetLastError(0);
    int count = GetLocaleInfoW(locale, type, buffer, 80);
    if (!count) return "error " + std::to_string(GetLastError());
    EXPECT_EQ(static_cast<size_t>(count), std::u16string(buffer).size() + 1);
    return std::string(buffer, buffer + count - 1);
}

TEST(LocaleInfo, AbbreviatedLanguageNames) {
    struct {
        LCID locale;
        const char* name;
    } cases[] = {
        {0x412, "KOR"}, {0x409, "ENU"}, {0x411, "JPN"}, {0x804, "CHS"}, {0x404, "CHT"}, {0x809, "ENG"},
        {0x407, "DEU"}, {0x40C, "FRA"}, {0x401, "ARA"}, {0x40D, "HEB"}, {0xC0A, "ESN"}, {0x3801, "ARU"},
        // A neutral language stands for its main country.
        {0x12, "KOR"}, {0x11, "JPN"}, {0x04, "CHS"},
        // The sort order bits of a locale are not a language.
        {0x10412, "error 87"},
        // A sublanguage the system lacks has no abbreviation, though its language is known.
        {0x812, "error 87"}, {0x7777, "error 87"},
    };
    for (const auto& c : cases) EXPECT_EQ(Info(c.locale, LOCALE_SABBREVLANGNAME), c.name) << std::hex << c.locale;

    // Every abbreviation the table gives is three capital letters.
    int known = 0;
    for (LCID id = 1; id < 0x10000; ++id) {
        std::string name = Info(id, LOCALE_SABBREVLANGNAME | LOCALE_NOUSEROVERRIDE);
        if (name.rfind("error", 0) == 0) continue;
        ++known;
        EXPECT_TRUE(name.size() == 3 && isupper(name[0]) && isupper(name[1]) && isupper(name[2])) << id;
    }
    EXPECT_GT(known, 100);
}

TEST(LocaleInfo, NamesCodePagesAndIds) {
    struct {
        LCTYPE type;
        const char *korean, *us;
    } cases[] = {
        {LOCALE_ILANGUAGE, "0412", "0409"},          {LOCALE_SENGLANGUAGE, "Korean", "English"},
        {LOCALE_SENGCOUNTRY, "Korea", "United States"}, {LOCALE_SISO639LANGNAME, "ko", "en"},
        {LOCALE_SISO3166CTRYNAME, "KR", "US"},       {LOCALE_IDEFAULTANSICODEPAGE, "949", "1252"},
        {LOCALE_IDEFAULTCODEPAGE, "949", "437"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Info(0x412, c.type), c.korean) << c.type;
        EXPECT_EQ(Info(0x409, c.type), c.us) << c.type;
    }
    EXPECT_EQ(Info(0x439, LOCALE_IDEFAULTANSICODEPAGE), "0");  // Unicode only
    EXPECT_EQ(Info(0x412, 0x1234), "error 1004");
}

TEST(LocaleInfo, DefaultLocalesFollowTheUserAndTheSystem) {
    struct {
        const char *user, *system, *userName, *systemName;
    } cases[] = {
        {"0x412", "0x412", "KOR", "KOR"}, {"0x411", "0x411", "JPN", "JPN"}, {"0x409", "0x409", "ENU", "ENU"},
        {"0x411", "0x407", "JPN", "DEU"},  // each side its own
    };
    for (const auto& c : cases) {
        zeltest::SystemLocale locale({.lcid = c.user, .systemLcid = c.system});
        if (!locale.active()) continue;
        EXPECT_EQ(Info(LOCALE_USER_DEFAULT, LOCALE_SABBREVLANGNAME), c.userName);
        EXPECT_EQ(Info(0, LOCALE_SABBREVLANGNAME), c.userName);
        EXPECT_EQ(Info(LOCALE_SYSTEM_DEFAULT, LOCALE_SABBREVLANGNAME), c.systemName);
    }
}

TEST(LocaleInfo, CountingInBothForms) {
    WCHAR wide[8];
    char narrow[8];
    // Size 0 asks for the size, terminator included; a short buffer fails.
    EXPECT_EQ(GetLocaleInfoW(0x412, LOCALE_SABBREVLANGNAME, nullptr, 0), 4);
    EXPECT_EQ(GetLocaleInfoW(0x412, LOCALE_SABBREVLANGNAME, wide, 4), 4);
    EXPECT_EQ(std::u16string(wide), u"KOR");
    EXPECT_EQ(GetLocaleInfoW(0x412, LOCALE_SABBREVLANGNAME, wide, 3), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(GetLocaleInfoW(0x412, LOCALE_SABBREVLANGNAME, nullptr, 4), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(GetLocaleInfoA(0x412, LOCALE_SABBREVLANGNAME, narrow, -1), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));

    EXPECT_EQ(GetLocaleInfoA(0x411, LOCALE_SABBREVLANGNAME, nullptr, 0), 4);
    memset(narrow, '#', sizeof narrow);
    EXPECT_EQ(GetLocaleInfoA(0x411, LOCALE_SABBREVLANGNAME, narrow, 3), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(narrow[3], '#');  // nothing beyond the size given
    EXPECT_EQ(GetLocaleInfoA(0x411, LOCALE_SABBREVLANGNAME, narrow, 4), 4);
    EXPECT_STREQ(narrow, "JPN");
    EXPECT_EQ(GetLocaleInfoA(0x812, LOCALE_SABBREVLANGNAME, narrow, 4), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));

    // The ANSI form goes through the locale's own code page, or the system's when asked, and counts
    // its bytes.
    WCHAR english[32];
    ASSERT_GT(GetLocaleInfoW(0x414, LOCALE_SENGLANGUAGE, english, 32), 0);
    EXPECT_NE(std::u16string(english).find(u'\xE5'), std::u16string::npos);  // Bokmål
    for (const auto& [codePage, flag] : {std::pair{1252u, 0u}, std::pair{UINT{CP_ACP}, LOCALE_USE_CP_ACP}}) {
        char expected[32], name[32];
        const int bytes = WideCharToMultiByte(codePage, 0, english, -1, expected, sizeof expected, nullptr, nullptr);
        EXPECT_EQ(GetLocaleInfoA(0x414, LOCALE_SENGLANGUAGE | flag, name, sizeof name), bytes) << codePage;
        EXPECT_STREQ(name, expected) << codePage;
    }
}

TEST(VersionInfo, FilesCarryNoVersionBlock) {
    char self[MAX_PATH];
    ASSERT_GT(GetModuleFileNameA(nullptr, self, MAX_PATH), 0u);
    DWORD handle = 99;
    EXPECT_EQ(GetFileVersionInfoSizeA(self, &handle), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));
    EXPECT_EQ(handle, 0u);
    char block[64];
    EXPECT_FALSE(GetFileVersionInfoA(self, 0, sizeof block, block));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND));

    std::string missing = std::string(self) + ".missing";
    EXPECT_EQ(GetFileVersionInfoSizeA(missing.c_str(), nullptr), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(GetFileVersionInfoA(missing.c_str(), 0, sizeof block, block));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));

    // A block that no call filled holds nothing to find; what the outputs then hold is not defined.
    std::fill(std::begin(block), std::end(block), 0);
    LPVOID value = nullptr;
    UINT length = 0;
    EXPECT_FALSE(VerQueryValueA(block, "\\StringFileInfo\\040904b0\\InternalName", &value, &length));
}

}  // namespace
