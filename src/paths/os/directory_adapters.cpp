// The system's calls on directories, drives and the places of the system and the user.
#include <zel/paths.h>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"
#include "strings/wstr.h"

BOOL ZelCreateDirectory(const WCHAR* path, LPSECURITY_ATTRIBUTES security) {
    if (!ZelAnsiMode()) return CreateDirectoryW(path, security);
    return CreateDirectoryA(ZelNarrowArg(path).get(), security);
}

BOOL ZelCreateDirectoryEx(const WCHAR* templateDirectory, const WCHAR* path, LPSECURITY_ATTRIBUTES security) {
    if (!ZelAnsiMode()) return CreateDirectoryExW(templateDirectory, path, security);
    return CreateDirectoryExA(ZelNarrowArg(templateDirectory).get(), ZelNarrowArg(path).get(), security);
}

BOOL ZelRemoveDirectory(const WCHAR* path) {
    if (!ZelAnsiMode()) return RemoveDirectoryW(path);
    return RemoveDirectoryA(ZelNarrowArg(path).get());
}

BOOL ZelSetCurrentDirectory(const WCHAR* path) {
    if (!ZelAnsiMode()) return SetCurrentDirectoryW(path);
    return SetCurrentDirectoryA(ZelNarrowArg(path).get());
}

BOOL ZelGetCurrentDirectory(DWORD size, WCHAR* buffer) {
    if (!ZelAnsiMode()) return GetCurrentDirectoryW(size, buffer) > 0 ? TRUE : FALSE;
    char local[kZelAnsiResultBytes + 1] = {};
    if (GetCurrentDirectoryA(ZelAnsiResultSize(size), local) == 0) return FALSE;
    ZelWideResult(local, sizeof local).CopyTo(buffer, size);
    return TRUE;
}

DWORD ZelGetTempPath(DWORD size, WCHAR* buffer) {
    if (!ZelAnsiMode()) return GetTempPathW(size, buffer);
    char local[kZelAnsiResultBytes + 1] = {};
    const DWORD result = GetTempPathA(ZelAnsiResultSize(size), local);
    if (result == 0) return 0;
    ZelWideResult(local, sizeof local).CopyTo(buffer, size);
    return result;
}

UINT ZelGetWindowsDirectory(WCHAR* buffer, UINT size) {
    if (!ZelAnsiMode()) return GetWindowsDirectoryW(buffer, size);
    char local[kZelAnsiResultBytes + 1] = {};
    const UINT result = GetWindowsDirectoryA(local, ZelAnsiResultSize(size));
    if (result == 0) return 0;
    ZelWideResult(local, sizeof local).CopyTo(buffer, size);
    return result;
}

// The 8-bit call in both modes; the name is copied out as wcsncpy does, without a terminator
// when it fills the buffer.
UINT ZelGetSystemDirectory(WCHAR* buffer, UINT size) {
    char local[kZelAnsiResultBytes + 1] = {};
    const UINT result = GetSystemDirectoryA(local, ZelAnsiResultSize(size));
    if (result > 0 && buffer && size > 0) wcsncpy(buffer, ZelWideResult(local, sizeof local).get(), size);
    return result;
}

// The size is in bytes in ANSI mode, as the 8-bit call counts it.
BOOL ZelGetUserName(WCHAR* buffer, LPDWORD size) {
    if (!ZelAnsiMode()) return GetUserNameW(buffer, size);
    char local[kZelAnsiResultBytes + 1] = {};
    const DWORD callerSize = size ? *size : 0;
    DWORD localSize = ZelAnsiResultSize(callerSize);
    const BOOL result = GetUserNameA(local, size ? &localSize : nullptr);
    if (size) *size = localSize;
    if (result > 0) ZelWideResult(local, sizeof local).CopyTo(buffer, callerSize);
    return result;
}

UINT ZelGetDriveType(const WCHAR* root) {
    if (!ZelAnsiMode()) return GetDriveTypeW(root);
    return GetDriveTypeA(ZelNarrowArg(root).get());
}

BOOL ZelGetDiskFreeSpace(const WCHAR* root, LPDWORD sectorsPerCluster, LPDWORD bytesPerSector,
                         LPDWORD freeClusters, LPDWORD totalClusters) {
    if (!ZelAnsiMode()) return GetDiskFreeSpaceW(root, sectorsPerCluster, bytesPerSector, freeClusters, totalClusters);
    return GetDiskFreeSpaceA(ZelNarrowArg(root).get(), sectorsPerCluster, bytesPerSector, freeClusters,
                             totalClusters);
}

BOOL ZelGetDiskFreeSpaceEx(const WCHAR* directory, ULARGE_INTEGER* freeToCaller, ULARGE_INTEGER* total,
                           ULARGE_INTEGER* totalFree) {
    if (!ZelAnsiMode()) return GetDiskFreeSpaceExW(directory, freeToCaller, total, totalFree);
    return GetDiskFreeSpaceExA(ZelNarrowArg(directory).get(), freeToCaller, total, totalFree);
}
