// The system's version as Win32 reports it, and the process and thread identities.
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/win32.h"

namespace {

struct VersionTriple {
    DWORD platform = VER_PLATFORM_WIN32_NT;
    DWORD major = 6;
    DWORD minor = 2;
};

// ZEL_OS_VERSION as "platform.major.minor" in decimal; anything else keeps the default, an
// NT-family system newer than any the library knows by name, so that it runs in wide mode.
VersionTriple ConfiguredVersion() {
    VersionTriple version;
    const char* text = getenv("ZEL_OS_VERSION");
    if (!text) return version;
    unsigned long parts[3] = {};
    const char* cursor = text;
    for (int i = 0; i < 3; ++i) {
        if (*cursor < '0' || *cursor > '9') return version;
        char* end = nullptr;
        parts[i] = strtoul(cursor, &end, 10);
        if (parts[i] > 0xFFFFFFFFul) return version;
        cursor = end;
        if (i < 2 && *cursor++ != '.') return version;
    }
    if (*cursor) return version;
    version.platform = static_cast<DWORD>(parts[0]);
    version.major = static_cast<DWORD>(parts[1]);
    version.minor = static_cast<DWORD>(parts[2]);
    return version;
}

bool KernelIs64Bit() {
    utsname name{};
    if (uname(&name) != 0) return false;
    const char* machine = name.machine;
    return strstr(machine, "64") != nullptr || strcmp(machine, "s390x") == 0;
}

}  // namespace

BOOL GetVersionExA(LPOSVERSIONINFOA info) {
    if (!info) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (info->dwOSVersionInfoSize < sizeof(OSVERSIONINFOA)) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    const VersionTriple version = ConfiguredVersion();
    info->dwPlatformId = version.platform;
    info->dwMajorVersion = version.major;
    info->dwMinorVersion = version.minor;
    info->dwBuildNumber = 0;
    memset(info->szCSDVersion, 0, sizeof info->szCSDVersion);
    return TRUE;
}

HANDLE GetCurrentProcess() { return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)); }

DWORD GetCurrentThreadId() { return static_cast<DWORD>(syscall(SYS_gettid)); }

BOOL IsWow64Process(HANDLE process, PBOOL wow64) {
    if (!wow64) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    (void)process;  // only the current process can be asked about here
    *wow64 = sizeof(void*) == 4 && KernelIs64Bit() ? TRUE : FALSE;
    return TRUE;
}
