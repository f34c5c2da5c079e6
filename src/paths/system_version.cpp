// The system's version, on which the 8-bit convention of the adapters turns, and the fixed
// platform constants.
#include <zel/paths.h>

#include "platform/win32.h"
#include "strings/wstr.h"

namespace {

// Plain values, so that they outlast the library's static objects at unload.
int knownVersion = -1;

const WCHAR* const kVersionTexts[] = {
    u"Windows_3.1", u"Windows_95", u"Windows_98", u"Windows_ME", u"Windows_NT",
    u"Windows_2000", u"Windows_XP", u"Windows_2003", u"Windows_Vista",
};
WCHAR osVersionText[32] = u"Windows_Unknown_Version";

int VersionValue(DWORD platform, DWORD major, DWORD minor) {
    if (platform == VER_PLATFORM_WIN32_WINDOWS) return minor == 0 ? 1 : minor == 10 ? 2 : 3;
    if (platform != VER_PLATFORM_WIN32_NT) return 0;
    if (major <= 4) return 4;
    if (major == 5) return minor <= 2 ? static_cast<int>(5 + minor) : 0;
    if (major == 6) return minor == 0 ? 8 : 9;
    return minor >= 1 ? 9 : 0;
}

}  // namespace

int ZelGetWinVersion() {
    if (knownVersion >= 0) return knownVersion;
    OSVERSIONINFOA info = {};
    info.dwOSVersionInfoSize = sizeof(info);
    if (!GetVersionExA(&info)) return 0;  // asked again at the next call
    knownVersion = VersionValue(info.dwPlatformId, info.dwMajorVersion, info.dwMinorVersion);
    return knownVersion;
}

WCHAR* ZelGetOSVersion() {
    int version = ZelGetWinVersion();
    if (version >= 0 && version <= 8) wcscpy(osVersionText, kVersionTexts[version]);
    return osVersionText;
}

int ZelGetOS() { return 1; }

// 'L' for a little-endian machine; a big-endian build answers 'B'.
int ZelGetEndian() {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    return 'B';
#else
    return 'L';
#endif
}

int ZelGetApplicationBit() { return 4; }

BOOL IsWinWow64() {
    BOOL wow64 = FALSE;
    HMODULE kernel = LoadLibraryA("Kernel32.dll");
    if (!kernel) return FALSE;
    using IsWow64Call = BOOL (*)(HANDLE, PBOOL);
    // Through the generic function pointer type, as a looked-up call is typed by its caller.
    if (auto call = reinterpret_cast<IsWow64Call>(reinterpret_cast<void (*)()>(GetProcAddress(kernel, "IsWow64Process"))))
        call(GetCurrentProcess(), &wow64);
    FreeLibrary(kernel);
    return wow64;
}
