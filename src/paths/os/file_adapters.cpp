// The system's calls on files with 16-bit names.
#include <zel/paths.h>

#include "paths/os/ansi_text.h"
#include "paths/os/dynamic_calls.h"
#include "platform/win32.h"
#include "strings/wstr.h"

HANDLE ZelCreateFile(const WCHAR* path, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security,
                     DWORD creation, DWORD flagsAndAttributes, HANDLE templateFile) {
    if (!ZelAnsiMode()) {
        return CreateFileW(path, access, shareMode, security, creation, flagsAndAttributes, templateFile);
    }
    return CreateFileA(ZelNarrowArg(path).get(), access, shareMode, security, creation, flagsAndAttributes,
                       templateFile);
}

BOOL ZelDeleteFile(const WCHAR* path) {
    if (!ZelAnsiMode()) return DeleteFileW(path);
    return DeleteFileA(ZelNarrowArg(path).get());
}

BOOL ZelMoveFile(const WCHAR* oldPath, const WCHAR* newPath) {
    if (!ZelAnsiMode()) return MoveFileW(oldPath, newPath);
    return MoveFileA(ZelNarrowArg(oldPath).get(), ZelNarrowArg(newPath).get());
}

// The 8-bit call in both modes, with the new path first and an existing target replaced.
BOOL ZelCopyFileA(const WCHAR* newPath, const WCHAR* existingPath) {
    return CopyFileA(ZelNarrowArg(existingPath).get(), ZelNarrowArg(newPath).get(), FALSE);
}

BOOL ZelGetBinaryType(const WCHAR* path, LPDWORD binaryType) {
    if (!ZelAnsiMode()) return GetBinaryTypeW(path, binaryType);
    return GetBinaryTypeA(ZelNarrowArg(path).get(), binaryType);
}

DWORD ZelGetFileAttributes(const WCHAR* path) {
    if (!ZelAnsiMode()) return GetFileAttributesW(path);
    return GetFileAttributesA(ZelNarrowArg(path).get());
}

BOOL ZelGetFileAttributesEx(const WCHAR* path, GET_FILEEX_INFO_LEVELS level, LPVOID information) {
    if (!ZelAnsiMode()) return GetFileAttributesExW(path, level, information);
    return GetFileAttributesExA(ZelNarrowArg(path).get(), level, information);
}

BOOL ZelSetFileAttributes(const WCHAR* path, DWORD attributes) {
    if (!ZelAnsiMode()) return SetFileAttributesW(path, attributes);
    return SetFileAttributesA(ZelNarrowArg(path).get(), attributes);
}

BOOL ZelLockFile(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh) {
    return LockFile(file, offsetLow, offsetHigh, lengthLow, lengthHigh);
}

DWORD ZelGetShortPathName(const WCHAR* path, WCHAR* buffer, DWORD size) {
    if (!ZelAnsiMode()) return GetShortPathNameW(path, buffer, size);
    char local[kZelAnsiResultBytes + 1] = {};
    const DWORD result = GetShortPathNameA(ZelNarrowArg(path).get(), local, ZelAnsiResultSize(size));
    if (result == 0) return 0;
    ZelWideResult(local, sizeof local).CopyTo(buffer, size);
    return result;
}

// Bound at run time in both modes; a system without the call gets the path back as it is.
DWORD ZelGetLongPathName(const WCHAR* path, WCHAR* buffer, DWORD size) {
    using WideCall = DWORD (*)(LPCWSTR, LPWSTR, DWORD);
    using AnsiCall = DWORD (*)(LPCSTR, LPSTR, DWORD);
    if (!ZelAnsiMode()) {
        if (auto call = ZelDynamicFunction<WideCall>(ZelDynamicCall::GetLongPathNameW)) return call(path, buffer, size);
    } else if (auto call = ZelDynamicFunction<AnsiCall>(ZelDynamicCall::GetLongPathNameA)) {
        char local[kZelAnsiResultBytes + 1] = {};
        const DWORD result = call(ZelNarrowArg(path).get(), local, ZelAnsiResultSize(size));
        if (result > 0) ZelWideResult(local, sizeof local).CopyTo(buffer, size);
        return result;
    }
    if (!path) return 0;
    const size_t length = wcslen(path);
    if (length < size && buffer) wcscpy(buffer, path);
    return static_cast<DWORD>(length);
}

UINT ZelGetTempFileName(const WCHAR* directory, const WCHAR* prefix, UINT number, WCHAR* buffer) {
    if (!ZelAnsiMode()) return GetTempFileNameW(directory, prefix, number, buffer);
    char local[kZelAnsiResultBytes + 1] = {};
    const UINT result = GetTempFileNameA(ZelNarrowArg(directory).get(), ZelNarrowArg(prefix).get(), number, local);
    if (result == 0) return 0;
    ZelWideResult(local, sizeof local).CopyTo(buffer, MAX_PATH);
    return result;
}
