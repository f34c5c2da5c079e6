// The library's own copy and existence tests, and the code under which a system error is kept.
#include <gtest/gtest.h>
#include <zel/frame.h>
#include <zel/paths.h>

#include <string>

#include "frame/system_error.h"
#include "platform/win32.h"
#include "support/support.h"

namespace {

std::u16string Lib(const std::string& path) { return ZelPlatformPathFromSystem(path.c_str()); }

TEST(AdapterFileCopy, SystemErrorCodes) {
    EXPECT_EQ(0x80070005u, ZelSystemErrorCode(ERROR_ACCESS_DENIED));
    EXPECT_EQ(0x80072345u, ZelSystemErrorCode(0x12345));
    EXPECT_EQ(0u, ZelSystemErrorCode(0));
    ZelReportSystemError(ERROR_HANDLE_EOF);
    EXPECT_EQ(0x80070026u, ZelGetError());
}

TEST(AdapterFileCopy, CopiesEveryByteOverAnOldFile) {
    zeltest::TempDir dir;
    std::string bytes(200000, '\0');  // several chunks and a partial one
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
    zeltest::WriteFile(dir.file("원본.bin"), bytes);
    zeltest::WriteFile(dir.file("사본.bin"), std::string(300000, 'x'));
    EXPECT_TRUE(ZelCopyFile(Lib(dir.file("사본.bin")).c_str(), Lib(dir.file("원본.bin")).c_str()));
    EXPECT_EQ(bytes, zeltest::ReadFile(dir.file("사본.bin")));

    zeltest::WriteFile(dir.file("empty"), "");
    EXPECT_TRUE(ZelCopyFile(Lib(dir.file("empty copy")).c_str(), Lib(dir.file("empty")).c_str()));
    EXPECT_TRUE(ZelFileExist(Lib(dir.file("empty copy")).c_str()));
    EXPECT_EQ("", zeltest::ReadFile(dir.file("empty copy")));
}

TEST(AdapterFileCopy, FailuresReportTheSystemError) {
    zeltest::TempDir dir;
    ZelSetError(0);
    EXPECT_FALSE(ZelCopyFile(Lib(dir.file("to")).c_str(), Lib(dir.file("missing")).c_str()));
    EXPECT_EQ(0x80070000u | ERROR_FILE_NOT_FOUND, ZelGetError());
    EXPECT_FALSE(ZelFileExist(Lib(dir.file("to")).c_str()));

    zeltest::WriteFile(dir.file("from"), "abc");
    ZelSetError(0);
    EXPECT_FALSE(ZelCopyFile(Lib(dir.file("no/such/to")).c_str(), Lib(dir.file("from")).c_str()));
    EXPECT_EQ(0x80070000u | ERROR_PATH_NOT_FOUND, ZelGetError());
}

// A kernel attribute file claims a page but holds a few bytes: the read that meets the early end
// stops the copy, and the partial destination goes.
TEST(AdapterFileCopy, SourceShorterThanItsSizeRemovesTheCopy) {
    const std::u16string source = u"\\sys\\devices\\system\\cpu\\online";
    const std::string content = zeltest::ReadFile("/sys/devices/system/cpu/online");
    HANDLE file = CreateFileW(source.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE || !file) GTEST_SKIP() << "no kernel attribute file to read";
    const DWORD size = GetFileSize(file, nullptr);
    CloseHandle(file);
    if (content.empty() || size <= content.size()) GTEST_SKIP() << "the attribute file tells its true size";

    zeltest::TempDir dir;
    ZelSetError(0);
    EXPECT_FALSE(ZelCopyFile(Lib(dir.file("online")).c_str(), source.c_str()));
    EXPECT_EQ(0x80070000u | ERROR_HANDLE_EOF, ZelGetError());
    EXPECT_FALSE(ZelFileExist(Lib(dir.file("online")).c_str()));
}

TEST(AdapterFileCopy, ExistenceOfFilesAndDirectories) {
    zeltest::TempDir dir;
    zeltest::WriteFile(dir.file("한글.txt"), "x");
    const std::u16string directory = Lib(dir.path());
    const std::u16string file = Lib(dir.file("한글.txt"));
    EXPECT_EQ(16u, ZelExistDir(directory.c_str()));  // the attribute bit, not 1
    EXPECT_EQ(0u, ZelExistDir(file.c_str()));
    EXPECT_EQ(0u, ZelExistDir(Lib(dir.file("missing")).c_str()));
    EXPECT_TRUE(ZelFileExist(file.c_str()));
    EXPECT_FALSE(ZelFileExist(directory.c_str()));
    EXPECT_FALSE(ZelFileExist(nullptr));

    EXPECT_FALSE(ZelCheckRemovableDrive(nullptr));
    EXPECT_FALSE(ZelCheckRemovableDrive(u""));
    // Without a drive the root of the current drive is asked.
    EXPECT_EQ(ZelGetDriveType(u"\\") == DRIVE_REMOVABLE, ZelCheckRemovableDrive(u"dir\\file.txt") != 0);
}

}  // namespace
