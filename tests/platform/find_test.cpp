// Searches by mask: the matcher's rules, the order and the end of a search, and its failures.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

namespace {

using zeltest::TempDir;

std::u16string W(const std::string& systemPath) { return ZelPlatformPathFromSystem(systemPath.c_str()); }

// Every name a search finds, in its order.
std::vector<std::u16string> FindAll(const std::u16string& mask) {
    std::vector<std::u16string> names;
    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW(mask.c_str(), &data);
    if (find == INVALID_HANDLE_VALUE) return names;
    do names.push_back(data.cFileName);
    while (FindNextFileW(find, &data));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
    EXPECT_TRUE(FindClose(find));
    return names;
}

#ifndef _WIN32  // the matcher of this layer's searches; Windows keeps its own inside the call
TEST(FilesFind, MaskRules) {
    struct {
        const char16_t* mask;
        const char16_t* name;
        bool matches;
    } cases[] = {
        {u"*", u"anything.txt", true},      {u"*.*", u"noext", true},          {u"*.*", u".", true},
        {u"*.", u"noext", true},            {u"*.", u"a.txt", false},          {u"*.TXT", u"read.me.txt", true},
        {u"a?c", u"ABC", true},             {u"a?c", u"ac", false},            {u"a*b*c", u"axxbyyc", true},
        {u"a*b*c", u"axxbyy", false},       {u"name.*", u"name", true},        {u"*.txt", u"a.txtx", false},
        {u"\u00e9*", u"\u00c9t\u00e9", false},  // only a to z are matched without regard to case
        {u"", u"x", false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ZelPlatformMaskMatches(c.mask, c.name), c.matches)
            << std::string(c.mask, c.mask + std::char_traits<char16_t>::length(c.mask));
}
#endif

TEST(FilesFind, SearchesListDotsFirstAndEndCleanly) {
    TempDir dir;
    for (const char* name : {"b.txt", "A.TXT", "c.dat"}) zeltest::WriteFile(dir.file(name), "12");
    std::u16string base = W(dir.path());
    EXPECT_EQ(FindAll(base + u"\\*"), (std::vector<std::u16string>{u".", u"..", u"A.TXT", u"b.txt", u"c.dat"}));
    EXPECT_EQ(FindAll(base + u"\\*.txt"), (std::vector<std::u16string>{u"A.TXT", u"b.txt"}));

    WIN32_FIND_DATAW data;
    HANDLE find = FindFirstFileW((base + u"\\c.dat").c_str(), &data);
    ASSERT_NE(find, INVALID_HANDLE_VALUE);
    EXPECT_EQ(data.nFileSizeLow, 2u);
    EXPECT_EQ(data.dwFileAttributes, DWORD{FILE_ATTRIBUTE_ARCHIVE});
    EXPECT_EQ(data.cAlternateFileName[0], u'\0');
    EXPECT_FALSE(FindNextFileW(find, &data));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_NO_MORE_FILES});
    EXPECT_TRUE(FindClose(find));
    // Wine closes a closed search again without a word.
    if (!zeltest::RunningUnderWine()) {
        EXPECT_FALSE(FindClose(find));
        EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
    }
    EXPECT_FALSE(FindNextFileW(find, &data));

    SetLastError(0);
    EXPECT_EQ(FindFirstFileW((base + u"\\*.none").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(FindFirstFileW((base + u"\\none\\*").c_str(), &data), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});

    // A root has no "." and "..".
    std::vector<std::u16string> root = FindAll(u"\\*");
    EXPECT_FALSE(root.empty());
    EXPECT_EQ(std::count(root.begin(), root.end(), u".") + std::count(root.begin(), root.end(), u".."), 0);
}

TEST(FilesFind, AnsiNamesAndTheRuntimeSearch) {
    zeltest::SystemLocale korean({.acp = "949"});
    if (!korean.active()) GTEST_SKIP() << "checked in the run with the Korean code page";
    TempDir dir;
    const std::string base = ZelPlatformWideToAnsi(W(dir.path()).c_str());
    zeltest::WriteFile(dir.file("\xed\x95\x9c.txt"), "abc");  // U+D55C
    ASSERT_TRUE(zeltest::SetFileTimes(dir.file("\xed\x95\x9c.txt"), 1000000000, 1200000000));
    WIN32_FIND_DATAA data;
    HANDLE find = FindFirstFileA((base + "\\*.txt").c_str(), &data);
    ASSERT_NE(find, INVALID_HANDLE_VALUE);
    EXPECT_STREQ(data.cFileName, "\xc7\xd1.txt");
    FindClose(find);

    struct _finddata_t record, last;
    intptr_t handle = crt::_findfirst((base + "\\*").c_str(), &record);
    ASSERT_NE(handle, -1);
    std::vector<std::string> names;
    do {
        names.push_back(record.name);
        last = record;  // the record of a call that found nothing is no one's
    } while (crt::_findnext(handle, &record) == 0);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(names, (std::vector<std::string>{".", "..", "\xc7\xd1.txt"}));
    record = last;
    EXPECT_EQ(record.size, 3u);
    EXPECT_EQ(record.attrib, unsigned{_A_ARCH});
    EXPECT_EQ(record.time_write, 1200000000);
    EXPECT_EQ(record.time_access, 1000000000);
    EXPECT_EQ(crt::_findclose(handle), 0);
    EXPECT_EQ(crt::_findfirst((base + "\\*.none").c_str(), &record), -1);
    EXPECT_EQ(errno, ENOENT);
}

}  // namespace
