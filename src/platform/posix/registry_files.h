// The file operations under the registry's store: whole-file reads, atomic replacement, the lock
// file and the identity of a file's version.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_FILES_H
#define ZEL_PLATFORM_POSIX_REGISTRY_FILES_H

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

#include <zel/wintypes.h>

namespace zelreg {

// Every byte that the registry writes to a file goes through this function, which has the shape of
// write(2). Tests replace it to make writes fail.
using WriteFunction = ssize_t (*)(int fd, const void* data, size_t size);
extern WriteFunction g_writeFile;

// What tells one version of a file from another: its inode, size and modification time, and the
// stamp in its header, which every write changes.
struct FileVersion {
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    int64_t mtimeNs = 0;
    uint64_t stamp = 0;

    bool SameFile(const FileVersion& other) const {
        return exists == other.exists && (!exists || (device == other.device && inode == other.inode &&
                                                      size == other.size && mtimeNs == other.mtimeNs));
    }
};

// The version of the file at path now, with its header's stamp (0 for a damaged header). A file that
// cannot be opened counts as missing.
FileVersion ProbeFile(const std::string& path);

// The whole file, with its version. ERROR_SUCCESS with exists false when there is no file.
LONG ReadWholeFile(const std::string& path, std::vector<uint8_t>& bytes, FileVersion& version);

// Writes bytes to a new file beside path, flushes it, renames it over path and flushes the
// directory. On failure path is untouched. version receives the new file's version.
LONG ReplaceFile(const std::string& path, const std::vector<uint8_t>& bytes, FileVersion& version);

// Writes bytes to a new file, which must not exist yet (ERROR_ALREADY_EXISTS), and flushes it. On
// failure the file is removed again.
LONG WriteNewFile(const std::string& path, const std::vector<uint8_t>& bytes);

// Makes a directory and its parents.
LONG MakeDirectories(const std::string& path, mode_t mode);

// The status for a failed file operation: errno's code, or ERROR_REGISTRY_IO_FAILED without one.
LONG IoStatus(int error);

// An advisory lock on a lock file, held until destruction. Exclusive for changes, shared for reads.
class FileLock {
public:
    FileLock(const std::string& path, bool exclusive, bool create);
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    // ERROR_SUCCESS when the lock is held.
    LONG status() const { return status_; }

private:
    int fd_ = -1;
    LONG status_ = ERROR_SUCCESS;
};

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_FILES_H
