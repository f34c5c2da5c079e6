// Version information of files. No executable or library here carries a version resource, so
// every existing file answers as a Win32 image without one: no block, and nothing to query in any.
#include "platform/win32.h"

namespace {

// The error for a file's version block: the file's own when it can't be found, else no block.
DWORD MissingBlockError(LPCSTR fileName) {
    if (!fileName || !*fileName) return ERROR_INVALID_PARAMETER;
    if (GetFileAttributesA(fileName) == INVALID_FILE_ATTRIBUTES) return GetLastError();
    return ERROR_RESOURCE_DATA_NOT_FOUND;
}

}  // namespace

DWORD GetFileVersionInfoSizeA(LPCSTR fileName, LPDWORD handle) {
    if (handle) *handle = 0;
    SetLastError(MissingBlockError(fileName));
    return 0;
}

BOOL GetFileVersionInfoA(LPCSTR fileName, DWORD, DWORD, LPVOID) {
    SetLastError(MissingBlockError(fileName));
    return FALSE;
}

BOOL VerQueryValueA(LPCVOID, LPCSTR, LPVOID* value, PUINT length) {
    if (value) *value = nullptr;
    if (length) *length = 0;
    SetLastError(ERROR_RESOURCE_TYPE_NOT_FOUND);
    return FALSE;
}
