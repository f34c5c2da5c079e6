// The run-time's file calls: names, permissions, streams, descriptors and status, with the Win32
// run-time's flag values translated to the system's. Errors are given in errno. Text mode has no
// line-end translation here: files are read and written as they are.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "platform/posix/files/file_info.h"
#include "platform/win32.h"

namespace {

// The system path, or false with errno EINVAL when no path was given.
bool SystemPath(LPCWSTR path, std::string& out) {
    out = path ? ZelPlatformPathToSystem(path) : std::string();
    if (path) return true;
    errno = EINVAL;
    return false;
}

int OpenFlags(int flags) {
    int system = (flags & _O_RDWR) ? O_RDWR : (flags & _O_WRONLY) ? O_WRONLY : O_RDONLY;
    if (flags & _O_APPEND) system |= O_APPEND;
    if (flags & _O_CREAT) system |= O_CREAT;
    if (flags & _O_TRUNC) system |= O_TRUNC;
    if (flags & _O_EXCL) system |= O_EXCL;
    return system | O_CLOEXEC;
}

// _S_IWRITE makes a writable file; without it the new file is read-only.
mode_t Permissions(int mode) { return (mode & _S_IWRITE) ? 0666 : 0444; }

int OpenWide(LPCWSTR path, int flags, int permission) {
    std::string file;
    if (!SystemPath(path, file)) return -1;
    return open(file.c_str(), OpenFlags(flags), Permissions(permission));
}

// The run-time's mode string for the system's fopen: r w a + b pass, t and the run-time's own
// letters (N S R T D c n) go, and so does ", ccs=..." with all after the comma.
bool StreamMode(const std::u16string& mode, std::string& out) {
    out.clear();
    for (WCHAR c : mode) {
        if (c == u',') break;
        if (c == u'r' || c == u'w' || c == u'a' || c == u'+' || c == u'b') out += static_cast<char>(c);
    }
    if (out.empty() || (out[0] != 'r' && out[0] != 'w' && out[0] != 'a')) {
        errno = EINVAL;
        return false;
    }
    out += 'e';  // the system's close-on-exec, as for every descriptor of these calls
    return true;
}

std::u16string Wide(LPCWSTR text) { return text ? std::u16string(text) : std::u16string(); }

// The errno of the run-time for a failed rename, from the last error of MoveFile.
int ErrnoFromMove(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: return ENOENT;
    case ERROR_NOT_SAME_DEVICE: return EXDEV;
    case ERROR_INVALID_PARAMETER: return EINVAL;
    default: return EACCES;  // among them an existing new name, as the run-time says it
    }
}

}  // namespace

namespace crt {

int _waccess(LPCWSTR path, int mode) {
    std::string file;
    if (!SystemPath(path, file)) return -1;
    if (mode & ~6) {
        errno = EINVAL;
        return -1;
    }
    // A file without the owner's write permission is read-only, whoever asks, as its attributes say.
    struct stat status;
    if (stat(file.c_str(), &status) != 0) return -1;
    if ((mode & 2) && !(status.st_mode & S_IWUSR)) {
        errno = EACCES;
        return -1;
    }
    return access(file.c_str(), F_OK | ((mode & 2) ? W_OK : 0) | ((mode & 4) ? R_OK : 0));
}

int _access(const char* path, int mode) { return _waccess(ZelPlatformAnsiToWide(path).get(), mode); }

int _wchdir(LPCWSTR path) {
    std::string directory;
    return SystemPath(path, directory) ? chdir(directory.c_str()) : -1;
}

int _chdir(const char* path) { return _wchdir(ZelPlatformAnsiToWide(path).get()); }

// _S_IWRITE gives the owner write permission and its absence takes it away; the rest stays.
int _wchmod(LPCWSTR path, int mode) {
    std::string file;
    struct stat status;
    if (!SystemPath(path, file) || stat(file.c_str(), &status) != 0) return -1;
    mode_t permissions = status.st_mode & 07777;
    permissions = (mode & _S_IWRITE) ? permissions | S_IWUSR : permissions & ~mode_t{S_IWUSR};
    return chmod(file.c_str(), permissions);
}

int _chmod(const char* path, int mode) { return _wchmod(ZelPlatformAnsiToWide(path).get(), mode); }

int _wcreat(LPCWSTR path, int mode) { return OpenWide(path, _O_CREAT | _O_TRUNC | _O_RDWR, mode); }

int _creat(const char* path, int mode) { return _wcreat(ZelPlatformAnsiToWide(path).get(), mode); }

FILE* _wfopen(LPCWSTR path, LPCWSTR mode) {
    std::string file, systemMode;
    if (!SystemPath(path, file) || !StreamMode(Wide(mode), systemMode)) return nullptr;
    return ::fopen(file.c_str(), systemMode.c_str());
}

FILE* fopen(const char* path, const char* mode) {
    return _wfopen(ZelPlatformAnsiToWide(path).get(), ZelPlatformAnsiToWide(mode).get());
}

// A null path changes the mode of the stream's own file, as the system's freopen does.
FILE* _wfreopen(LPCWSTR path, LPCWSTR mode, FILE* stream) {
    std::string systemMode;
    if (!stream || !StreamMode(Wide(mode), systemMode)) {
        errno = EINVAL;
        return nullptr;
    }
    std::string file = path ? ZelPlatformPathToSystem(path) : std::string();
    return ::freopen(path ? file.c_str() : nullptr, systemMode.c_str(), stream);
}

FILE* freopen(const char* path, const char* mode, FILE* stream) {
    return _wfreopen(ZelPlatformAnsiToWide(path).get(), ZelPlatformAnsiToWide(mode).get(), stream);
}

// Share flags are accepted and not enforced, as for CreateFile.
FILE* _wfsopen(LPCWSTR path, LPCWSTR mode, int /*shareFlag*/) { return _wfopen(path, mode); }

FILE* _fsopen(const char* path, const char* mode, int shareFlag) {
    return _wfsopen(ZelPlatformAnsiToWide(path).get(), ZelPlatformAnsiToWide(mode).get(), shareFlag);
}

int _wmkdir(LPCWSTR path) {
    std::string directory;
    return SystemPath(path, directory) ? mkdir(directory.c_str(), 0777) : -1;
}

int _mkdir(const char* path) { return _wmkdir(ZelPlatformAnsiToWide(path).get()); }

// The permission argument is there only when _O_CREAT asks for it, as in the run-time.
static int OptionalPermission(int flags, va_list* arguments) {
    return (flags & _O_CREAT) ? va_arg(*arguments, int) : (_S_IREAD | _S_IWRITE);
}

int _wopen(LPCWSTR path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    int permission = OptionalPermission(flags, &arguments);
    va_end(arguments);
    return OpenWide(path, flags, permission);
}

int _open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    int permission = OptionalPermission(flags, &arguments);
    va_end(arguments);
    return _wopen(ZelPlatformAnsiToWide(path).get(), flags, permission);
}

// Share flags are accepted and not enforced, as for CreateFile.
int _wsopen(LPCWSTR path, int flags, int shareFlag, ...) {
    va_list arguments;
    va_start(arguments, shareFlag);
    int permission = OptionalPermission(flags, &arguments);
    va_end(arguments);
    return OpenWide(path, flags, permission);
}

int _sopen(const char* path, int flags, int shareFlag, ...) {
    va_list arguments;
    va_start(arguments, shareFlag);
    int permission = OptionalPermission(flags, &arguments);
    va_end(arguments);
    return _wsopen(ZelPlatformAnsiToWide(path).get(), flags, shareFlag, permission);
}

// Removes a file, not a directory: the run-time says EACCES for one.
int _wunlink(LPCWSTR path) {
    std::string file;
    if (!SystemPath(path, file)) return -1;
    if (unlink(file.c_str()) == 0) return 0;
    if (errno == EISDIR || errno == EPERM) errno = EACCES;
    return -1;
}

int _unlink(const char* path) { return _wunlink(ZelPlatformAnsiToWide(path).get()); }

int _wremove(LPCWSTR path) { return _wunlink(path); }

int remove(const char* path) { return _wremove(ZelPlatformAnsiToWide(path).get()); }

// Never replaces an existing name, and moves a file to another file system: MoveFile's rules.
int _wrename(LPCWSTR oldPath, LPCWSTR newPath) {
    if (!oldPath || !newPath) {
        errno = EINVAL;
        return -1;
    }
    if (MoveFileW(oldPath, newPath)) return 0;
    errno = ErrnoFromMove(GetLastError());
    return -1;
}

int rename(const char* oldPath, const char* newPath) {
    return _wrename(ZelPlatformAnsiToWide(oldPath).get(), ZelPlatformAnsiToWide(newPath).get());
}

int _wrmdir(LPCWSTR path) {
    std::string directory;
    return SystemPath(path, directory) ? rmdir(directory.c_str()) : -1;
}

int _rmdir(const char* path) { return _wrmdir(ZelPlatformAnsiToWide(path).get()); }

// The run-time's record: its type bits, the owner's permissions repeated for group and others as
// the run-time does, times in seconds and the size cut to 32 bits.
int _wstat(LPCWSTR path, struct ::_stat* record) {
    std::string file;
    struct stat status;
    if (!SystemPath(path, file)) return -1;
    if (!record) {
        errno = EINVAL;
        return -1;
    }
    if (stat(file.c_str(), &status) != 0) return -1;
    WORD mode = S_ISDIR(status.st_mode) ? _S_IFDIR : S_ISCHR(status.st_mode) ? _S_IFCHR : _S_IFREG;
    if (status.st_mode & S_IRUSR) mode |= _S_IREAD;
    if (status.st_mode & S_IWUSR) mode |= _S_IWRITE;
    if ((status.st_mode & S_IXUSR) || S_ISDIR(status.st_mode)) mode |= _S_IEXEC;
    mode |= static_cast<WORD>(((mode & 0700) >> 3) | ((mode & 0700) >> 6));
    *record = {};
    record->st_dev = static_cast<DWORD>(status.st_dev);
    record->st_ino = static_cast<WORD>(status.st_ino);
    record->st_mode = mode;
    record->st_nlink = static_cast<SHORT>(status.st_nlink);
    record->st_uid = static_cast<SHORT>(status.st_uid);
    record->st_gid = static_cast<SHORT>(status.st_gid);
    record->st_rdev = static_cast<DWORD>(status.st_dev);
    record->st_size = static_cast<LONG>(static_cast<uint32_t>(status.st_size));
    record->st_atime = status.st_atim.tv_sec;
    record->st_mtime = status.st_mtim.tv_sec;
    record->st_ctime = status.st_ctim.tv_sec;
    return 0;
}

int _stat(const char* path, struct ::_stat* record) { return _wstat(ZelPlatformAnsiToWide(path).get(), record); }

}  // namespace crt

// ---------------------------------------------------------------------------------------------
// Descriptors, exported under their own names (zel/platform.h)

int _read(int fd, void* buffer, unsigned int count) {
    if (!buffer || count > INT_MAX) {
        errno = EINVAL;
        return -1;
    }
    ssize_t n;
    do n = ::read(fd, buffer, count);
    while (n < 0 && errno == EINTR);
    return static_cast<int>(n);
}

int _write(int fd, const void* buffer, unsigned int count) {
    if (!buffer || count > INT_MAX) {
        errno = EINVAL;
        return -1;
    }
    ssize_t n;
    do n = ::write(fd, buffer, count);
    while (n < 0 && errno == EINTR);
    return static_cast<int>(n);
}

LONG _lseek(int fd, LONG offset, int origin) {
    if (origin < 0 || origin > 2) {
        errno = EINVAL;
        return -1;
    }
    static const int whence[] = {SEEK_SET, SEEK_CUR, SEEK_END};
    off_t before = lseek(fd, 0, SEEK_CUR);
    off_t position = before < 0 ? before : lseek(fd, offset, whence[origin]);
    if (position > INT32_MAX) {
        lseek(fd, before, SEEK_SET);  // a position this result can't give: stay where it was
        errno = EINVAL;
        return -1;
    }
    return static_cast<LONG>(position);
}

int _close(int fd) { return close(fd); }

LONG _filelength(int fd) {
    struct stat status;
    if (fstat(fd, &status) != 0) return -1;
    if (status.st_size > INT32_MAX) {
        errno = EFBIG;
        return -1;
    }
    return static_cast<LONG>(status.st_size);
}
