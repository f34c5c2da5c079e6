// File operations of the registry apart from its databases.
#include "platform/posix/registry/registry_files.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/win32.h"

namespace zelreg {

WriteFunction g_writeFile = &::write;

namespace {

FileVersion VersionOf(const struct stat& st) {
    FileVersion version;
    version.exists = true;
    version.device = st.st_dev;
    version.inode = st.st_ino;
    version.size = st.st_size;
    version.mtimeNs = static_cast<int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
    return version;
}

bool WriteAll(int fd, const uint8_t* data, size_t size) {
    while (size > 0) {
        ssize_t n = g_writeFile(fd, data, size);
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

}  // namespace

LONG IoStatus(int error) {
    DWORD code = error ? ZelPlatformErrorFromErrno(error) : 0;
    return code ? static_cast<LONG>(code) : ERROR_REGISTRY_IO_FAILED;
}

LONG ReadWholeFile(const std::string& path, std::vector<uint8_t>& bytes, FileVersion& version) {
    bytes.clear();
    version = {};
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return errno == ENOENT ? ERROR_SUCCESS : IoStatus(errno);
    struct stat st;
    if (fstat(fd, &st) != 0) {
        int error = errno;
        close(fd);
        return IoStatus(error);
    }
    version = VersionOf(st);
    if (st.st_size > 0) bytes.reserve(static_cast<size_t>(st.st_size));
    uint8_t buffer[65536];
    for (;;) {
        ssize_t n = read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            int error = errno;
            close(fd);
            return IoStatus(error);
        }
        if (n == 0) break;
        bytes.insert(bytes.end(), buffer, buffer + n);
    }
    close(fd);
    return ERROR_SUCCESS;
}

LONG WriteNewFile(const std::string& path, const std::vector<uint8_t>& bytes) {
    int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) return errno == EEXIST ? ERROR_ALREADY_EXISTS : IoStatus(errno);
    if (!WriteAll(fd, bytes.data(), bytes.size()) || fsync(fd) != 0) {
        int error = errno;
        close(fd);
        unlink(path.c_str());
        return IoStatus(error);
    }
    close(fd);
    return ERROR_SUCCESS;
}

LONG MakeDirectories(const std::string& path, mode_t mode) {
    if (path.empty()) return ERROR_PATH_NOT_FOUND;
    struct stat st;
    if (stat(path.c_str(), &st) == 0) return S_ISDIR(st.st_mode) ? ERROR_SUCCESS : ERROR_DIRECTORY;
    size_t slash = path.find_last_not_of('/');
    slash = slash == std::string::npos ? std::string::npos : path.rfind('/', slash);
    if (slash != std::string::npos && slash > 0) {
        LONG status = MakeDirectories(path.substr(0, slash), mode);
        if (status != ERROR_SUCCESS) return status;
    }
    if (mkdir(path.c_str(), mode) != 0 && errno != EEXIST) return IoStatus(errno);
    return ERROR_SUCCESS;
}

}  // namespace zelreg
