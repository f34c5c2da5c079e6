// The profile calls from the library's side: wide mode, and the 8-bit road of the 95 family.
#include <gtest/gtest.h>

#include <zel/paths.h>
#include <zel/settings.h>

#include <random>
#include <string>

#if !defined(_WIN32)
#include "platform/posix/profile/profile_file.h"
#endif
#include "platform/win32.h"
#include "support/support.h"

namespace {

using zeltest::ReadFile;
using zeltest::ScopedEnv;
using zeltest::TempDir;
using zeltest::WriteFile;

std::u16string W(const std::string& systemPath) { return ZelPlatformPathFromSystem(systemPath.c_str()); }

TEST(ProfileAdapters, WriteReadAndDeleteInWideMode) {
    if (ZelGetWinVersion() == 1) GTEST_SKIP() << "wide mode only";
    TempDir dir;
    const std::u16string file = W(dir.file("p.ini"));
    ASSERT_TRUE(ZelWritePrivateProfileString(u"Main", u"Count", u"0x20", file.c_str()));
    ASSERT_TRUE(ZelWritePrivateProfileString(u"Main", u"Name", u"Alpha", file.c_str()));
    ASSERT_TRUE(ZelWritePrivateProfileString(u"Other", u"x", u"1", file.c_str()));
    EXPECT_EQ(ZelGetPrivateProfileInt(u"main", u"count", 0, file.c_str()), 32u);
    EXPECT_EQ(ZelGetPrivateProfileInt(u"main", u"none", -1, file.c_str()), static_cast<UINT>(-1));

    WCHAR buffer[32];
    std::fill(buffer, buffer + 32, u'#');
    EXPECT_EQ(ZelGetPrivateProfileString(u"main", nullptr, nullptr, buffer, 32, file.c_str()), 11u);
    EXPECT_EQ(std::u16string(buffer, 13), std::u16string(u"Count\0Name\0\0#", 13));
    EXPECT_EQ(ZelGetPrivateProfileString(u"main", u"name", u"", buffer, 4, file.c_str()), 3u);
    EXPECT_EQ(std::u16string(buffer), u"Alp");

    ASSERT_TRUE(ZelWritePrivateProfileString(u"main", u"name", nullptr, file.c_str()));
    ASSERT_TRUE(ZelWritePrivateProfileString(u"other", nullptr, nullptr, file.c_str()));
    EXPECT_EQ(ReadFile(dir.file("p.ini")), "[Main]\r\nCount=0x20\r\n");

    // The writers pass the ANSI code page: what it lacks becomes '?'.
    ScopedEnv codePage("ZEL_ACP", "1252");
    ASSERT_TRUE(ZelWritePrivateProfileString(u"Main", u"Count", u"\uD55C", file.c_str()));
    EXPECT_EQ(ReadFile(dir.file("p.ini")), "[Main]\r\nCount=?\r\n");
}

TEST(ProfileAdapters, TheCallsWithoutFileUseWinIni) {
    TempDir dir;
    ScopedEnv config("XDG_CONFIG_HOME", dir.path());
    ASSERT_TRUE(ZelWriteProfileString(u"Desktop", u"Wallpaper", u"'none'"));
    EXPECT_EQ(ZelGetProfileInt(u"desktop", u"wallpaper", 3), 0u);
    WCHAR buffer[16] = {};
    EXPECT_EQ(ZelGetProfileString(u"desktop", u"wallpaper", nullptr, buffer, 16), 4u);
    EXPECT_EQ(std::u16string(buffer), u"none");
    EXPECT_EQ(ReadFile(dir.file("Morvalis/Windows/win.ini")), "[Desktop]\r\nWallpaper='none'\r\n");
}

// Runs in a child as on the 95 family with code page 949; the parent only starts the child.
TEST(ProfileAdaptersAnsi, ListsComeBackStringByStringCountedInBytes) {
    if (ZelGetWinVersion() != 1) {
        const auto child = zeltest::RunTestsInNewProcess("ProfileAdaptersAnsi.*",
                                                         {{"ZEL_OS_VERSION", "1.4.0"}, {"ZEL_ACP", "949"}});
        if (child.skipped) GTEST_SKIP() << child.err;
        EXPECT_EQ(0, child.status) << child.out << child.err;
        return;
    }
    TempDir dir;
    WriteFile(dir.file("k.ini"), "[\xC7\xD1]\r\n\xB0\xA1=\xC7\xD1\xB1\xDB\r\nab=2\r\n");
    const std::u16string file = W(dir.file("k.ini"));
    WCHAR buffer[16];
    std::fill(buffer, buffer + 16, u'#');
    EXPECT_EQ(ZelGetPrivateProfileString(u"\uD55C", nullptr, nullptr, buffer, 16, file.c_str()), 6u);
    EXPECT_EQ(std::u16string(buffer, 6), std::u16string(u"\uAC00\0ab\0\0#", 6));

    std::fill(buffer, buffer + 16, u'#');
    EXPECT_EQ(ZelGetPrivateProfileString(u"\uD55C", u"\uAC00", nullptr, buffer, 16, file.c_str()), 4u);
    EXPECT_EQ(std::u16string(buffer), u"\uD55C\uAE00");
    // Cut in bytes: three bytes hold one character of two.
    EXPECT_EQ(ZelGetPrivateProfileString(u"\uD55C", u"\uAC00", nullptr, buffer, 4, file.c_str()), 3u);
    EXPECT_EQ(std::u16string(buffer), u"\uD55C");

    // An empty answer gives 0 and leaves the buffer as it was.
    std::fill(buffer, buffer + 16, u'#');
    EXPECT_EQ(ZelGetPrivateProfileString(u"none", nullptr, nullptr, buffer, 16, file.c_str()), 0u);
    EXPECT_EQ(ZelGetPrivateProfileString(u"\uD55C", u"none", u"", buffer, 16, file.c_str()), 0u);
    EXPECT_EQ(buffer[0], u'#');
    EXPECT_EQ(ZelGetPrivateProfileString(u"\uD55C", u"ab", u"", buffer, 0, file.c_str()), 0u);
    EXPECT_EQ(buffer[0], u'#');

    ASSERT_TRUE(ZelWritePrivateProfileString(u"\uD55C", u"\uB098", u"\uAE00", file.c_str()));
    EXPECT_EQ(ZelGetPrivateProfileInt(u"\uD55C", u"AB", 0, file.c_str()), 2u);
    EXPECT_EQ(ReadFile(dir.file("k.ini")), "[\xC7\xD1]\r\n\xB0\xA1=\xC7\xD1\xB1\xDB\r\nab=2\r\n\xB3\xAA=\xB1\xDB\r\n");
}

// A read of one key passes the lines in front of its section by their first bytes; it must find
// what the whole file's parse finds, whatever the code page does with the bytes: double-byte
// characters with "[" as their second byte, blanks, comments, line breaks of every kind, names
// that differ only in case, and a code page (UTF-7) that doesn't read ASCII as itself.
// The POSIX layer's own profile file reader against its quick look-up; Windows has the system's.
#if !defined(_WIN32)
TEST(ProfileAdapters, ReadingOneKeyFindsWhatTheWholeFileGives) {
    const char* const words[] = {"Sec", "sEC", "Key", "kEY", "\x81[", "\xB0\xA1", "+", "v", "]", "=", ";", "[", "\r"};
    const char* const blanks[] = {"", " ", "\t", " \t"};
    const char* const ends[] = {"\n", "\r\n", "\r\r\n"};
    const std::u16string names[] = {u"Sec", u"sec", u" sec\t", u"Key", u"KEY", u"Sec]", u"\uAC00", u"", u"v"};
    std::mt19937 random(5);
    for (const char* codePage : {"949", "932", "1252", "65000"}) {
        ScopedEnv acp("ZEL_ACP", std::string(codePage));
        for (int file = 0; file < 300; ++file) {
            std::string bytes;
            auto pick = [&](const auto& list) { return std::string(list[random() % std::size(list)]); };
            for (int line = static_cast<int>(random() % 24); line > 0; --line) {
                const std::string word = pick(words) + (random() % 3 ? "" : pick(words));
                switch (random() % 4) {
                case 0: bytes += pick(blanks) + "[" + pick(blanks) + word + pick(blanks) + "]" + pick(blanks); break;
                case 1: bytes += pick(blanks) + word + pick(blanks) + "=" + pick(blanks) + pick(words); break;
                case 2: bytes += pick(blanks) + word; break;
                default: bytes += pick(blanks) + ";" + word;
                }
                if (line > 1 || random() % 2) bytes += pick(ends);
            }
            const zelprofile::ProfileFile parsed(bytes);
            for (const std::u16string& section : names) {
                for (const std::u16string& key : names) {
                    std::u16string value;
                    const int found = zelprofile::ProfileFile::QuickValue(bytes, section, key, value);
                    if (found < 0) continue;
                    const std::optional<std::u16string> expected = parsed.Value(section, key);
                    ASSERT_EQ(expected.value_or(u"-"), found == 1 ? value : u"-") << codePage << " " << file;
                }
            }
        }
    }
}
#endif

}  // namespace
