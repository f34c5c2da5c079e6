// The profile calls on real 8-bit INI files in a temporary directory.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#if !defined(_WIN32)
#include <dirent.h>
#endif

#include <cerrno>
#include <string>

#if !defined(_WIN32)
#include "platform/posix/profile/profile_file.h"
#endif
#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

namespace {

using zeltest::ReadFile;
using zeltest::ScopedEnv;
using zeltest::SystemLocale;
using zeltest::TempDir;
using zeltest::WriteFile;

std::u16string W(const std::string& systemPath) { return ZelPlatformPathFromSystem(systemPath.c_str()); }

const char kSample[] =
    "; settings of the sample\r\n"
    "top=before any section\r\n"
    "[Window]\r\n"
    "  Width = 640  \r\n"
    "Title=\"  quoted  \"\r\n"
    "Single='x'\r\n"
    "Half=\"open\r\n"
    "Flag\r\n"
    "\r\n"
    "; colours follow\r\n"
    "[Colours]\r\n"
    "fore=black\r\n";

std::u16string Get(const std::u16string& file, const char16_t* section, const char16_t* key,
                   const char16_t* defaultValue = nullptr, DWORD size = 256, DWORD* count = nullptr) {
    std::u16string buffer(size, u'#');
    const DWORD n = GetPrivateProfileStringW(section, key, defaultValue, buffer.data(), size, file.c_str());
    if (count) *count = n;
    return buffer;
}

TEST(ProfileFiles, ValuesMatchWithoutCaseAndLoseBlanksAndQuotes) {
    TempDir dir;
    WriteFile(dir.file("a.ini"), kSample);
    const std::u16string file = W(dir.file("a.ini"));
    DWORD count = 0;
    EXPECT_EQ(Get(file, u"WINDOW", u"width", nullptr, 256, &count).c_str(), std::u16string(u"640"));
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(Get(file, u" window ", u"title").c_str(), std::u16string(u"  quoted  "));
    EXPECT_EQ(Get(file, u"window", u"single").c_str(), std::u16string(u"x"));
    EXPECT_EQ(Get(file, u"window", u"half").c_str(), std::u16string(u"\"open"));
    // A line without "=" is no key, and comments are none either.
    EXPECT_EQ(Get(file, u"window", u"flag", u"dflt", 256, &count).c_str(), std::u16string(u"dflt"));
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(Get(file, u"colours", u"; colours follow", u"none").c_str(), std::u16string(u"none"));
    // Entries before the first section belong to none (Wine 8 files them under the empty section).
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(Get(file, u"", u"top", u"none").c_str(), std::u16string(u"none"));
    }

    // The default loses its trailing spaces, not its tabs nor its quotes; null is "". The last
    // error tells that the key is missing (Wine 8 leaves it as it was).
    SetLastError(0);
    EXPECT_EQ(Get(file, u"window", u"missing", u" \"d\" \t ", 256, &count).c_str(), std::u16string(u" \"d\" \t"));
    EXPECT_EQ(count, 6u);
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    }
    EXPECT_EQ(Get(file, u"nowhere", u"x", nullptr, 256, &count).c_str(), std::u16string(u""));
    EXPECT_EQ(count, 0u);

    Get(W(dir.file("none.ini")), u"a", u"b", u"d", 256, &count);
    EXPECT_EQ(count, 1u);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST(ProfileFiles, ListsAndTheirCutsCountAsTheSystemDoes) {
    TempDir dir;
    WriteFile(dir.file("a.ini"), kSample + std::string("[window]\nextra=1\n"));
    const std::u16string file = W(dir.file("a.ini"));
    DWORD count = 0;
    // A section that appears twice is listed twice; its keys are those of the first.
    std::u16string list = Get(file, nullptr, nullptr, u"ignored", 256, &count);
    EXPECT_EQ(list.substr(0, 24), std::u16string(u"Window\0Colours\0window\0\0", 23) + u"#");
    EXPECT_EQ(count, 22u);
    list = Get(file, u"window", nullptr, nullptr, 256, &count);
    EXPECT_EQ(list.substr(0, 26), std::u16string(u"Width\0Title\0Single\0Half\0\0", 25) + u"#");
    EXPECT_EQ(count, 24u);

    // Cut: the last name is cut and two zeros end the list at size - 2.
    list = Get(file, nullptr, nullptr, nullptr, 10, &count);
    EXPECT_EQ(list, std::u16string(u"Window\0C\0\0", 10));
    EXPECT_EQ(count, 8u);
    list = Get(file, nullptr, nullptr, nullptr, 1, &count);
    EXPECT_EQ(list, std::u16string(u"\0", 1));
    EXPECT_EQ(count, 0u);
    // A value is cut to size - 1.
    list = Get(file, u"window", u"width", nullptr, 3, &count);
    EXPECT_EQ(list, std::u16string(u"64\0", 3));
    EXPECT_EQ(count, 2u);
    // Size 0 writes nothing.
    EXPECT_EQ(Get(file, u"window", u"width", nullptr, 0, &count), u"");
    EXPECT_EQ(count, 0u);
    std::u16string untouched(4, u'#');
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, nullptr, untouched.data(), 0, file.c_str()), 0u);
    EXPECT_EQ(untouched, u"####");

    // Nothing to list: two zeros and a count of 0, also for a missing section.
    EXPECT_EQ(Get(file, u"nothing", nullptr, nullptr, 4, &count), std::u16string(u"\0\0##", 4));
    EXPECT_EQ(count, 0u);
}

TEST(ProfileFiles, IntegersAreReadAsFarAsTheyGo) {
    TempDir dir;
    WriteFile(dir.file("n.ini"),
              "[n]\nplain=42\nneg=-7\nplus=+8\nhex=0x1F\nbin=0b101\noct=0o17\nhalf=55zz\nword=abc\nempty=\n"
              "quoted=\"12\"\nhuge=4294967297\nnodigit=0x\n");
    const std::u16string file = W(dir.file("n.ini"));
    auto Int = [&](const char16_t* key) { return GetPrivateProfileIntW(u"N", key, 99, file.c_str()); };
    EXPECT_EQ(Int(u"plain"), 42u);
    EXPECT_EQ(Int(u"neg"), static_cast<UINT>(-7));
    EXPECT_EQ(Int(u"plus"), 8u);
    EXPECT_EQ(Int(u"hex"), 31u);
    EXPECT_EQ(Int(u"bin"), 5u);
    EXPECT_EQ(Int(u"oct"), 15u);
    EXPECT_EQ(Int(u"half"), 55u);
    EXPECT_EQ(Int(u"word"), 0u);
    EXPECT_EQ(Int(u"nodigit"), 0u);
    EXPECT_EQ(Int(u"quoted"), 12u);
    EXPECT_EQ(Int(u"huge"), 1u);
    EXPECT_EQ(Int(u"empty"), 99u);
    EXPECT_EQ(Int(u"missing"), 99u);
    // A null key reads the list of keys, whose first name is no number; an empty list gives the default.
    EXPECT_EQ(GetPrivateProfileIntW(u"N", nullptr, -3, file.c_str()), 0u);
    EXPECT_EQ(GetPrivateProfileIntW(u"none", nullptr, -3, file.c_str()), static_cast<UINT>(-3));
    EXPECT_EQ(GetPrivateProfileIntA("n", "hex", 0, ZelPlatformWideToAnsi(file.c_str()).c_str()), 31u);
}

// Wine 8 writes the whole file anew from what it parsed, losing blank lines and the file's line
// breaks, so the bytes written are compared on other systems only.
TEST(ProfileFiles, WritesKeepTheRestOfTheFile) {
    TempDir dir;
    WriteFile(dir.file("a.ini"), kSample);
#if !defined(_WIN32)
    chmod(dir.file("a.ini").c_str(), 0640);
#endif
    const std::u16string file = W(dir.file("a.ini"));
    ASSERT_TRUE(WritePrivateProfileStringW(u"window", u"WIDTH", u"800", file.c_str()));
    ASSERT_TRUE(WritePrivateProfileStringW(u"Window", u"Height", u"600", file.c_str()));
    ASSERT_TRUE(WritePrivateProfileStringW(u"Colours", u"fore", nullptr, file.c_str()));
    ASSERT_TRUE(WritePrivateProfileStringW(u"New", u"k", u"v", file.c_str()));
    ASSERT_TRUE(WritePrivateProfileStringW(u"nothing", u"k", nullptr, file.c_str()));
    EXPECT_EQ(Get(file, u"window", u"height").c_str(), std::u16string(u"600"));
    EXPECT_EQ(Get(file, u"colours", u"fore", u"gone").c_str(), std::u16string(u"gone"));
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(ReadFile(dir.file("a.ini")),
                  "; settings of the sample\r\n"
                  "top=before any section\r\n"
                  "[Window]\r\n"
                  "Width=800\r\n"
                  "Title=\"  quoted  \"\r\n"
                  "Single='x'\r\n"
                  "Half=\"open\r\n"
                  "Height=600\r\n"
                  "Flag\r\n"
                  "\r\n"
                  "; colours follow\r\n"
                  "[Colours]\r\n"
                  "\r\n"
                  "[New]\r\n"
                  "k=v\r\n");
    }
#if !defined(_WIN32)  // the replacing file keeps the POSIX permissions of the old one
    struct stat status;
    ASSERT_EQ(stat(dir.file("a.ini").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
#endif

    // A null key takes the first section of the name with its comments; line breaks of the file
    // are kept.
    WriteFile(dir.file("b.ini"), "[a]\nx=1\n; about b\n[b]\ny=2\n[A]\nz=3\n");
    const std::u16string other = W(dir.file("b.ini"));
    ASSERT_TRUE(WritePrivateProfileStringW(u"a", nullptr, nullptr, other.c_str()));
    EXPECT_EQ(Get(other, u"a", u"x", u"gone").c_str(), std::u16string(u"gone"));
    EXPECT_EQ(Get(other, u"a", u"z").c_str(), std::u16string(u"3"));
    if (!zeltest::RunningUnderWine()) { EXPECT_EQ(ReadFile(dir.file("b.ini")), "[b]\ny=2\n[A]\nz=3\n"); }

    // Names and values pass the ANSI code page.
    SystemLocale korean({.acp = "949"});
    if (!korean.active()) return;
    ASSERT_TRUE(WritePrivateProfileStringA("\xC7\xD1", "k", "\xB1\xDB", ZelPlatformWideToAnsi(other.c_str()).c_str()));
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(ReadFile(dir.file("b.ini")), "[b]\ny=2\n[A]\nz=3\n\n[\xC7\xD1]\nk=\xB1\xDB\n");
    }
    EXPECT_EQ(Get(other, u"\uD55C", u"K").c_str(), std::u16string(u"\uAE00"));
}

TEST(ProfileFiles, BadWritesLeaveTheFileAsItWas) {
    TempDir dir;
    const std::u16string missingDirectory = W(dir.file("no/such.ini"));
    SetLastError(0);
    EXPECT_FALSE(WritePrivateProfileStringW(u"s", u"k", u"v", missingDirectory.c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});

    WriteFile(dir.file("a.ini"), "[s]\nk=old\n");
    const std::u16string file = W(dir.file("a.ini"));
    EXPECT_FALSE(WritePrivateProfileStringW(nullptr, u"k", u"v", file.c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
#if !defined(_WIN32)
    // What a line break or a key of blanks does to the file, Windows leaves open; here they fail.
    EXPECT_FALSE(WritePrivateProfileStringW(u"s", u"k", u"two\nlines", file.c_str()));
    EXPECT_FALSE(WritePrivateProfileStringW(u"s", u"  ", u"v", file.c_str()));
#endif
    // All null but the file flushes the cache (Wine 8 answers FALSE).
    if (!zeltest::RunningUnderWine()) {
        EXPECT_TRUE(WritePrivateProfileStringW(nullptr, nullptr, nullptr, file.c_str()));
    }
    EXPECT_EQ(ReadFile(dir.file("a.ini")), "[s]\nk=old\n");

    // A full disk, through the POSIX layer's write hook; Windows writes with the system's calls.
#if !defined(_WIN32)
    const auto saved = zelprofile::g_writeFile;
    zelprofile::g_writeFile = [](int, const void*, size_t) -> ssize_t {
        errno = ENOSPC;
        return -1;
    };
    EXPECT_FALSE(WritePrivateProfileStringW(u"s", u"k", u"new", file.c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_DISK_FULL});
    zelprofile::g_writeFile = saved;
    EXPECT_EQ(ReadFile(dir.file("a.ini")), "[s]\nk=old\n");
    int entries = 0;
    if (DIR* listing = opendir(dir.path().c_str())) {
        while (dirent* entry = readdir(listing)) entries += entry->d_name[0] != '.';
        closedir(listing);
    }
    EXPECT_EQ(entries, 1);  // no temporary file left behind
#endif
}

// The Windows directory is the system's own (here a fresh one), which other tests share: the
// section and file names are this process's.
TEST(ProfileFiles, NamesWithoutDirectoryLieInTheWindowsDirectory) {
    TempDir dir;
    ScopedEnv config("XDG_CONFIG_HOME", dir.path());
    WCHAR directory[MAX_PATH];
    ASSERT_GT(GetWindowsDirectoryW(directory, MAX_PATH), 0u);
    const std::string windows = ZelPlatformPathToSystem(directory);
    const std::string own = "zel" + std::to_string(getpid());
    const std::string app = own + ".ini", winIni = windows + "/win.ini";
    const std::u16string section(own.begin(), own.end());
    EXPECT_EQ(GetProfileIntW(section.c_str(), u"k", 5), 5u);

    ASSERT_TRUE(WriteProfileStringW(section.c_str(), u"k", u"7"));
    ASSERT_TRUE(WritePrivateProfileStringA(own.c_str(), "k", "own", app.c_str()));
    EXPECT_NE(ReadFile(winIni).find("[" + own + "]\r\nk=7\r\n"), std::string::npos);
    EXPECT_EQ(ReadFile(windows + "/" + app), "[" + own + "]\r\nk=own\r\n");
    EXPECT_EQ(DeleteFileA((ZelPlatformWideToAnsi(directory) + "\\" + app).c_str()), TRUE);
    EXPECT_EQ(GetProfileIntA(own.c_str(), "K", 0), 7u);
    char buffer[8] = {};
    EXPECT_EQ(GetProfileStringA(own.c_str(), "k", "", buffer, sizeof buffer), 1u);
    EXPECT_STREQ(buffer, "7");
    EXPECT_EQ(GetPrivateProfileStringA(own.c_str(), "k", "", buffer, sizeof buffer, nullptr), 1u);  // null is win.ini
    ASSERT_TRUE(WriteProfileStringA(own.c_str(), nullptr, nullptr));
    EXPECT_EQ(ReadFile(winIni).find("[" + own + "]"), std::string::npos);
}

TEST(ProfileFiles, AnsiCallsCountAndCutInBytes) {
    SystemLocale korean({.acp = "949"});
    if (!korean.active()) GTEST_SKIP() << "needs code page 949";
    TempDir dir;
    WriteFile(dir.file("k.ini"), "[\xC7\xD1]\n\xB0\xA1=\xC7\xD1\xB1\xDB\n\xB3\xAA=2\n");
    const std::string file = dir.file("k.ini");
    char buffer[16];
    std::fill(buffer, buffer + 16, '#');
    EXPECT_EQ(GetPrivateProfileStringA("\xC7\xD1", "\xB0\xA1", nullptr, buffer, 16, file.c_str()), 4u);
    EXPECT_STREQ(buffer, "\xC7\xD1\xB1\xDB");
    // No character is cut in two: size 4 leaves room for three bytes, and one character fits
    // (Wine 8 keeps the lead byte of the second).
    std::fill(buffer, buffer + 16, '#');
    EXPECT_EQ(GetPrivateProfileStringA("\xC7\xD1", "\xB0\xA1", nullptr, buffer, 4, file.c_str()), 3u);
    if (!zeltest::RunningUnderWine()) { EXPECT_EQ(std::string(buffer, 5), std::string("\xC7\xD1\0\0#", 5)); }
    std::fill(buffer, buffer + 16, '#');
    EXPECT_EQ(GetPrivateProfileStringA("\xC7\xD1", nullptr, nullptr, buffer, 16, file.c_str()), 6u);
    EXPECT_EQ(std::string(buffer, 8), std::string("\xB0\xA1\0\xB3\xAA\0\0#", 8));
}

}  // namespace
