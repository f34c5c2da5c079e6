// The thread's last error.
#include "platform/win32.h"

namespace {
thread_local DWORD lastError = ERROR_SUCCESS;
}

DWORD GetLastError() { return lastError; }

void SetLastError(DWORD code) { lastError = code; }
