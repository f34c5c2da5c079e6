// The run-time's file calls: flag translation, descriptors, streams, status records and paths.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <cerrno>
#include <cstdlib>
#include <string>

#include "platform/win32.h"
#include "support/support.h"
#include "support/system.h"

namespace {

using zeltest::ScopedEnv;
using zeltest::TempDir;

std::string Windows(const std::string& systemPath) {
    return ZelPlatformWideToAnsi(ZelPlatformPathFromSystem(systemPath.c_str()).c_str());
}

TEST(FilesRuntime, DescriptorsAndOpenFlags) {
    TempDir dir;
    std::string file = Windows(dir.file("d.bin"));
    int fd = crt::_open(file.c_str(), _O_CREAT | _O_EXCL | _O_RDWR | _O_BINARY, _S_IREAD);
    ASSERT_GE(fd, 0);
    EXPECT_EQ(crt::_write(fd, "abcdef", 6), 6);
    EXPECT_EQ(crt::_lseek(fd, -2, 2), 4);
    char bytes[8] = {};
    EXPECT_EQ(crt::_read(fd, bytes, 8), 2);
    EXPECT_EQ(std::string(bytes, 2), "ef");
    EXPECT_EQ(crt::_lseek(fd, 1, 0), 1);
    EXPECT_EQ(crt::_lseek(fd, 1, 1), 2);
    EXPECT_EQ(crt::_lseek(fd, 0, 3), -1);
    EXPECT_EQ(crt::_filelength(fd), 6);
    EXPECT_EQ(crt::_close(fd), 0);

    // _S_IREAD alone made it read-only; _O_EXCL refuses it now, and _chmod gives write back.
    EXPECT_EQ(crt::_access(file.c_str(), 2), -1);
    EXPECT_EQ(crt::_open(file.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY, _S_IWRITE), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(crt::_chmod(file.c_str(), _S_IREAD | _S_IWRITE), 0);
    EXPECT_EQ(crt::_access(file.c_str(), 6), 0);
    fd = crt::_sopen(file.c_str(), _O_WRONLY | _O_APPEND, _SH_DENYNO);
    EXPECT_EQ(crt::_write(fd, "g", 1), 1);
    crt::_close(fd);
    fd = crt::_open(file.c_str(), _O_RDONLY);
    EXPECT_EQ(crt::_filelength(fd), 7);
    crt::_close(fd);
    EXPECT_EQ(crt::_read(-1, bytes, 1), -1);
    EXPECT_EQ(errno, EBADF);
}

TEST(FilesRuntime, StreamModesAndStatusRecords) {
    TempDir dir;
    std::string file = Windows(dir.file("s.txt"));
    FILE* stream = crt::fopen(file.c_str(), "wb");
    ASSERT_NE(stream, nullptr);
    fputs("line\n", stream);
    fclose(stream);
    // The run-time's own letters and an encoding behind the comma.
    stream = crt::fopen(file.c_str(), "rt, ccs=UTF-8");
    ASSERT_NE(stream, nullptr);
    fclose(stream);
    stream = crt::_fsopen(file.c_str(), "rbN", _SH_DENYWR);
    ASSERT_NE(stream, nullptr);
    fclose(stream);
    EXPECT_EQ(crt::fopen(file.c_str(), "x"), nullptr);
    EXPECT_EQ(crt::fopen(Windows(dir.file("none/x")).c_str(), "r"), nullptr);
    EXPECT_EQ(errno, ENOENT);

    struct _stat record;
    ASSERT_EQ(crt::_stat(file.c_str(), &record), 0);
    EXPECT_EQ(record.st_mode & _S_IFMT, _S_IFREG);
    EXPECT_EQ(record.st_mode & (_S_IREAD | _S_IWRITE), _S_IREAD | _S_IWRITE);
    EXPECT_EQ(record.st_size, 5);
    ASSERT_EQ(crt::_stat(Windows(dir.path()).c_str(), &record), 0);
    EXPECT_EQ(record.st_mode & _S_IFMT, _S_IFDIR);
    EXPECT_EQ(crt::_stat(Windows(dir.file("none")).c_str(), &record), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(FilesRuntime, NamesRemovedRenamedAndMade) {
    TempDir dir;
    std::string a = Windows(dir.file("a")), b = Windows(dir.file("b")), sub = Windows(dir.file("sub"));
    zeltest::WriteFile(dir.file("a"), "1");
    zeltest::WriteFile(dir.file("b"), "2");
    EXPECT_EQ(crt::rename(a.c_str(), b.c_str()), -1);  // never over an existing name
    // Wine says EEXIST.
    if (!zeltest::RunningUnderWine()) {
        EXPECT_EQ(errno, EACCES);
    }
    EXPECT_EQ(crt::_mkdir(sub.c_str()), 0);
    EXPECT_EQ(crt::_mkdir(sub.c_str()), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(crt::rename(a.c_str(), (sub + "\\a").c_str()), 0);
    EXPECT_EQ(crt::_rmdir(sub.c_str()), -1);
    EXPECT_EQ(crt::remove(sub.c_str()), -1);  // a directory is no file to remove
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(crt::_unlink((sub + "\\a").c_str()), 0);
    EXPECT_EQ(crt::_rmdir(sub.c_str()), 0);
    EXPECT_EQ(crt::_unlink(a.c_str()), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST(FilesRuntime, FullPathsAndTheCurrentDirectory) {
    TempDir dir;
    ScopedEnv drive("ZEL_DRIVE_Q", dir.path());
    WCHAR buffer[MAX_PATH];
    EXPECT_EQ(std::u16string(crt::_wfullpath(buffer, u"q:\\a\\.\\b\\..\\c", MAX_PATH)), u"q:\\a\\c");
    // A path from the root takes the drive of the current directory, where it has one.
    ASSERT_NE(crt::_wgetcwd(buffer, MAX_PATH), nullptr);
    const std::u16string currentDrive = buffer[0] && buffer[1] == u':' ? std::u16string(buffer, 2) : std::u16string();
    EXPECT_EQ(std::u16string(crt::_wfullpath(buffer, u"\\x\\..\\..\\y/z\\", MAX_PATH)), currentDrive + u"\\y\\z\\");
    EXPECT_EQ(crt::_wfullpath(buffer, u"q:\\long\\name", 8), nullptr);

    int status = zeltest::RunInChild([&] {
        if (chdir(dir.path().c_str()) != 0) return 1;
        std::u16string here = ZelPlatformPathFromSystem(dir.path().c_str());
        if (std::u16string(crt::_wfullpath(buffer, u"..\\x", MAX_PATH)) !=
            here.substr(0, here.rfind(u'\\')) + u"\\x")
            return 2;
        char* allocated = crt::_fullpath(nullptr, "f", 0);
        if (!allocated || Windows(dir.file("f")) != allocated) return 3;
        free(allocated);
        char small[4];
        if (crt::_getcwd(small, 4) != nullptr || errno != ERANGE) return 4;
        WCHAR* cwd = crt::_wgetcwd(nullptr, 0);
        if (!cwd || here != cwd) return 5;
        free(cwd);
        return 0;
    });
    EXPECT_EQ(status, 0);
}

TEST(FilesRuntime, SearchEnvLooksInTheCurrentDirectoryThenTheList) {
    TempDir dir;
    ASSERT_TRUE(std::filesystem::create_directory(dir.file("one").c_str()));
    ASSERT_TRUE(std::filesystem::create_directory(dir.file("two").c_str()));
    zeltest::WriteFile(dir.file("two/tool"), "");
    zeltest::WriteFile(dir.file("one/tool"), "");
    zeltest::WriteFile(dir.file("here"), "");
    std::string one = Windows(dir.file("one")), two = Windows(dir.file("two"));
    char found[MAX_PATH];
#ifndef _WIN32  // a list in this system's own form, its names separated by colons
    {
        ScopedEnv list("ZEL_SEARCH", dir.file("none") + ":" + dir.file("two") + ":" + dir.file("one"));
        crt::_searchenv("tool", "ZEL_SEARCH", found);
        EXPECT_EQ(std::string(found), two + "\\tool");
    }
#endif
    {
        ScopedEnv list("ZEL_SEARCH", one + ";" + two);
        crt::_searchenv("tool", "ZEL_SEARCH", found);
        EXPECT_EQ(std::string(found), one + "\\tool");
        crt::_searchenv("absent", "ZEL_SEARCH", found);
        EXPECT_EQ(std::string(found), "");
        EXPECT_EQ(errno, ENOENT);
    }
    int status = zeltest::RunInChild([&] {
        ScopedEnv list("ZEL_SEARCH", two);
        if (chdir(dir.file("one").c_str()) != 0) return 1;
        crt::_searchenv("tool", "ZEL_SEARCH", found);
        return std::string(found) == one + "\\tool" ? 0 : 2;
    });
    EXPECT_EQ(status, 0);
}

}  // namespace
