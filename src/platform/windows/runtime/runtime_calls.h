// The run-time's file calls on Windows: the run-time's own. Its wide calls take wchar_t, the same
// 16-bit units as the library's WCHAR, so the library's forms pass the text across as it is.
#ifndef ZEL_PLATFORM_WINDOWS_RUNTIME_CALLS_H
#define ZEL_PLATFORM_WINDOWS_RUNTIME_CALLS_H

#include <direct.h>
#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <wchar.h>

#include <zel/wintypes.h>

namespace crt {

inline const wchar_t* System(LPCWSTR text) { return reinterpret_cast<const wchar_t*>(text); }
inline wchar_t* System(LPWSTR text) { return reinterpret_cast<wchar_t*>(text); }

using ::_access;
using ::_chdir;
using ::_chmod;
using ::_close;
using ::_creat;
using ::_filelength;
using ::_findclose;
using ::_findfirst;
using ::_findnext;
using ::_fsopen;
using ::_fullpath;
using ::_getcwd;
using ::_lseek;
using ::_mkdir;
using ::_read;
using ::_rmdir;
using ::_searchenv;
using ::_stat;
using ::_unlink;
using ::_write;
using ::fopen;
using ::freopen;
using ::remove;
using ::rename;

inline int _open(const char* path, int flags, int mode = 0) { return ::_open(path, flags, mode); }
inline int _sopen(const char* path, int flags, int shareFlag, int mode = 0) {
    return ::_sopen(path, flags, shareFlag, mode);
}
inline int _waccess(LPCWSTR path, int mode) { return ::_waccess(System(path), mode); }
inline int _wchdir(LPCWSTR path) { return ::_wchdir(System(path)); }
inline int _wchmod(LPCWSTR path, int mode) { return ::_wchmod(System(path), mode); }
inline int _wcreat(LPCWSTR path, int mode) { return ::_wcreat(System(path), mode); }
inline FILE* _wfopen(LPCWSTR path, LPCWSTR mode) { return ::_wfopen(System(path), System(mode)); }
inline FILE* _wfreopen(LPCWSTR path, LPCWSTR mode, FILE* stream) {
    return ::_wfreopen(System(path), System(mode), stream);
}
inline FILE* _wfsopen(LPCWSTR path, LPCWSTR mode, int shareFlag) {
    return ::_wfsopen(System(path), System(mode), shareFlag);
}
inline LPWSTR _wfullpath(LPWSTR buffer, LPCWSTR path, size_t maxLength) {
    return reinterpret_cast<LPWSTR>(::_wfullpath(System(buffer), System(path), maxLength));
}
inline LPWSTR _wgetcwd(LPWSTR buffer, int maxLength) {
    return reinterpret_cast<LPWSTR>(::_wgetcwd(System(buffer), maxLength));
}
inline int _wmkdir(LPCWSTR path) { return ::_wmkdir(System(path)); }
inline int _wopen(LPCWSTR path, int flags, int mode = 0) { return ::_wopen(System(path), flags, mode); }
inline int _wsopen(LPCWSTR path, int flags, int shareFlag, int mode = 0) {
    return ::_wsopen(System(path), flags, shareFlag, mode);
}
inline int _wremove(LPCWSTR path) { return ::_wremove(System(path)); }
inline int _wrename(LPCWSTR oldPath, LPCWSTR newPath) { return ::_wrename(System(oldPath), System(newPath)); }
inline int _wrmdir(LPCWSTR path) { return ::_wrmdir(System(path)); }
inline void _wsearchenv(LPCWSTR fileName, LPCWSTR variable, LPWSTR buffer) {
    ::_wsearchenv(System(fileName), System(variable), System(buffer));
}
inline int _wstat(LPCWSTR path, struct ::_stat* record) { return ::_wstat(System(path), record); }
inline int _wunlink(LPCWSTR path) { return ::_wunlink(System(path)); }

// The run-time's arguments of the process (windows/runtime/arguments.cpp).
int ArgumentCount();
const char* Argument(int index);  // 8-bit, in the ANSI code page; null out of range

}  // namespace crt

#endif  // ZEL_PLATFORM_WINDOWS_RUNTIME_CALLS_H
