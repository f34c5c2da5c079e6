// The adapters over files, directories, the run-time and modules. The suite runs in both modes, so
// every test here also runs with Korean names through code page 949; a name that didn't survive
// the 8-bit road would show up on disk under another spelling.
#include <gtest/gtest.h>
#include <zel/paths.h>

#include <cstdio>
#include <string>


#include "paths/os/dynamic_calls.h"
#include "platform/win32.h"
#include "strings/wstr.h"
#include "support/support.h"
#include "support/system.h"

namespace {

bool AnsiMode() { return ZelGetWinVersion() >= 1 && ZelGetWinVersion() <= 3; }

// The library's form of a directory on disk, with a trailing backslash.
std::u16string Dir(const zeltest::TempDir& dir) { return ZelPlatformPathFromSystem(dir.path().c_str()) + u"\\"; }

using zeltest::Exists;

TEST(Adapter, RuntimeCallsKeepKoreanNames) {
    zeltest::TempDir dir;
    const std::u16string name = Dir(dir) + u"\uD55C\uAE00.txt";
    FILE* file = u__wfopen(name.c_str(), u"wb");
    ASSERT_NE(nullptr, file);
    std::fputs("abc", file);
    std::fclose(file);
    EXPECT_EQ("abc", zeltest::ReadFile(dir.file("한글.txt")));

    struct _stat record = {};
    EXPECT_EQ(0, u__wstat(name.c_str(), &record));
    EXPECT_EQ(3, record.st_size);
    EXPECT_EQ(0, u__waccess(name.c_str(), 0));

    const std::u16string renamed = Dir(dir) + u"\uAE00.txt";
    EXPECT_EQ(0, u__wrename(name.c_str(), renamed.c_str()));
    EXPECT_TRUE(Exists(dir.file("글.txt")));
    EXPECT_EQ(-1, u__waccess(name.c_str(), 0));
    EXPECT_EQ(0, u__wunlink(renamed.c_str()));

    // Descriptors, with and without a permission.
    int fd = u__wopen(name.c_str(), _O_CREAT | _O_WRONLY | _O_BINARY, _S_IREAD | _S_IWRITE);
    ASSERT_GE(fd, 0);
    crt::_close(fd);
    fd = u__wsopen(name.c_str(), _O_RDONLY, _SH_DENYNO);
    ASSERT_GE(fd, 0);
    crt::_close(fd);
    EXPECT_EQ(0, u__wremove(name.c_str()));

    // A null path reaches the call as null, not as an empty name.
    EXPECT_EQ(nullptr, u__wfopen(nullptr, u"rb"));
}

TEST(Adapter, WorkingDirectoryAndFullPath) {
    zeltest::TempDir dir;
    const std::u16string korean = Dir(dir) + u"\uD55C\uAD6D";
    ASSERT_EQ(0, u__wmkdir(korean.c_str()));
    // The working directory belongs to the process: change it in a child only.
    EXPECT_EQ(0, zeltest::RunInChild([&] {
        if (u__wchdir(korean.c_str()) != 0) return 1;
        WCHAR buffer[MAX_PATH];
        if (u__wgetcwd(buffer, MAX_PATH) != buffer || korean != buffer) return 2;
        if (!ZelGetCurrentDirectory(MAX_PATH, buffer) || korean != buffer) return 3;
        if (u__wfullpath(buffer, u"x.txt", MAX_PATH) != buffer || korean + u"\\x.txt" != buffer) return 4;
        // Too small: ANSI mode says so with null, wide mode gives the buffer back all the same.
        WCHAR* small = u__wgetcwd(buffer, 4);
        if (small != (AnsiMode() ? nullptr : buffer)) return 5;
        if (u__wchdir(u"\\no\\such\\directory") != -1) return 6;
        return 0;
    }));
}

TEST(Adapter, SystemFileCalls) {
    zeltest::TempDir dir;
    const std::u16string sub = Dir(dir) + u"\uD55C\uAE00";
    ASSERT_TRUE(ZelCreateDirectory(sub.c_str(), nullptr));

    const std::u16string file = sub + u"\\\uAC00.txt";
    HANDLE handle =
        ZelCreateFile(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(INVALID_HANDLE_VALUE, handle);
    CloseHandle(handle);
    EXPECT_TRUE(Exists(dir.file("한글/가.txt")));

    WIN32_FIND_DATAW found = {};
    HANDLE find = ZelFindFirstFileW((sub + u"\\*.txt").c_str(), &found);
    ASSERT_NE(INVALID_HANDLE_VALUE, find);
    EXPECT_EQ(std::u16string(u"\uAC00.txt"), found.cFileName);
    EXPECT_FALSE(ZelFindNextFileW(find, &found));
    FindClose(find);

    const std::u16string moved = sub + u"\\\uB098.txt";
    EXPECT_TRUE(ZelMoveFile(file.c_str(), moved.c_str()));
    EXPECT_FALSE(ZelDeleteFile(file.c_str()));
    EXPECT_TRUE(ZelDeleteFile(moved.c_str()));
    // The 8-bit call in both modes: names of the ANSI code page only, which wide mode's isn't Korean.
    const std::u16string copy = Dir(dir) + u"copy.txt";
    zeltest::WriteFile(dir.file("a.txt"), "a");
    EXPECT_TRUE(ZelCopyFileA(copy.c_str(), (Dir(dir) + u"a.txt").c_str()));
    EXPECT_EQ("a", zeltest::ReadFile(dir.file("copy.txt")));
    WIN32_FIND_DATAA narrow = {};
    find = ZelFindFirstFile((Dir(dir) + u"c*").c_str(), &narrow);
    ASSERT_NE(INVALID_HANDLE_VALUE, find);
    EXPECT_STREQ("copy.txt", narrow.cFileName);
    FindClose(find);
    EXPECT_TRUE(ZelRemoveDirectory(sub.c_str()));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, ZelGetFileAttributes(sub.c_str()));
}

TEST(Adapter, ShortAndLongNamesCountBytesInAnsiMode) {
    zeltest::TempDir dir;
    zeltest::WriteFile(dir.file("한글.txt"), "x");
    const std::u16string name = Dir(dir) + u"\uD55C\uAE00.txt";
    WCHAR buffer[MAX_PATH] = {};
    // A volume may make short names or not; either way the count is of the name given back, in
    // bytes of the ANSI code page in ANSI mode.
    const DWORD shortCount = ZelGetShortPathName(name.c_str(), buffer, MAX_PATH);
    EXPECT_EQ(AnsiMode() ? ZelPlatformWideToAnsi(buffer).size() : wcslen(buffer), shortCount);
    // Two Korean syllables take two bytes each in code page 949.
    const std::u16string shortName = buffer;
    buffer[0] = 0;
    EXPECT_EQ(name.size() + (AnsiMode() ? 2 : 0), ZelGetLongPathName(shortName.c_str(), buffer, MAX_PATH));
    EXPECT_EQ(name, buffer);
    // A size above what ANSI mode's 260 bytes can hold still works.
    WCHAR large[1000];
    EXPECT_GT(ZelGetTempPath(1000, large), 0u);
    EXPECT_EQ(u'\\', large[wcslen(large) - 1]);

#ifndef _WIN32  // only this layer can take a system call away
    // Without the call the path comes back as it is, and a size not above its length leaves the
    // buffer alone. The binding is cached, so a child forgets it and runs without the call.
    const std::u16string missing = u"c:\\no\\such\\file.txt";
    EXPECT_EQ(0, zeltest::RunInChild([&] {
        zeltest::SetEnvironment("ZEL_HIDE_CALLS", "GetLongPathNameA,GetLongPathNameW");
        ZelDynamicCallsForget();
        WCHAR out[MAX_PATH] = {u'#', 0};
        if (ZelGetLongPathName(missing.c_str(), out, missing.size()) != missing.size() || out[0] != u'#') return 1;
        if (ZelGetLongPathName(missing.c_str(), out, MAX_PATH) != missing.size() || missing != out) return 2;
        return 0;
    }));
#endif
}

TEST(Adapter, ModuleNamesAndHandles) {
    WCHAR expected[MAX_PATH];
    ASSERT_GT(GetModuleFileNameW(nullptr, expected, MAX_PATH), 0u);
    WCHAR buffer[MAX_PATH];
    EXPECT_EQ(1u, ZelGetModuleFileName(nullptr, buffer, MAX_PATH));  // 1, not a length
    EXPECT_EQ(std::u16string(expected), buffer);
    WCHAR small[6] = {u'#', u'#', u'#', u'#', u'#', u'#'};
    EXPECT_EQ(1u, ZelGetModuleFileName(nullptr, small, 5));
    // Wine fills all five and leaves the terminator out, as Windows did before Vista.
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(std::u16string(expected).substr(0, 4), small);
    }
    EXPECT_EQ(u'#', small[5]);

    // A null name asks for the program itself.
    EXPECT_EQ(GetModuleHandleW(nullptr), ZelGetModuleHandle(nullptr));
    HMODULE shell = ZelLoadLibraryEx(u"shell32.dll", nullptr, 0);
    EXPECT_EQ(ZelGetModuleHandle(u"shell32.dll"), shell);

    UINT length = ZelGetWindowsDirectory(buffer, MAX_PATH);  // a length, not 1
    EXPECT_EQ(wcslen(buffer), length);
}

}  // namespace
