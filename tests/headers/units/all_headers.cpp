// Every public header in one unit with the system's headers, before them when ZEL_SYSTEM_FIRST is
// 1 and after them otherwise, and the system's status record beside the library's.
#if ZEL_SYSTEM_FIRST
#include "system_headers.h"
#endif

#include <zel/zel.h>

#if !ZEL_SYSTEM_FIRST
#include "system_headers.h"
#endif

int SameTimes(const char* path) {
    struct stat status;
    if (stat(path, &status) != 0) return -1;
    struct _stat record = {};
    record.st_atime = status.st_atime;
    record.st_mtime = status.st_mtime;
    record.st_ctime = status.st_ctime;
    struct stat copy = status;
    copy.st_mtime = static_cast<time_t>(record.st_mtime);
    return copy.st_mtime == status.st_mtime && record.st_atime == status.st_atime &&
           record.st_ctime == status.st_ctime;
}

int RuntimeStatus(const WCHAR* path) {
    struct _stat record;
    return u__wstat(path, &record) == 0 && (record.st_mode & _S_IFDIR) ? static_cast<int>(record.st_mtime % 2) : -1;
}

int Descriptors(const char* path) {
    int fd = open(path, O_RDONLY | O_CLOEXEC);
    DIR* directory = opendir(path);
    if (directory) closedir(directory);
    if (fd >= 0) close(fd);
    WIN32_FIND_DATAW found;
    HANDLE search = ZelFindFirstFileW(u"*", &found);
    if (search != INVALID_HANDLE_VALUE) FindClose(search);
    return static_cast<int>(std::wcslen(L"x") + std::strlen(path)) + (fd >= 0) + TRUE;
}
