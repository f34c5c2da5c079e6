// The run-time's file calls with 16-bit names. The 8-bit twin is made on a system of the 95
// family; mode strings of the stream calls are converted like the paths.
#include <zel/paths.h>

#include "paths/os/ansi_text.h"
#include "platform/win32.h"

int u__waccess(const WCHAR* path, int mode) {
    if (!ZelAnsiMode()) return crt::_waccess(path, mode);
    return crt::_access(ZelNarrowArg(path).get(), mode);
}

int u__wchdir(const WCHAR* path) {
    if (!ZelAnsiMode()) return crt::_wchdir(path);
    return crt::_chdir(ZelNarrowArg(path).get());
}

int u__wchmod(const WCHAR* path, int mode) {
    if (!ZelAnsiMode()) return crt::_wchmod(path, mode);
    return crt::_chmod(ZelNarrowArg(path).get(), mode);
}

int u__wcreat(const WCHAR* path, int mode) {
    if (!ZelAnsiMode()) return crt::_wcreat(path, mode);
    return crt::_creat(ZelNarrowArg(path).get(), mode);
}

FILE* u__wfopen(const WCHAR* path, const WCHAR* mode) {
    if (!ZelAnsiMode()) return crt::_wfopen(path, mode);
    return crt::fopen(ZelNarrowArg(path).get(), ZelNarrowArg(mode).get());
}

FILE* u__wfreopen(const WCHAR* path, const WCHAR* mode, FILE* stream) {
    if (!ZelAnsiMode()) return crt::_wfreopen(path, mode, stream);
    return crt::freopen(ZelNarrowArg(path).get(), ZelNarrowArg(mode).get(), stream);
}

FILE* u__wfsopen(const WCHAR* path, const WCHAR* mode, int shareFlag) {
    if (!ZelAnsiMode()) return crt::_wfsopen(path, mode, shareFlag);
    return crt::_fsopen(ZelNarrowArg(path).get(), ZelNarrowArg(mode).get(), shareFlag);
}

// Wide mode gives the caller's buffer back whatever the call did (without a buffer, what the call
// allocated, so that it isn't lost); ANSI mode gives null when the call failed, and then leaves the
// buffer alone.
WCHAR* u__wfullpath(WCHAR* buffer, const WCHAR* path, size_t maxLength) {
    if (!ZelAnsiMode()) {
        WCHAR* result = crt::_wfullpath(buffer, path, maxLength);
        return buffer ? buffer : result;
    }
    char local[kZelAnsiResultBytes + 1] = {};
    const size_t size = maxLength < kZelAnsiResultBytes ? maxLength : kZelAnsiResultBytes;
    if (!crt::_fullpath(local, ZelNarrowArg(path).get(), size)) return nullptr;
    ZelWideResult(local, sizeof local).CopyTo(buffer, maxLength);
    return buffer;
}

WCHAR* u__wgetcwd(WCHAR* buffer, int maxLength) {
    if (!ZelAnsiMode()) {
        WCHAR* result = crt::_wgetcwd(buffer, maxLength);
        return buffer ? buffer : result;
    }
    char local[kZelAnsiResultBytes + 1] = {};
    const int size = maxLength < static_cast<int>(kZelAnsiResultBytes) ? maxLength : kZelAnsiResultBytes;
    if (!crt::_getcwd(local, size)) return nullptr;
    ZelWideResult(local, sizeof local).CopyTo(buffer, maxLength > 0 ? static_cast<size_t>(maxLength) : 0);
    return buffer;
}

int u__wmkdir(const WCHAR* path) {
    if (!ZelAnsiMode()) return crt::_wmkdir(path);
    return crt::_mkdir(ZelNarrowArg(path).get());
}

int u__wopen(const WCHAR* path, int flags, int permission) {
    if (!ZelAnsiMode()) return permission ? crt::_wopen(path, flags, permission) : crt::_wopen(path, flags);
    ZelNarrowArg narrow(path);
    return permission ? crt::_open(narrow.get(), flags, permission) : crt::_open(narrow.get(), flags);
}

int u__wremove(const WCHAR* path) {
    if (!ZelAnsiMode()) return crt::_wremove(path);
    return crt::remove(ZelNarrowArg(path).get());
}

int u__wrename(const WCHAR* oldPath, const WCHAR* newPath) {
    if (!ZelAnsiMode()) return crt::_wrename(oldPath, newPath);
    return crt::rename(ZelNarrowArg(oldPath).get(), ZelNarrowArg(newPath).get());
}

int u__wrmdir(const WCHAR* path) {
    if (!ZelAnsiMode()) return crt::_wrmdir(path);
    return crt::_rmdir(ZelNarrowArg(path).get());
}

// No result: in ANSI mode whatever the call left in the local buffer comes back, found or not.
void u__wsearchenv(const WCHAR* fileName, const WCHAR* variable, WCHAR* buffer) {
    if (!ZelAnsiMode()) return crt::_wsearchenv(fileName, variable, buffer);
    char local[kZelAnsiResultBytes + 1] = {};
    crt::_searchenv(ZelNarrowArg(fileName).get(), ZelNarrowArg(variable).get(), local);
    ZelWideResult(local, sizeof local).CopyTo(buffer, MAX_PATH);
}

int u__wsopen(const WCHAR* path, int flags, int shareFlag, int permission) {
    if (!ZelAnsiMode()) {
        return permission ? crt::_wsopen(path, flags, shareFlag, permission) : crt::_wsopen(path, flags, shareFlag);
    }
    ZelNarrowArg narrow(path);
    return permission ? crt::_sopen(narrow.get(), flags, shareFlag, permission)
                      : crt::_sopen(narrow.get(), flags, shareFlag);
}

int u__wstat(const WCHAR* path, struct _stat* record) {
    if (!ZelAnsiMode()) return crt::_wstat(path, record);
    return crt::_stat(ZelNarrowArg(path).get(), record);
}

int u__wunlink(const WCHAR* path) {
    if (!ZelAnsiMode()) return crt::_wunlink(path);
    return crt::_unlink(ZelNarrowArg(path).get());
}

// The search records stay 8-bit in both modes.
intptr_t u__wfindfirst(const WCHAR* path, struct _finddata_t* record) {
    return crt::_findfirst(ZelNarrowArg(path).get(), record);
}

int u__wfindnext(intptr_t handle, struct _finddata_t* record) { return crt::_findnext(handle, record); }
