// Directories, deleting, moving and copying files, attributes and the current directory.
#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <string>
#include <vector>

#include "platform/posix/files/file_info.h"
#include "platform/win32.h"

namespace {

// The system path of a Windows-form argument; an empty result means no path was given.
bool SystemPath(LPCWSTR path, std::string& out) {
    out = ZelPlatformPathToSystem(path);
    if (!out.empty()) return true;
    SetLastError(ERROR_PATH_NOT_FOUND);
    return false;
}

bool Fail(const std::string& path) {
    ZelSetPathError(path, errno);
    return false;
}

bool WriteAll(int fd, const char* bytes, size_t count) {
    while (count > 0) {
        ssize_t n = write(fd, bytes, count);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            if (n == 0) errno = ENOSPC;
            return false;
        }
        bytes += n;
        count -= static_cast<size_t>(n);
    }
    return true;
}

}  // namespace

// Copies a file's bytes, permissions and times, as Windows copies attributes and the write time.
// The target is made anew unless it may be replaced; on failure no partial target stays behind.
BOOL ZelCopyRegularFile(const std::string& from, const std::string& to, bool failIfExists) {
    int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    if (source < 0) return Fail(from);
    struct stat sourceStatus, targetStatus;
    if (fstat(source, &sourceStatus) != 0 || S_ISDIR(sourceStatus.st_mode)) {
        close(source);
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    if (stat(to.c_str(), &targetStatus) == 0) {
        DWORD refusal = failIfExists ? ERROR_FILE_EXISTS
                        : S_ISDIR(targetStatus.st_mode) ? ERROR_ACCESS_DENIED
                        // Copying a file onto itself would truncate it before reading it.
                        : targetStatus.st_dev == sourceStatus.st_dev && targetStatus.st_ino == sourceStatus.st_ino
                            ? ERROR_SHARING_VIOLATION
                            : !(targetStatus.st_mode & S_IWUSR) ? ERROR_ACCESS_DENIED
                                                                : ERROR_SUCCESS;
        if (refusal != ERROR_SUCCESS) {
            close(source);
            SetLastError(refusal);
            return FALSE;
        }
    }
    int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (failIfExists ? O_EXCL : O_TRUNC);
    int target = open(to.c_str(), flags, sourceStatus.st_mode & 0777);
    if (target < 0) {
        if (errno == EEXIST) SetLastError(ERROR_FILE_EXISTS);
        else ZelSetPathError(to, errno);
        close(source);
        return FALSE;
    }
    std::vector<char> buffer(65536);
    bool ok = true;
    for (;;) {
        ssize_t n = read(source, buffer.data(), buffer.size());
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 || (n > 0 && !WriteAll(target, buffer.data(), static_cast<size_t>(n)))) ok = false;
        if (n <= 0 || !ok) break;
    }
    if (ok) {
        fchmod(target, sourceStatus.st_mode & 0777);
        struct timespec times[2] = {sourceStatus.st_atim, sourceStatus.st_mtim};
        futimens(target, times);
    }
    int error = errno;
    if (close(target) != 0 && ok) {
        ok = false;
        error = errno;
    }
    close(source);
    if (!ok) {
        unlink(to.c_str());
        SetLastError(ZelPlatformErrorFromErrno(error));
        return FALSE;
    }
    return TRUE;
}

BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES /*security*/) {
    std::string directory;
    if (!SystemPath(path, directory)) return FALSE;
    return mkdir(directory.c_str(), 0777) == 0 ? TRUE : Fail(directory);
}

BOOL CreateDirectoryA(LPCSTR path, LPSECURITY_ATTRIBUTES security) {
    return CreateDirectoryW(ZelPlatformAnsiToWide(path).get(), security);
}

// The new directory takes the template's permissions, the part of its attributes this system has.
BOOL CreateDirectoryExW(LPCWSTR templateDirectory, LPCWSTR path, LPSECURITY_ATTRIBUTES /*security*/) {
    std::string from, directory;
    if (!SystemPath(templateDirectory, from) || !SystemPath(path, directory)) return FALSE;
    struct stat status;
    if (stat(from.c_str(), &status) != 0) return Fail(from);
    if (!S_ISDIR(status.st_mode)) {
        SetLastError(ERROR_DIRECTORY);
        return FALSE;
    }
    if (mkdir(directory.c_str(), status.st_mode & 07777) != 0) return Fail(directory);
    chmod(directory.c_str(), status.st_mode & 07777);  // the mask of the process doesn't apply
    return TRUE;
}

BOOL CreateDirectoryExA(LPCSTR templateDirectory, LPCSTR path, LPSECURITY_ATTRIBUTES security) {
    return CreateDirectoryExW(ZelPlatformAnsiToWide(templateDirectory).get(), ZelPlatformAnsiToWide(path).get(),
                              security);
}

BOOL RemoveDirectoryW(LPCWSTR path) {
    std::string directory;
    if (!SystemPath(path, directory)) return FALSE;
    if (rmdir(directory.c_str()) == 0) return TRUE;
    struct stat status;
    if (errno == ENOTDIR && stat(directory.c_str(), &status) == 0) SetLastError(ERROR_DIRECTORY);
    else if (errno == EEXIST) SetLastError(ERROR_DIR_NOT_EMPTY);  // what some systems give for it
    else ZelSetPathError(directory, errno);
    return FALSE;
}

BOOL RemoveDirectoryA(LPCSTR path) { return RemoveDirectoryW(ZelPlatformAnsiToWide(path).get()); }

BOOL DeleteFileW(LPCWSTR fileName) {
    std::string file;
    if (!SystemPath(fileName, file)) return FALSE;
    struct stat status;
    if (lstat(file.c_str(), &status) != 0) return Fail(file);
    // A directory isn't a file to delete, and a read-only file refuses, as on Windows.
    if (S_ISDIR(status.st_mode) || (S_ISREG(status.st_mode) && !(status.st_mode & S_IWUSR))) {
        SetLastError(ERROR_ACCESS_DENIED);
        return FALSE;
    }
    return unlink(file.c_str()) == 0 ? TRUE : Fail(file);
}

BOOL DeleteFileA(LPCSTR fileName) { return DeleteFileW(ZelPlatformAnsiToWide(fileName).get()); }

// Never replaces an existing name. A file moves to another file system by copy and delete; a
// directory doesn't.
BOOL MoveFileW(LPCWSTR existingName, LPCWSTR newName) {
    std::string from, to;
    if (!SystemPath(existingName, from) || !SystemPath(newName, to)) return FALSE;
    struct stat status;
    if (lstat(from.c_str(), &status) != 0) return Fail(from);
    if (lstat(to.c_str(), &status) == 0) {
        SetLastError(ERROR_ALREADY_EXISTS);
        return FALSE;
    }
    if (rename(from.c_str(), to.c_str()) == 0) return TRUE;
    if (errno != EXDEV) return Fail(errno == ENOENT ? to : from);
    if (lstat(from.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        SetLastError(ERROR_NOT_SAME_DEVICE);
        return FALSE;
    }
    if (!ZelCopyRegularFile(from, to, true)) return FALSE;
    if (unlink(from.c_str()) != 0) {
        int error = errno;
        unlink(to.c_str());
        ZelSetPathError(from, error);
        return FALSE;
    }
    return TRUE;
}

BOOL MoveFileA(LPCSTR existingName, LPCSTR newName) {
    return MoveFileW(ZelPlatformAnsiToWide(existingName).get(), ZelPlatformAnsiToWide(newName).get());
}

BOOL CopyFileW(LPCWSTR existingName, LPCWSTR newName, BOOL failIfExists) {
    std::string from, to;
    if (!SystemPath(existingName, from) || !SystemPath(newName, to)) return FALSE;
    return ZelCopyRegularFile(from, to, failIfExists != FALSE);
}

BOOL CopyFileA(LPCSTR existingName, LPCSTR newName, BOOL failIfExists) {
    return CopyFileW(ZelPlatformAnsiToWide(existingName).get(), ZelPlatformAnsiToWide(newName).get(), failIfExists);
}

// ---------------------------------------------------------------------------------------------
// Attributes

BOOL GetFileAttributesExW(LPCWSTR fileName, GET_FILEEX_INFO_LEVELS level, LPVOID information) {
    if (level != GetFileExInfoStandard || !information) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    std::string file;
    if (!SystemPath(fileName, file)) return FALSE;
    struct stat status;
    if (stat(file.c_str(), &status) != 0) return Fail(file);
    ZelFileInfo info = ZelFileInfoOf(status, ZelFileBaseName(file));
    auto data = static_cast<LPWIN32_FILE_ATTRIBUTE_DATA>(information);
    data->dwFileAttributes = info.attributes;
    data->ftCreationTime = info.creation;
    data->ftLastAccessTime = info.access;
    data->ftLastWriteTime = info.write;
    data->nFileSizeHigh = static_cast<DWORD>(info.size >> 32);
    data->nFileSizeLow = static_cast<DWORD>(info.size);
    return TRUE;
}

BOOL GetFileAttributesExA(LPCSTR fileName, GET_FILEEX_INFO_LEVELS level, LPVOID information) {
    return GetFileAttributesExW(ZelPlatformAnsiToWide(fileName).get(), level, information);
}

DWORD GetFileAttributesW(LPCWSTR fileName) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    return GetFileAttributesExW(fileName, GetFileExInfoStandard, &data) ? data.dwFileAttributes
                                                                        : INVALID_FILE_ATTRIBUTES;
}

DWORD GetFileAttributesA(LPCSTR fileName) { return GetFileAttributesW(ZelPlatformAnsiToWide(fileName).get()); }

// Only FILE_ATTRIBUTE_READONLY has a counterpart here: the owner's write permission.
BOOL SetFileAttributesW(LPCWSTR fileName, DWORD attributes) {
    std::string file;
    if (!SystemPath(fileName, file)) return FALSE;
    struct stat status;
    if (stat(file.c_str(), &status) != 0) return Fail(file);
    mode_t mode = status.st_mode & 07777;
    mode = (attributes & FILE_ATTRIBUTE_READONLY) ? mode & ~mode_t{S_IWUSR} : mode | S_IWUSR;
    if (mode != (status.st_mode & 07777) && chmod(file.c_str(), mode) != 0) return Fail(file);
    return TRUE;
}

BOOL SetFileAttributesA(LPCSTR fileName, DWORD attributes) {
    return SetFileAttributesW(ZelPlatformAnsiToWide(fileName).get(), attributes);
}

// ---------------------------------------------------------------------------------------------
// The current directory

DWORD GetCurrentDirectoryW(DWORD size, LPWSTR buffer) {
    std::vector<char> path(PATH_MAX);
    while (!getcwd(path.data(), path.size())) {
        if (errno != ERANGE) {
            ZelPlatformSetLastErrorFromErrno();
            return 0;
        }
        path.resize(path.size() * 2);
    }
    return ZelGiveText(ZelPlatformPathFromSystem(path.data()), buffer, size);
}

DWORD GetCurrentDirectoryA(DWORD size, LPSTR buffer) {
    return ZelGiveAnsiFromWide(buffer, size, [](LPWSTR wide, DWORD wideSize) {
        return GetCurrentDirectoryW(wideSize, wide);
    });
}

BOOL SetCurrentDirectoryW(LPCWSTR path) {
    std::string directory;
    if (!SystemPath(path, directory)) return FALSE;
    if (chdir(directory.c_str()) == 0) return TRUE;
    struct stat status;
    if (errno == ENOTDIR && stat(directory.c_str(), &status) == 0) SetLastError(ERROR_DIRECTORY);
    else ZelSetPathError(directory, errno);
    return FALSE;
}

BOOL SetCurrentDirectoryA(LPCSTR path) { return SetCurrentDirectoryW(ZelPlatformAnsiToWide(path).get()); }
