// The one mapping of the run-time's errors (errno) to Win32 codes. Not every system knows every
// error number.
#include <cerrno>

#include "platform/win32.h"

DWORD ZelPlatformErrorFromErrno(int error) {
    switch (error) {
        case 0: return ERROR_SUCCESS;
        case ENOENT: return ERROR_FILE_NOT_FOUND;
        case ENOTDIR: return ERROR_PATH_NOT_FOUND;
        case EMFILE:
        case ENFILE: return ERROR_TOO_MANY_OPEN_FILES;
        case EACCES:
        case EPERM:
        case EISDIR: return ERROR_ACCESS_DENIED;
        case EBADF: return ERROR_INVALID_HANDLE;
        case ENOMEM: return ERROR_NOT_ENOUGH_MEMORY;
        case EROFS: return ERROR_WRITE_PROTECT;
        case EXDEV: return ERROR_NOT_SAME_DEVICE;
#ifdef ETXTBSY
        case ETXTBSY:
#endif
        case EBUSY: return ERROR_SHARING_VIOLATION;
        case EAGAIN: return ERROR_LOCK_VIOLATION;
        case EEXIST: return ERROR_ALREADY_EXISTS;
        case EINVAL:
        case EFAULT: return ERROR_INVALID_PARAMETER;
        case EPIPE: return ERROR_BROKEN_PIPE;
#ifdef EDQUOT
        case EDQUOT:
#endif
        case ENOSPC: return ERROR_DISK_FULL;
        case ENOSYS: return ERROR_CALL_NOT_IMPLEMENTED;
        case ENAMETOOLONG: return ERROR_FILENAME_EXCED_RANGE;
        case ENOTEMPTY: return ERROR_DIR_NOT_EMPTY;
        case ELOOP: return ERROR_CANT_RESOLVE_FILENAME;
        case ENOEXEC: return ERROR_BAD_EXE_FORMAT;
        case ESPIPE: return ERROR_NEGATIVE_SEEK;
        case EIO: return ERROR_IO_DEVICE;
        case ETIMEDOUT: return ERROR_TIMEOUT;
        case ECANCELED: return ERROR_CANCELLED;
        case EOVERFLOW:
        case ERANGE: return ERROR_ARITHMETIC_OVERFLOW;
        case ENOTSUP: return ERROR_NOT_SUPPORTED;
        default: return ERROR_GEN_FAILURE;
    }
}

DWORD ZelPlatformSetLastErrorFromErrno() {
    DWORD code = ZelPlatformErrorFromErrno(errno);
    SetLastError(code);
    return code;
}
