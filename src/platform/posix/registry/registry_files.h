// The file operations of the registry apart from its databases: whole-file reads (of a hive file of
// the older format, once), new files (a saved key) and directories.
#ifndef ZEL_PLATFORM_POSIX_REGISTRY_FILES_H
#define ZEL_PLATFORM_POSIX_REGISTRY_FILES_H

#include <sys/types.h>
#include <zel/wintypes.h>

#include <cstdint>
#include <string>
#include <vector>

namespace zelreg {

// Every byte that the registry writes to a file goes through this function, which has the shape of
// write(2): saved keys are written with it, and the databases' writes are offered to it first and
// fail when it fails. Tests replace it to make writes fail.
using WriteFunction = ssize_t (*)(int fd, const void* data, size_t size);
extern WriteFunction g_writeFile;

struct FileVersion {
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    int64_t mtimeNs = 0;
};

// The whole file, with its version. ERROR_SUCCESS with exists false when there is no file.
LONG ReadWholeFile(const std::string& path, std::vector<uint8_t>& bytes, FileVersion& version);

// Writes bytes to a new file, which must not exist yet (ERROR_ALREADY_EXISTS), and flushes it. On
// failure the file is removed again.
LONG WriteNewFile(const std::string& path, const std::vector<uint8_t>& bytes);

// Makes a directory and its parents.
LONG MakeDirectories(const std::string& path, mode_t mode);

// The status for a failed file operation: errno's code, or ERROR_REGISTRY_IO_FAILED without one.
LONG IoStatus(int error);

}  // namespace zelreg

#endif  // ZEL_PLATFORM_POSIX_REGISTRY_FILES_H
