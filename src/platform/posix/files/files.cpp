// File handles: CreateFile and the calls on what it gives, over POSIX descriptors; and
// GetBinaryType, which reads a file's header. Share modes are accepted and not enforced: the
// system has no mandatory sharing, and the library's own files are never opened by two parties
// that rely on it.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include "platform/posix/files/file_info.h"
#include "platform/win32.h"
#include "platform/process_object.h"

namespace {

struct OpenFile {
    int fd = -1;
    std::string deleteOnClose;  // the system path to remove at close, when asked for
};

// The open files by handle value. Values step by 16 from 16 and are never given twice, so a
// closed handle stays unknown instead of naming a later file.
std::mutex tableLock;
// Process attach opens files, and detach may close them.
constinit ZelProcessObject<std::map<uintptr_t, OpenFile>> openFiles;
std::map<uintptr_t, OpenFile>& OpenFiles() { return *openFiles; }
uintptr_t lastHandle = 0;

HANDLE AddFile(const OpenFile& file) {
    std::lock_guard<std::mutex> guard(tableLock);
    lastHandle += 16;
    OpenFiles()[lastHandle] = file;
    return reinterpret_cast<HANDLE>(lastHandle);
}

// The descriptor of a handle, or -1 with ERROR_INVALID_HANDLE.
int DescriptorOf(HANDLE handle) {
    std::lock_guard<std::mutex> guard(tableLock);
    auto found = OpenFiles().find(reinterpret_cast<uintptr_t>(handle));
    if (found != OpenFiles().end()) return found->second.fd;
    SetLastError(ERROR_INVALID_HANDLE);
    return -1;
}

// A read or write on a descriptor that wasn't opened for it is a denied access on Windows.
void SetIoError() { SetLastError(errno == EBADF ? ERROR_ACCESS_DENIED : ZelPlatformErrorFromErrno(errno)); }

int OpenFlags(DWORD access) {
    bool read = access & (GENERIC_READ | GENERIC_ALL);
    bool write = access & (GENERIC_WRITE | GENERIC_ALL);
    if (read && write) return O_RDWR;
    return write ? O_WRONLY : O_RDONLY;
}

// Opens by the creation disposition. alreadyExisted tells CREATE_ALWAYS and OPEN_ALWAYS whether
// they found the file. Gives -1 with errno on failure.
int OpenByDisposition(const std::string& path, int flags, DWORD creation, mode_t mode, bool& alreadyExisted) {
    alreadyExisted = false;
    switch (creation) {
    case CREATE_NEW: return open(path.c_str(), flags | O_CREAT | O_EXCL, mode);
    case OPEN_EXISTING: return open(path.c_str(), flags);
    case TRUNCATE_EXISTING: return open(path.c_str(), flags | O_TRUNC);
    case CREATE_ALWAYS:
    case OPEN_ALWAYS: {
        int existingFlags = creation == CREATE_ALWAYS ? flags | O_TRUNC : flags;
        // Open the existing file, or make a new one; retry when a rival makes or removes it between.
        for (int attempt = 0; attempt < 8; ++attempt) {
            int fd = open(path.c_str(), existingFlags);
            if (fd >= 0) {
                alreadyExisted = true;
                return fd;
            }
            if (errno != ENOENT) return -1;
            fd = open(path.c_str(), flags | O_CREAT | O_EXCL, mode);
            if (fd >= 0 || errno != EEXIST) return fd;
        }
        return -1;
    }
    default: errno = EINVAL; return -1;
    }
}

}  // namespace

HANDLE CreateFileW(LPCWSTR fileName, DWORD access, DWORD /*shareMode*/, LPSECURITY_ATTRIBUTES /*security*/,
                   DWORD creation, DWORD flagsAndAttributes, HANDLE /*templateFile*/) {
    if (creation < CREATE_NEW || creation > TRUNCATE_EXISTING ||
        (creation == TRUNCATE_EXISTING && !(access & (GENERIC_WRITE | GENERIC_ALL)))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    std::string path = ZelPlatformPathToSystem(fileName);
    if (path.empty()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    int flags = O_CLOEXEC;
    struct stat status;
    bool exists = stat(path.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) {
        if (creation == CREATE_NEW) {
            SetLastError(ERROR_FILE_EXISTS);
            return INVALID_HANDLE_VALUE;
        }
        // A directory opens only for its metadata, and only when the caller says it means one.
        if (!(flagsAndAttributes & FILE_FLAG_BACKUP_SEMANTICS) || (access & (GENERIC_WRITE | GENERIC_ALL))) {
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }
        flags |= O_RDONLY | O_DIRECTORY;
        creation = OPEN_EXISTING;
    } else {
        // A read-only file refuses writing, whoever asks, as its attributes say.
        bool writes = (access & (GENERIC_WRITE | GENERIC_ALL)) || creation == CREATE_ALWAYS;
        if (exists && writes && !(status.st_mode & S_IWUSR) && creation != CREATE_NEW) {
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }
        flags |= OpenFlags(access);
    }
    // A new file made read-only still gives this handle its access, as on Windows.
    mode_t mode = (flagsAndAttributes & FILE_ATTRIBUTE_READONLY) ? 0444 : 0666;
    bool alreadyExisted = false;
    int fd = OpenByDisposition(path, flags, creation, mode, alreadyExisted);
    if (fd < 0) {
        if (errno == EEXIST)
            SetLastError(ERROR_FILE_EXISTS);
        else
            ZelSetPathError(path, errno);
        return INVALID_HANDLE_VALUE;
    }
    OpenFile file;
    file.fd = fd;
    if (flagsAndAttributes & FILE_FLAG_DELETE_ON_CLOSE) file.deleteOnClose = path;
    HANDLE handle = AddFile(file);
    SetLastError(alreadyExisted ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return handle;
}

HANDLE CreateFileA(LPCSTR fileName, DWORD access, DWORD shareMode, LPSECURITY_ATTRIBUTES security, DWORD creation,
                   DWORD flagsAndAttributes, HANDLE templateFile) {
    return CreateFileW(ZelPlatformAnsiToWide(fileName).get(), access, shareMode, security, creation,
                       flagsAndAttributes, templateFile);
}

namespace {

// What ReadFile and WriteFile check first: the handle, the buffer, and with an OVERLAPPED record
// the offset, at which a handle of this kind reads or writes and to which it moves. The
// descriptor, or -1 with the last error set.
int StartTransfer(HANDLE file, const void* buffer, DWORD count, LPDWORD done, LPOVERLAPPED overlapped) {
    if (done) *done = 0;
    int fd = DescriptorOf(file);
    if (fd < 0) return -1;
    if (!buffer && count) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return -1;
    }
    if (overlapped && lseek(fd, static_cast<off_t>((uint64_t{overlapped->OffsetHigh} << 32) | overlapped->Offset),
                            SEEK_SET) < 0) {
        ZelPlatformSetLastErrorFromErrno();
        return -1;
    }
    return fd;
}

}  // namespace

BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD toRead, LPDWORD read, LPOVERLAPPED overlapped) {
    int fd = StartTransfer(file, buffer, toRead, read, overlapped);
    if (fd < 0) return FALSE;
    DWORD done = 0;
    while (done < toRead) {
        ssize_t n = ::read(fd, static_cast<char*>(buffer) + done, toRead - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            SetIoError();
            if (read) *read = done;
            return FALSE;
        }
        if (n == 0) break;  // end of file: success with what there was
        done += static_cast<DWORD>(n);
    }
    if (read) *read = done;
    return TRUE;
}

BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD toWrite, LPDWORD written, LPOVERLAPPED overlapped) {
    int fd = StartTransfer(file, buffer, toWrite, written, overlapped);
    if (fd < 0) return FALSE;
    DWORD done = 0;
    while (done < toWrite) {
        ssize_t n = ::write(fd, static_cast<const char*>(buffer) + done, toWrite - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) {
            if (n == 0) errno = ENOSPC;
            SetIoError();
            if (written) *written = done;
            return FALSE;
        }
        done += static_cast<DWORD>(n);
    }
    if (written) *written = done;
    return TRUE;
}

DWORD GetFileSize(HANDLE file, LPDWORD sizeHigh) {
    int fd = DescriptorOf(file);
    struct stat status;
    if (fd < 0) return INVALID_FILE_SIZE;
    if (fstat(fd, &status) != 0) {
        ZelPlatformSetLastErrorFromErrno();
        return INVALID_FILE_SIZE;
    }
    uint64_t size = S_ISDIR(status.st_mode) ? 0 : static_cast<uint64_t>(status.st_size);
    if (sizeHigh) *sizeHigh = static_cast<DWORD>(size >> 32);
    // A low word of all ones is a size too; the caller tells it from a failure by the last error.
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(size);
}

DWORD SetFilePointer(HANDLE file, LONG distance, PLONG distanceHigh, DWORD method) {
    int fd = DescriptorOf(file);
    if (fd < 0) return INVALID_SET_FILE_POINTER;
    int64_t move = distanceHigh ? static_cast<int64_t>((uint64_t(uint32_t(*distanceHigh)) << 32) | uint32_t(distance))
                                : int64_t{distance};
    int64_t base = 0;
    struct stat status;
    if (method == FILE_CURRENT) {
        base = lseek(fd, 0, SEEK_CUR);
    } else if (method == FILE_END) {
        base = fstat(fd, &status) == 0 ? static_cast<int64_t>(status.st_size) : -1;
    } else if (method != FILE_BEGIN) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (base < 0) {
        ZelPlatformSetLastErrorFromErrno();
        return INVALID_SET_FILE_POINTER;
    }
    if ((move < 0 && base + move < 0) || (move > 0 && base > INT64_MAX - move)) {
        SetLastError(ERROR_NEGATIVE_SEEK);
        return INVALID_SET_FILE_POINTER;
    }
    int64_t target = base + move;
    // Without the high word the position must fit the low one, short of the failure value.
    if (!distanceHigh && target >= int64_t{INVALID_SET_FILE_POINTER}) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (lseek(fd, static_cast<off_t>(target), SEEK_SET) < 0) {
        ZelPlatformSetLastErrorFromErrno();
        return INVALID_SET_FILE_POINTER;
    }
    if (distanceHigh) *distanceHigh = static_cast<LONG>(static_cast<uint64_t>(target) >> 32);
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(target);
}

BOOL CloseHandle(HANDLE object) {
    // The pseudo-handle of the current process closes without effect, as on Windows.
    if (object == GetCurrentProcess()) return TRUE;
    OpenFile file;
    {
        std::lock_guard<std::mutex> guard(tableLock);
        auto found = OpenFiles().find(reinterpret_cast<uintptr_t>(object));
        if (found == OpenFiles().end()) {
            SetLastError(ERROR_INVALID_HANDLE);
            return FALSE;
        }
        file = found->second;
        OpenFiles().erase(found);
    }
    if (!file.deleteOnClose.empty()) unlink(file.deleteOnClose.c_str());
    close(file.fd);
    return TRUE;
}

namespace {

// An fcntl record lock on the range; a length of 0 means nothing here, not "to the end". Locks of
// the open file description are used where the system has them: like Windows locks they belong to
// the handle, so that another handle of the same process meets them too, and closing some other
// descriptor of the file doesn't drop them. A handle without write access takes a read lock, which
// keeps writers out but not other readers' locks.
BOOL SetRangeLock(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh, bool lock) {
    int fd = DescriptorOf(file);
    if (fd < 0) return FALSE;
    uint64_t offset = (uint64_t{offsetHigh} << 32) | offsetLow;
    uint64_t length = (uint64_t{lengthHigh} << 32) | lengthLow;
    if (length == 0 || offset > uint64_t(INT64_MAX) || length > uint64_t(INT64_MAX) - offset) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    struct flock range {};
    range.l_type = F_UNLCK;
    if (lock) range.l_type = (fcntl(fd, F_GETFL) & O_ACCMODE) == O_RDONLY ? F_RDLCK : F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = static_cast<off_t>(offset);
    range.l_len = static_cast<off_t>(length);
#ifdef F_OFD_SETLK
    int result = fcntl(fd, F_OFD_SETLK, &range);
    if (result != 0 && errno == EINVAL) result = fcntl(fd, F_SETLK, &range);
#else
    int result = fcntl(fd, F_SETLK, &range);
#endif
    if (result == 0) return TRUE;
    if (errno == EAGAIN || errno == EACCES)
        SetLastError(ERROR_LOCK_VIOLATION);
    else
        ZelPlatformSetLastErrorFromErrno();
    return FALSE;
}

}  // namespace

BOOL LockFile(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh) {
    return SetRangeLock(file, offsetLow, offsetHigh, lengthLow, lengthHigh, true);
}

BOOL UnlockFile(HANDLE file, DWORD offsetLow, DWORD offsetHigh, DWORD lengthLow, DWORD lengthHigh) {
    return SetRangeLock(file, offsetLow, offsetHigh, lengthLow, lengthHigh, false);
}

// ---------------------------------------------------------------------------------------------
// Program files

namespace {

bool ReadAt(int fd, off_t offset, unsigned char* bytes, size_t count) {
    return pread(fd, bytes, count, offset) == static_cast<ssize_t>(count);
}

uint32_t Little(const unsigned char* bytes, int count) {
    uint32_t value = 0;
    for (int i = count - 1; i >= 0; --i) value = (value << 8) | bytes[i];
    return value;
}

// The binary type of an open file, or -1 when it is no program this call knows.
int TypeOf(int fd) {
    unsigned char header[64] = {};
    if (!ReadAt(fd, 0, header, 5)) return -1;
    if (std::memcmp(header, "\x7f" "ELF", 4) == 0) {
        if (header[4] == 1) return SCS_32BIT_BINARY;
        if (header[4] == 2) return SCS_64BIT_BINARY;
        return -1;
    }
    if (header[0] != 'M' || header[1] != 'Z') return -1;
    // An MZ file whose header points at a PE signature is a Windows program of that machine;
    // without one it is a DOS program.
    if (!ReadAt(fd, 0, header, sizeof header)) return SCS_DOS_BINARY;
    uint32_t peOffset = Little(header + 0x3C, 4);
    unsigned char pe[6] = {};
    if (peOffset < 0x40 || !ReadAt(fd, static_cast<off_t>(peOffset), pe, sizeof pe) ||
        std::memcmp(pe, "PE\0\0", 4) != 0)
        return SCS_DOS_BINARY;
    switch (Little(pe + 4, 2)) {
    case 0x14c: return SCS_32BIT_BINARY;
    case 0x8664: return SCS_64BIT_BINARY;
    default: return -1;
    }
}

}  // namespace

BOOL GetBinaryTypeW(LPCWSTR applicationName, LPDWORD binaryType) {
    std::string path = ZelPlatformPathToSystem(applicationName);
    if (!binaryType) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    int fd = path.empty() ? -1 : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        ZelSetPathError(path, path.empty() ? ENOENT : errno);
        return FALSE;
    }
    struct stat status;
    int type = fstat(fd, &status) == 0 && S_ISREG(status.st_mode) ? TypeOf(fd) : -1;
    close(fd);
    if (type < 0) {
        SetLastError(ERROR_BAD_EXE_FORMAT);
        return FALSE;
    }
    *binaryType = static_cast<DWORD>(type);
    return TRUE;
}

BOOL GetBinaryTypeA(LPCSTR applicationName, LPDWORD binaryType) {
    return GetBinaryTypeW(ZelPlatformAnsiToWide(applicationName).get(), binaryType);
}
