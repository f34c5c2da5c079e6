// Where profile files lie and how they reach the disk. A write goes to a new file beside the old
// one, is flushed and renamed over it, and the directory is flushed, so that a crash leaves either
// the old file or the new one and never half of one.
#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <string>

#include "platform/posix/files/file_info.h"
#include "platform/posix/profile/profile_file.h"
#include "platform/win32.h"

namespace zelprofile {

WriteFunction g_writeFile = &::write;

namespace {

std::string DirectoryOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

// The error of a failed call on path, telling a missing directory from a missing file.
DWORD PathError(const std::string& path, int error) {
    const DWORD code = ZelSetPathError(path, error);
    return code ? code : ERROR_WRITE_FAULT;
}

bool WriteAll(int fd, const char* data, size_t size) {
    while (size > 0) {
        const ssize_t n = g_writeFile(fd, data, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            if (n == 0) errno = EIO;
            return false;
        }
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

std::u16string WindowsDirectory() {
    std::u16string directory(MAX_PATH, u'\0');
    UINT length = GetWindowsDirectoryW(directory.data(), MAX_PATH);
    if (length >= MAX_PATH) {
        directory.resize(length);
        length = GetWindowsDirectoryW(directory.data(), length);
    }
    directory.resize(length < directory.size() ? length : 0);
    return directory;
}

}  // namespace

std::string SystemPathOf(LPCWSTR fileName, bool& inWindowsDirectory) {
    std::u16string name = fileName && fileName[0] ? fileName : u"win.ini";
    const bool hasDirectory = name.find_first_of(u"\\/") != std::u16string::npos ||
                              (name.size() >= 2 && name[1] == u':');
    inWindowsDirectory = !hasDirectory;
    if (inWindowsDirectory) name = WindowsDirectory() + u"\\" + name;
    return ZelPlatformPathToSystem(name.c_str());
}

DWORD ReadProfile(const std::string& path, std::string& bytes, bool& found) {
    bytes.clear();
    found = false;
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return errno == ENOENT || errno == ENOTDIR ? ERROR_SUCCESS : PathError(path, errno);
    struct stat status;
    if (fstat(fd, &status) != 0 || S_ISDIR(status.st_mode)) {
        close(fd);
        return ERROR_ACCESS_DENIED;
    }
    // Straight into a string of the file's size, one byte more to see the end without growing;
    // a file that grew meanwhile makes it grow.
    size_t size = 0;
    bytes.resize(static_cast<size_t>(status.st_size > 0 ? status.st_size : 0) + 1);
    for (;;) {
        if (size == bytes.size()) bytes.resize(bytes.size() * 2);
        const ssize_t n = read(fd, bytes.data() + size, bytes.size() - size);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            const int error = errno;
            close(fd);
            bytes.clear();
            return PathError(path, error);
        }
        if (n == 0) break;
        size += static_cast<size_t>(n);
    }
    bytes.resize(size);
    close(fd);
    found = true;
    return ERROR_SUCCESS;
}

DWORD ReplaceProfile(const std::string& path, const std::string& bytes) {
    static std::atomic<unsigned> serial{0};
    struct stat old;
    const bool existed = stat(path.c_str(), &old) == 0;
    const std::string temp = path + "." + std::to_string(getpid()) + "." + std::to_string(serial++) + ".tmp";
    const int fd = open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) return PathError(path, errno);
    if ((existed && fchmod(fd, old.st_mode & 07777) != 0) || !WriteAll(fd, bytes.data(), bytes.size()) ||
        fsync(fd) != 0) {
        const int error = errno;
        close(fd);
        unlink(temp.c_str());
        return PathError(temp, error);
    }
    close(fd);
    if (rename(temp.c_str(), path.c_str()) != 0) {
        const int error = errno;
        unlink(temp.c_str());
        return PathError(path, error);
    }
    const int directory = open(DirectoryOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory >= 0) {
        // The rename is done; a directory that can't be flushed doesn't undo it.
        fsync(directory);
        close(directory);
    }
    return ERROR_SUCCESS;
}

DirectoryLock::DirectoryLock(const std::string& filePath) {
    fd_ = open(DirectoryOf(filePath).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd_ < 0) {
        status_ = errno == ENOENT || errno == ENOTDIR ? ERROR_PATH_NOT_FOUND : ZelPlatformErrorFromErrno(errno);
        return;
    }
    while (flock(fd_, LOCK_EX) != 0) {
        if (errno == EINTR) continue;
        status_ = ZelPlatformErrorFromErrno(errno);
        close(fd_);
        fd_ = -1;
        return;
    }
}

DirectoryLock::~DirectoryLock() {
    if (fd_ >= 0) close(fd_);
}

}  // namespace zelprofile
