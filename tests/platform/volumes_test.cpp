// Volumes, the user's name and the system's directories.
#include <gtest/gtest.h>

#include <sys/statfs.h>
#include <unistd.h>

#include <string>

#include "platform/win32.h"
#include "support/support.h"

namespace {

using zeltest::ScopedEnv;
using zeltest::TempDir;

std::u16string W(const std::string& systemPath) { return ZelPlatformPathFromSystem(systemPath.c_str()); }

bool IsTmpfs(const char* path) {
    struct statfs system;
    return statfs(path, &system) == 0 && system.f_type == 0x01021994;
}

TEST(FilesVolumes, DriveTypes) {
    TempDir dir;
    EXPECT_EQ(GetDriveTypeW(W(dir.file("none")).c_str()), UINT{DRIVE_NO_ROOT_DIR});
    UINT here = GetDriveTypeW(nullptr);
    EXPECT_TRUE(here >= DRIVE_REMOVABLE && here <= DRIVE_RAMDISK) << here;
    EXPECT_EQ(GetDriveTypeW(u"\\proc\\"), UINT{DRIVE_FIXED});
    if (IsTmpfs("/dev/shm")) {
        ScopedEnv drive("ZEL_DRIVE_M", "/dev/shm");
        EXPECT_EQ(GetDriveTypeA("m:\\"), UINT{DRIVE_RAMDISK});
    }
}

TEST(FilesVolumes, FreeSpaceAndVolumeInformation) {
    TempDir dir;
    std::u16string root = W(dir.path());
    ULARGE_INTEGER free{}, total{}, totalFree{};
    ASSERT_TRUE(GetDiskFreeSpaceExW(root.c_str(), &free, &total, &totalFree));
    EXPECT_GT(total.QuadPart, 0u);
    EXPECT_LE(free.QuadPart, totalFree.QuadPart);
    EXPECT_LE(totalFree.QuadPart, total.QuadPart);
    DWORD sectors = 0, bytes = 0, freeClusters = 0, clusters = 0;
    ASSERT_TRUE(GetDiskFreeSpaceW(root.c_str(), &sectors, &bytes, &freeClusters, &clusters));
    EXPECT_EQ(bytes, 512u);
    EXPECT_EQ(ULONGLONG{sectors} * bytes * clusters, total.QuadPart);
    SetLastError(0);
    EXPECT_FALSE(GetDiskFreeSpaceW(W(dir.file("none/x")).c_str(), &sectors, &bytes, &freeClusters, &clusters));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});

    WCHAR volume[8] = u"x", type[32];
    DWORD serial = 0, component = 0, flags = 0;
    ASSERT_TRUE(GetVolumeInformationW(u"\\proc", volume, 8, &serial, &component, &flags, type, 32));
    EXPECT_EQ(std::u16string(volume), u"");
    EXPECT_EQ(std::u16string(type), u"proc");
    EXPECT_EQ(flags, 3u);
    EXPECT_GT(component, 0u);
    char narrowType[3];
    SetLastError(0);
    EXPECT_FALSE(GetVolumeInformationA("\\proc", nullptr, 0, nullptr, nullptr, nullptr, narrowType, 3));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    char fits[5];
    EXPECT_TRUE(GetVolumeInformationA("\\proc", nullptr, 0, nullptr, nullptr, nullptr, fits, 5));
    EXPECT_STREQ(fits, "proc");
}

TEST(FilesVolumes, UserAndSystemDirectories) {
    DWORD size = 1;
    WCHAR name[256];
    SetLastError(0);
    EXPECT_FALSE(GetUserNameW(name, &size));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
    DWORD needed = size;
    EXPECT_GT(needed, 1u);
    EXPECT_TRUE(GetUserNameW(name, &size));
    EXPECT_EQ(size, needed);
    EXPECT_EQ(std::char_traits<char16_t>::length(name) + 1, needed);

    ScopedEnv config("XDG_CONFIG_HOME", "/config/here");
    std::u16string windows = u"\\config\\here\\Morvalis\\Windows";
    WCHAR buffer[MAX_PATH];
    EXPECT_EQ(GetWindowsDirectoryW(buffer, 5), windows.size() + 1);
    EXPECT_EQ(GetWindowsDirectoryW(buffer, MAX_PATH), windows.size());
    EXPECT_EQ(std::u16string(buffer), windows);

    char system[MAX_PATH];
    UINT length = GetSystemDirectoryA(system, MAX_PATH);
    ASSERT_GT(length, 0u);
    std::string directory(system);
    for (auto& c : directory)
        if (c == '\\') c = '/';
    EXPECT_EQ(access((directory + "/libc.so.6").c_str(), F_OK), 0) << directory;
}

}  // namespace
