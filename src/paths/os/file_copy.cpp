// The library's own file operations: a plain copy of a file's bytes and existence tests.
#include <zel/paths.h>

#include <cstdint>

#include "frame/system_error.h"
#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

constexpr DWORD kCopyChunk = 65536;

bool IsOpen(HANDLE file) { return file && file != INVALID_HANDLE_VALUE; }

// The last error of a step that failed or moved nothing; a step that stopped without one met the
// end of the file early.
DWORD StepError() {
    const DWORD error = GetLastError();
    return error ? error : static_cast<DWORD>(ERROR_HANDLE_EOF);
}

// Moves the source's bytes to the destination; 0 on success, else the system error.
DWORD CopyBytes(HANDLE source, HANDLE destination) {
    DWORD high = 0;
    SetLastError(ERROR_SUCCESS);
    const DWORD low = GetFileSize(source, &high);
    if (low == INVALID_FILE_SIZE && GetLastError() != ERROR_SUCCESS) return GetLastError();
    uint64_t remaining = (static_cast<uint64_t>(high) << 32) | low;

    BYTE chunk[kCopyChunk];
    while (remaining > 0) {
        const DWORD wanted = remaining < kCopyChunk ? static_cast<DWORD>(remaining) : kCopyChunk;
        DWORD read = 0;
        SetLastError(ERROR_SUCCESS);
        if (!ReadFile(source, chunk, wanted, &read, nullptr) || read == 0 || read > wanted) return StepError();
        // A short write is finished before the next read, so that no bytes are skipped.
        for (DWORD done = 0; done < read;) {
            DWORD written = 0;
            SetLastError(ERROR_SUCCESS);
            if (!WriteFile(destination, chunk + done, read - done, &written, nullptr) || written == 0 ||
                written > read - done)
                return StepError();
            done += written;
        }
        remaining -= read;
    }
    return ERROR_SUCCESS;
}

}  // namespace

// The destination gets the bytes only: no times, no attributes.
BOOL ZelCopyFile(const WCHAR* destination, const WCHAR* source) {
    HANDLE from = ZelCreateFile(source, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                                nullptr);
    if (!IsOpen(from)) {
        ZelReportSystemError(StepError());
        return FALSE;
    }
    HANDLE to = ZelCreateFile(destination, GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr);
    if (!IsOpen(to)) {
        ZelReportSystemError(StepError());
        CloseHandle(from);
        return FALSE;
    }
    const DWORD error = CopyBytes(from, to);
    CloseHandle(from);
    CloseHandle(to);
    if (error != ERROR_SUCCESS) {
        ZelDeleteFile(destination);
        ZelReportSystemError(error);
        return FALSE;
    }
    return TRUE;
}

DWORD ZelExistDir(const WCHAR* path) {
    const DWORD attributes = ZelGetFileAttributes(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) return 0;
    return attributes & FILE_ATTRIBUTE_DIRECTORY;
}

BOOL ZelFileExist(const WCHAR* path) {
    if (!path) return FALSE;
    struct _stat record = {};
    if (u__wstat(path, &record) != 0) return FALSE;
    return (record.st_mode & _S_IFDIR) ? FALSE : TRUE;
}

// A path without a drive asks about the root of the current drive, "\".
BOOL ZelCheckRemovableDrive(const WCHAR* path) {
    if (!path || !*path) return FALSE;
    WCHAR drive[_MAX_DRIVE] = {};
    _wsplitpath(path, drive, nullptr, nullptr, nullptr);
    WCHAR root[_MAX_DRIVE + 2] = {};
    _snwprintf(root, _MAX_DRIVE + 1, u"%s\\", drive);
    return ZelGetDriveType(root) == DRIVE_REMOVABLE ? TRUE : FALSE;
}
