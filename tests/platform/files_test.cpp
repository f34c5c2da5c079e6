// File handles, directories, attributes, temporary names and the path forms of the file calls,
// on real files in a temporary directory.
#include <gtest/gtest.h>

#include <string>

#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

namespace {

using zeltest::ScopedEnv;
using zeltest::TempDir;

// The library's Windows form of a system path.
std::u16string W(const std::string& systemPath) { return ZelPlatformPathFromSystem(systemPath.c_str()); }

HANDLE Open(const std::string& path, DWORD creation, DWORD access = GENERIC_READ | GENERIC_WRITE, DWORD flags = 0) {
    return CreateFileW(W(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, creation, flags, nullptr);
}

#define EXPECT_ERROR(call, failure, error)        \
    do {                                          \
        SetLastError(0);                          \
        EXPECT_EQ((call), (failure));             \
        EXPECT_EQ(GetLastError(), DWORD{error});  \
    } while (0)

TEST(Files, CreationDispositionsAndTheirLastErrors) {
    TempDir dir;
    std::string file = dir.file("a.txt");
    HANDLE h = Open(file, CREATE_NEW);
    ASSERT_NE(h, INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    EXPECT_TRUE(WriteFile(h, "hello", 5, nullptr, nullptr));
    EXPECT_TRUE(CloseHandle(h));

    EXPECT_ERROR(Open(file, CREATE_NEW), INVALID_HANDLE_VALUE, ERROR_FILE_EXISTS);
    EXPECT_ERROR(Open(dir.file("none"), OPEN_EXISTING), INVALID_HANDLE_VALUE, ERROR_FILE_NOT_FOUND);
    EXPECT_ERROR(Open(dir.file("none/x"), CREATE_ALWAYS), INVALID_HANDLE_VALUE, ERROR_PATH_NOT_FOUND);
    EXPECT_ERROR(Open(file, 0), INVALID_HANDLE_VALUE, ERROR_INVALID_PARAMETER);

    // OPEN_ALWAYS keeps what is there, CREATE_ALWAYS empties it; both say the file existed.
    h = Open(file, OPEN_ALWAYS);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_EQ(GetFileSize(h, nullptr), 5u);
    CloseHandle(h);
    h = Open(file, CREATE_ALWAYS);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_EQ(GetFileSize(h, nullptr), 0u);
    CloseHandle(h);
    h = Open(dir.file("b"), OPEN_ALWAYS);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SUCCESS});
    CloseHandle(h);

    // A directory opens only with backup semantics, and a handle asked to go goes at its close.
    EXPECT_ERROR(Open(dir.path(), OPEN_EXISTING, GENERIC_READ), INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED);
    h = Open(dir.path(), OPEN_EXISTING, GENERIC_READ, FILE_FLAG_BACKUP_SEMANTICS);
    EXPECT_NE(h, INVALID_HANDLE_VALUE);
    CloseHandle(h);
    h = Open(dir.file("gone"), CREATE_NEW, GENERIC_WRITE, FILE_FLAG_DELETE_ON_CLOSE);
    EXPECT_TRUE(zeltest::Exists(dir.file("gone")));
    CloseHandle(h);
    EXPECT_FALSE(zeltest::Exists(dir.file("gone")));
}

TEST(Files, ReadWriteSeekAndHandleChecks) {
    TempDir dir;
    HANDLE h = Open(dir.file("data"), CREATE_NEW);
    DWORD done = 0;
    ASSERT_TRUE(WriteFile(h, "0123456789", 10, &done, nullptr));
    EXPECT_EQ(done, 10u);
    EXPECT_EQ(SetFilePointer(h, -4, nullptr, FILE_END), 6u);
    char bytes[16] = {};
    EXPECT_TRUE(ReadFile(h, bytes, sizeof bytes, &done, nullptr));
    EXPECT_EQ(std::string(bytes, done), "6789");
    EXPECT_TRUE(ReadFile(h, bytes, sizeof bytes, &done, nullptr));  // the end is no failure
    EXPECT_EQ(done, 0u);
    EXPECT_EQ(SetFilePointer(h, -3, nullptr, FILE_CURRENT), 7u);
    EXPECT_ERROR(SetFilePointer(h, -8, nullptr, FILE_CURRENT), INVALID_SET_FILE_POINTER, ERROR_NEGATIVE_SEEK);

    // A position past 4 GiB with the high word, and the size given in two words.
    LONG high = 1;
    EXPECT_EQ(SetFilePointer(h, 2, &high, FILE_BEGIN), 2u);
    EXPECT_EQ(high, 1);
    EXPECT_TRUE(WriteFile(h, "x", 1, &done, nullptr));
    DWORD sizeHigh = 0;
    EXPECT_EQ(GetFileSize(h, &sizeHigh), 3u);
    EXPECT_EQ(sizeHigh, 1u);
    EXPECT_TRUE(CloseHandle(h));

    // Closed and made-up handles fail cleanly; reading a handle opened for writing is denied.
    for (HANDLE bad : {h, reinterpret_cast<HANDLE>(0x1234), HANDLE{}}) {
        EXPECT_ERROR(ReadFile(bad, bytes, 1, &done, nullptr), FALSE, ERROR_INVALID_HANDLE);
        EXPECT_ERROR(WriteFile(bad, bytes, 1, &done, nullptr), FALSE, ERROR_INVALID_HANDLE);
        EXPECT_ERROR(GetFileSize(bad, nullptr), INVALID_FILE_SIZE, ERROR_INVALID_HANDLE);
        EXPECT_ERROR(LockFile(bad, 0, 0, 1, 0), FALSE, ERROR_INVALID_HANDLE);
        EXPECT_ERROR(CloseHandle(bad), FALSE, ERROR_INVALID_HANDLE);
    }
    h = Open(dir.file("data"), OPEN_EXISTING, GENERIC_WRITE);
    EXPECT_ERROR(ReadFile(h, bytes, 1, &done, nullptr), FALSE, ERROR_ACCESS_DENIED);
    CloseHandle(h);
}

TEST(Files, LockedRangesMeetOtherHandlesAndProcesses) {
    TempDir dir;
    std::string file = dir.file("locked");
    HANDLE h = Open(file, CREATE_NEW);
    ASSERT_TRUE(LockFile(h, 100, 0, 10, 0));
    HANDLE other = Open(file, OPEN_EXISTING);
    EXPECT_ERROR(LockFile(other, 105, 0, 1, 0), FALSE, ERROR_LOCK_VIOLATION);
    EXPECT_TRUE(LockFile(other, 110, 0, 5, 0));  // next to it, not over it
    CloseHandle(other);

    auto tryInChild = [&] {
        return zeltest::RunInChild([&] {
            HANDLE mine = Open(file, OPEN_EXISTING);
            if (LockFile(mine, 109, 0, 1, 0)) return 0;
            return GetLastError() == ERROR_LOCK_VIOLATION ? 33 : 1;
        });
    };
    EXPECT_EQ(tryInChild(), 33);
    EXPECT_TRUE(UnlockFile(h, 100, 0, 10, 0));
    EXPECT_EQ(tryInChild(), 0);
    CloseHandle(h);
}

TEST(Files, BinaryTypesByHeader) {
    TempDir dir;
    std::string mz = "MZ" + std::string(62, '\0');
    mz[0x3C] = 0x40;
    std::string pe32 = mz + std::string("PE\0\0\x4c\x01", 6), pe64 = mz + std::string("PE\0\0\x64\x86", 6);
    struct {
        const char* name;
        std::string bytes;
        BOOL result;
        DWORD type;
    } cases[] = {
        {"dos.exe", mz, TRUE, SCS_DOS_BINARY},
        {"text", "plain words", FALSE, 99},
        {"empty", "", FALSE, 99},
#ifndef _WIN32  // a header alone decides here; Windows takes an image this short for a DOS program
        {"win32.exe", pe32, TRUE, SCS_32BIT_BINARY},
        {"win64.exe", pe64, TRUE, SCS_64BIT_BINARY},
        {"elf32", std::string("\x7f" "ELF\x01", 5), TRUE, SCS_32BIT_BINARY},
#endif
    };
    for (const auto& c : cases) {
        zeltest::WriteFile(dir.file(c.name), c.bytes);
        DWORD type = 99;
        SetLastError(0);
        EXPECT_EQ(GetBinaryTypeW(W(dir.file(c.name)).c_str(), &type), c.result) << c.name;
        EXPECT_EQ(type, c.type) << c.name;
        // Wine leaves the last error alone.
        if (!c.result && !zeltest::RunningUnderWine()) {
            EXPECT_EQ(GetLastError(), DWORD{ERROR_BAD_EXE_FORMAT}) << c.name;
        }
    }
    // This program itself.
    DWORD type = 99;
    EXPECT_TRUE(GetBinaryTypeW(W(zeltest::OwnProgramPath()).c_str(), &type));
    EXPECT_EQ(type, sizeof(void*) == 8 ? DWORD{SCS_64BIT_BINARY} : DWORD{SCS_32BIT_BINARY});
    EXPECT_ERROR(GetBinaryTypeW(W(dir.file("none")).c_str(), &type), FALSE, ERROR_FILE_NOT_FOUND);
}

TEST(Files, DirectoriesMovesCopiesAndTheirErrors) {
    TempDir dir;
    std::u16string sub = W(dir.file("sub")), file = W(dir.file("sub/f")), other = W(dir.file("g"));
    EXPECT_TRUE(CreateDirectoryW(sub.c_str(), nullptr));
    EXPECT_ERROR(CreateDirectoryW(sub.c_str(), nullptr), FALSE, ERROR_ALREADY_EXISTS);
    EXPECT_ERROR(CreateDirectoryW(W(dir.file("no/sub")).c_str(), nullptr), FALSE, ERROR_PATH_NOT_FOUND);
    zeltest::WriteFile(dir.file("sub/f"), "content");
    zeltest::WriteFile(dir.file("g"), "other");

    EXPECT_ERROR(RemoveDirectoryW(sub.c_str()), FALSE, ERROR_DIR_NOT_EMPTY);
    EXPECT_ERROR(RemoveDirectoryW(other.c_str()), FALSE, ERROR_DIRECTORY);
    EXPECT_ERROR(DeleteFileW(sub.c_str()), FALSE, ERROR_ACCESS_DENIED);
    EXPECT_ERROR(DeleteFileW(W(dir.file("sub/none")).c_str()), FALSE, ERROR_FILE_NOT_FOUND);
    EXPECT_ERROR(MoveFileW(file.c_str(), other.c_str()), FALSE, ERROR_ALREADY_EXISTS);
    EXPECT_ERROR(CopyFileW(file.c_str(), other.c_str(), TRUE), FALSE, ERROR_FILE_EXISTS);
    EXPECT_ERROR(CopyFileW(file.c_str(), file.c_str(), FALSE), FALSE, ERROR_SHARING_VIOLATION);
    EXPECT_EQ(zeltest::ReadFile(dir.file("sub/f")), "content");

    EXPECT_TRUE(CopyFileW(file.c_str(), other.c_str(), FALSE));
    EXPECT_EQ(zeltest::ReadFile(dir.file("g")), "content");
    EXPECT_TRUE(DeleteFileW(other.c_str()));
    EXPECT_TRUE(MoveFileW(file.c_str(), other.c_str()));
    EXPECT_EQ(zeltest::ReadFile(dir.file("g")), "content");
    EXPECT_TRUE(RemoveDirectoryW(sub.c_str()));
}

TEST(Files, AttributesFollowTheOwnersWriteBitAndTheDot) {
    TempDir dir;
    zeltest::WriteFile(dir.file("plain"), "12345");
    EXPECT_EQ(GetFileAttributesW(W(dir.path()).c_str()), DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(GetFileAttributesW(W(dir.file("plain")).c_str()), DWORD{FILE_ATTRIBUTE_ARCHIVE});
#ifndef _WIN32  // a file system without a hidden bit: a leading dot hides a name, and nothing else does
    zeltest::WriteFile(dir.file(".hidden"), "");
    EXPECT_EQ(GetFileAttributesW(W(dir.file(".hidden")).c_str()), DWORD{FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN});
    EXPECT_TRUE(SetFileAttributesW(W(dir.file("plain")).c_str(), FILE_ATTRIBUTE_HIDDEN));
    EXPECT_EQ(GetFileAttributesW(W(dir.file("plain")).c_str()), DWORD{FILE_ATTRIBUTE_ARCHIVE});
#endif
    EXPECT_ERROR(GetFileAttributesW(W(dir.file("none")).c_str()), INVALID_FILE_ATTRIBUTES, ERROR_FILE_NOT_FOUND);
    EXPECT_ERROR(GetFileAttributesW(W(dir.file("none/x")).c_str()), INVALID_FILE_ATTRIBUTES, ERROR_PATH_NOT_FOUND);

    std::u16string plain = W(dir.file("plain"));
    EXPECT_TRUE(SetFileAttributesW(plain.c_str(), FILE_ATTRIBUTE_READONLY));
    WIN32_FILE_ATTRIBUTE_DATA data{};
    ASSERT_TRUE(GetFileAttributesExW(plain.c_str(), GetFileExInfoStandard, &data));
    EXPECT_EQ(data.dwFileAttributes, DWORD{FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY});
    EXPECT_EQ(data.nFileSizeLow, 5u);
    // Write times come in 100-ns units since 1601.
    ASSERT_TRUE(zeltest::SetFileTimes(dir.file("plain"), 1000000000, 1000000000, 5000));
    ASSERT_TRUE(GetFileAttributesExW(plain.c_str(), GetFileExInfoStandard, &data));
    EXPECT_EQ((uint64_t{data.ftLastWriteTime.dwHighDateTime} << 32) | data.ftLastWriteTime.dwLowDateTime,
              126444736000000050u);
    EXPECT_EQ((uint64_t{data.ftLastAccessTime.dwHighDateTime} << 32) | data.ftLastAccessTime.dwLowDateTime,
              126444736000000000u);
    EXPECT_ERROR(DeleteFileW(plain.c_str()), FALSE, ERROR_ACCESS_DENIED);
    // Wine leaves a read-only file writable to a process with the rights of the system's superuser.
    if (!zeltest::RunningUnderWine()) {
        EXPECT_ERROR(Open(dir.file("plain"), OPEN_EXISTING, GENERIC_WRITE), INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED);
    }
    EXPECT_TRUE(SetFileAttributesW(plain.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(DeleteFileW(plain.c_str()));
    EXPECT_ERROR(GetFileAttributesExW(plain.c_str(), GetFileExMaxInfoLevel, &data), FALSE, ERROR_INVALID_PARAMETER);
}

// The current directory comes back in the Windows form; in a child, so that the current directory
// of the suite stays.
TEST(Files, DriveLettersAndTheCurrentDirectory) {
    TempDir dir;
    const std::u16string sub = W(dir.file("sub")), name = W(dir.file("name.txt"));
#ifndef _WIN32  // drive letters name directories through ZEL_DRIVE_<letter> here
    ScopedEnv drive("ZEL_DRIVE_Q", dir.path());
    HANDLE h = CreateFileW(u"q:\\name.txt", GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    ASSERT_NE(h, INVALID_HANDLE_VALUE);
    CloseHandle(h);
    EXPECT_TRUE(zeltest::Exists(dir.file("name.txt")));
    EXPECT_TRUE(CreateDirectoryW(u"q:\\sub", nullptr));
#else
    zeltest::WriteFile(dir.file("name.txt"), "");
    EXPECT_TRUE(CreateDirectoryW(sub.c_str(), nullptr));
#endif

    int status = zeltest::RunInChild([&] {
        if (!SetCurrentDirectoryW(sub.c_str())) return 1;
        WCHAR small[4];
        std::u16string expected = W(dir.file("sub"));
        if (GetCurrentDirectoryW(4, small) != expected.size() + 1) return 2;
        WCHAR buffer[MAX_PATH];
        if (GetCurrentDirectoryW(MAX_PATH, buffer) != expected.size() || buffer != expected) return 3;
        char narrow[MAX_PATH];
        if (GetCurrentDirectoryA(MAX_PATH, narrow) != expected.size()) return 4;
        if (SetCurrentDirectoryW(name.c_str()) || GetLastError() != ERROR_DIRECTORY) return 5;
        return 0;
    });
    EXPECT_EQ(status, 0);
}

// An A call under the Korean code page reaches the UTF-8 name on disk, and the name comes back.
TEST(Files, AnsiNamesGoThroughTheAnsiCodePage) {
    zeltest::SystemLocale korean({.acp = "949"});
    if (!korean.active()) GTEST_SKIP() << "checked in the run with the Korean code page";
    TempDir dir;
    std::string name = ZelPlatformWideToAnsi((W(dir.path()) + u"\\").c_str()) + "\xc7\xd1.txt";
    HANDLE h = CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
    ASSERT_NE(h, INVALID_HANDLE_VALUE);
    CloseHandle(h);
    EXPECT_TRUE(zeltest::Exists(dir.file("\xed\x95\x9c.txt")));  // U+D55C in UTF-8
    EXPECT_EQ(GetFileAttributesA(name.c_str()), DWORD{FILE_ATTRIBUTE_ARCHIVE});
    char longName[MAX_PATH];
    EXPECT_EQ(GetLongPathNameA(name.c_str(), longName, MAX_PATH), name.size());
    EXPECT_EQ(std::string(longName), name);
}

TEST(Files, TemporaryNames) {
    TempDir dir;
    std::u16string base = W(dir.path());
    WCHAR name[MAX_PATH];
    EXPECT_EQ(GetTempFileNameW(base.c_str(), u"zelx", 0x1abc, name), 0x1abcu);
    // Wine writes the digits in lower case, where Windows writes upper case.
    EXPECT_EQ(std::u16string(name), base + (zeltest::RunningUnderWine() ? u"\\zel1abc.tmp" : u"\\zel1ABC.tmp"));
    EXPECT_FALSE(zeltest::Exists(dir.file("zel1ABC.tmp")));  // only the name is made
    const UINT low = GetTempFileNameW(base.c_str(), u"t", 0x10005, name);
    // Wine gives back the low 16 bits that it used, not the number it was given.
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(low, 0x10005u);
    }
    EXPECT_EQ(std::u16string(name), base + u"\\t5.tmp");  // the low 16 bits, without leading zeros

    UINT first = GetTempFileNameW(base.c_str(), u"t", 0, name);
    ASSERT_NE(first, 0u);
    EXPECT_EQ(GetFileAttributesW(name), DWORD{FILE_ATTRIBUTE_ARCHIVE});
    UINT second = GetTempFileNameW(base.c_str(), u"t", 0, name);
    EXPECT_NE(second, 0u);
    EXPECT_NE(second, first);

    EXPECT_ERROR(GetTempFileNameW(W(dir.file("none")).c_str(), u"t", 0, name), 0u, ERROR_DIRECTORY);
    std::u16string deep = base + u"\\" + std::u16string(250, u'd');
    EXPECT_EQ(GetTempFileNameW(deep.c_str(), u"t", 0, name), 0u);
}

TEST(Files, StringResultsGiveTheNeededSizeWhenShort) {
    TempDir dir;
    ScopedEnv tmp("TMP", std::nullopt), temp("TEMP", dir.path()), tmpdir("TMPDIR", "/elsewhere");
    std::u16string expected = W(dir.path()) + u"\\";
    WCHAR buffer[MAX_PATH] = u"untouched";
    EXPECT_EQ(GetTempPathW(3, buffer), expected.size() + 1);
    EXPECT_EQ(GetTempPathW(MAX_PATH, buffer), expected.size());
    EXPECT_EQ(std::u16string(buffer), expected);

    // A volume may make short names or not: the short name is whatever leads back to the long one.
    std::u16string path = W(dir.path());
    const DWORD needed = GetShortPathNameW(path.c_str(), nullptr, 0);
    EXPECT_EQ(GetShortPathNameW(path.c_str(), buffer, MAX_PATH), needed - 1);
    EXPECT_EQ(std::u16string(buffer).size(), needed - 1);
    const std::u16string shortPath = buffer;
    EXPECT_EQ(GetLongPathNameW(shortPath.c_str(), buffer, MAX_PATH), path.size());
    EXPECT_EQ(std::u16string(buffer), path);
    EXPECT_ERROR(GetShortPathNameW(W(dir.file("none")).c_str(), buffer, MAX_PATH), 0u, ERROR_FILE_NOT_FOUND);
    // Either error is the system's for a missing directory on the way.
    SetLastError(0);
    EXPECT_EQ(GetLongPathNameW(W(dir.file("none/x")).c_str(), buffer, MAX_PATH), 0u);
    EXPECT_TRUE(GetLastError() == ERROR_PATH_NOT_FOUND || GetLastError() == ERROR_FILE_NOT_FOUND);
}

}  // namespace
