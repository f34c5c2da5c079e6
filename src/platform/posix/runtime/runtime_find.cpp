// The run-time's file search, over FindFirstFile and FindNextFile; names in the ANSI code page.
#include <cerrno>
#include <cstring>

#include "platform/win32.h"

namespace {

void Fill(const WIN32_FIND_DATAA& found, struct ::_finddata_t& record) {
    record = {};
    record.attrib = found.dwFileAttributes &
                    (_A_RDONLY | _A_HIDDEN | _A_SYSTEM | _A_SUBDIR | _A_ARCH);
    record.time_create = ZelPlatformUnixFromFileTime(found.ftCreationTime);
    record.time_access = ZelPlatformUnixFromFileTime(found.ftLastAccessTime);
    record.time_write = ZelPlatformUnixFromFileTime(found.ftLastWriteTime);
    record.size = found.nFileSizeLow;
    std::memcpy(record.name, found.cFileName, sizeof record.name);
    record.name[sizeof record.name - 1] = '\0';
}

}  // namespace

namespace crt {

intptr_t _findfirst(const char* mask, struct ::_finddata_t* record) {
    if (!mask || !record) {
        errno = EINVAL;
        return -1;
    }
    WIN32_FIND_DATAA found;
    HANDLE handle = FindFirstFileA(mask, &found);
    if (handle == INVALID_HANDLE_VALUE) {
        errno = ENOENT;
        return -1;
    }
    Fill(found, *record);
    return reinterpret_cast<intptr_t>(handle);
}

}  // namespace crt

// The next and the end of a search are exported under their own names (zel/platform.h).

int _findnext(intptr_t handle, struct ::_finddata_t* record) {
    if (!record) {
        errno = EINVAL;
        return -1;
    }
    WIN32_FIND_DATAA found;
    if (!FindNextFileA(reinterpret_cast<HANDLE>(handle), &found)) {
        errno = GetLastError() == ERROR_INVALID_HANDLE ? EINVAL : ENOENT;
        return -1;
    }
    Fill(found, *record);
    return 0;
}

int _findclose(intptr_t handle) {
    if (FindClose(reinterpret_cast<HANDLE>(handle))) return 0;
    errno = EINVAL;
    return -1;
}
