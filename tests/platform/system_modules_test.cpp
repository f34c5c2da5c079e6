#include <gtest/gtest.h>

#include <sys/syscall.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "platform/win32.h"
#include "support/support.h"

using zeltest::ScopedEnv;

namespace {

template <typename Function>
FARPROC AsProc(Function* function) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

TEST(SystemModules, KnownByNameInAnyCase) {
    HMODULE kernel = LoadLibraryA("KERNEL32.DLL");
    ASSERT_NE(kernel, nullptr);
    EXPECT_EQ(GetModuleHandleW(u"kernel32"), kernel);
    EXPECT_EQ(LoadLibraryExW(u"Kernel32.dll", nullptr, 0), kernel);
    HMODULE shell = LoadLibraryW(u"shell32.dll");
    ASSERT_NE(shell, nullptr);
    EXPECT_NE(shell, kernel);
    EXPECT_EQ(GetModuleHandleA("Shell32"), shell);
    EXPECT_EQ(LoadLibraryA("kernel33.dll"), nullptr);
    EXPECT_TRUE(FreeLibrary(kernel));
    EXPECT_TRUE(FreeLibrary(shell));
    EXPECT_EQ(GetModuleHandleA("kernel32.dll"), kernel);  // still there: system modules stay
}

TEST(SystemModules, ProceduresAreThePlatformsOwn) {
    HMODULE kernel = GetModuleHandleA("kernel32.dll");
    HMODULE shell = GetModuleHandleA("shell32.dll");
    EXPECT_EQ(GetProcAddress(kernel, "GetVersionExA"), AsProc(&GetVersionExA));
    EXPECT_EQ(GetProcAddress(kernel, "GetLongPathNameW"), AsProc(&GetLongPathNameW));
    EXPECT_EQ(GetProcAddress(shell, "SHGetKnownFolderPath"), AsProc(&SHGetKnownFolderPath));
    EXPECT_EQ(GetProcAddress(shell, "SHFileOperationW"), AsProc(&SHFileOperationW));
    SetLastError(0);
    EXPECT_EQ(GetProcAddress(kernel, "SHGetSettings"), nullptr);  // in the other module
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(GetProcAddress(shell, "shgetsettings"), nullptr);   // names are exact
    EXPECT_EQ(GetProcAddress(shell, reinterpret_cast<LPCSTR>(1)), nullptr);
}

TEST(SystemModules, HiddenCallsAreNotFound) {
    HMODULE kernel = GetModuleHandleA("kernel32.dll");
    HMODULE shell = GetModuleHandleA("shell32.dll");
    ScopedEnv hide("ZEL_HIDE_CALLS", "IsWow64Process,SHGetSettings");
    SetLastError(0);
    EXPECT_EQ(GetProcAddress(kernel, "IsWow64Process"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(GetProcAddress(shell, "SHGetSettings"), nullptr);
    EXPECT_NE(GetProcAddress(shell, "SHGetMalloc"), nullptr);
    EXPECT_NE(GetProcAddress(kernel, "GetVersionExA"), nullptr);
    ScopedEnv partial("ZEL_HIDE_CALLS", "IsWow64");  // whole names only
    EXPECT_NE(GetProcAddress(kernel, "IsWow64Process"), nullptr);
}

TEST(SystemModules, FileNameIsInTheSystemDirectory) {
    WCHAR directory[MAX_PATH], name[MAX_PATH];
    const UINT length = GetSystemDirectoryW(directory, MAX_PATH);
    ASSERT_GT(length, 0u);
    ASSERT_GT(GetModuleFileNameW(GetModuleHandleA("shell32"), name, MAX_PATH), 0u);
    EXPECT_EQ(std::u16string(name), std::u16string(directory, length) + u"\\shell32.dll");
}

TEST(Version, ReportsTheConfiguredSystem) {
    OSVERSIONINFOA info{};
    info.dwOSVersionInfoSize = sizeof info;
    {
        ScopedEnv version("ZEL_OS_VERSION", std::nullopt);
        ASSERT_TRUE(GetVersionExA(&info));
        EXPECT_EQ(info.dwPlatformId, 2u);
        EXPECT_EQ(info.dwMajorVersion, 6u);
        EXPECT_EQ(info.dwMinorVersion, 2u);
        EXPECT_EQ(info.dwBuildNumber, 0u);
        EXPECT_STREQ(info.szCSDVersion, "");
    }
    for (const char* malformed : {"1.4", "1.4.10.2", "a.b.c", "1..0", "", "1.4.10x"}) {
        ScopedEnv version("ZEL_OS_VERSION", malformed);
        ASSERT_TRUE(GetVersionExA(&info));
        EXPECT_EQ(info.dwMajorVersion, 6u) << malformed;
    }
    ScopedEnv version("ZEL_OS_VERSION", "1.4.10");
    ASSERT_TRUE(GetVersionExA(&info));
    EXPECT_EQ(info.dwPlatformId, 1u);
    EXPECT_EQ(info.dwMajorVersion, 4u);
    EXPECT_EQ(info.dwMinorVersion, 10u);
    info.dwOSVersionInfoSize = sizeof info - 1;
    EXPECT_FALSE(GetVersionExA(&info));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
}

TEST(Version, ProcessAndThreadIdentity) {
    EXPECT_EQ(GetCurrentProcess(), reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)));
    EXPECT_EQ(GetCurrentThreadId(), static_cast<DWORD>(syscall(SYS_gettid)));
    DWORD other = 0;
    std::thread([&] { other = GetCurrentThreadId(); }).join();
    EXPECT_NE(other, GetCurrentThreadId());
    BOOL wow = TRUE;
    ASSERT_TRUE(IsWow64Process(GetCurrentProcess(), &wow));
    if (sizeof(void*) == 8) {
        EXPECT_FALSE(wow);
    }
}

TEST(Version, WindowCallsAreNotImplemented) {
    SetLastError(0);
    EXPECT_EQ(FindWindowW(u"Class", nullptr), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
    char name[16];
    EXPECT_EQ(GetClassNameA(nullptr, name, 16), 0);
    WNDCLASSA windowClass{};
    EXPECT_FALSE(GetClassInfoA(nullptr, "Class", &windowClass));
    EXPECT_EQ(DragQueryFileW(nullptr, 0xFFFFFFFF, nullptr, 0), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CALL_NOT_IMPLEMENTED));
}

}  // namespace
