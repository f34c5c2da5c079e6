// The system's own calls that the Windows platform layer wraps under their Win32 names: declared
// here apart, bound to the system's functions by their names in the image.
#ifndef ZEL_PLATFORM_WINDOWS_SYSTEM_CALLS_H
#define ZEL_PLATFORM_WINDOWS_SYSTEM_CALLS_H

#include <zel/wintypes.h>

namespace sys {

HMODULE LoadLibraryExW(LPCWSTR fileName, HANDLE reserved, DWORD flags) __asm__("LoadLibraryExW");
BOOL FreeLibrary(HMODULE module) __asm__("FreeLibrary");
DWORD GetModuleFileNameW(HMODULE module, LPWSTR fileName, DWORD size) __asm__("GetModuleFileNameW");
DWORD GetModuleFileNameA(HMODULE module, LPSTR fileName, DWORD size) __asm__("GetModuleFileNameA");
DWORD SearchPathW(LPCWSTR path, LPCWSTR fileName, LPCWSTR extension, DWORD size, LPWSTR buffer, LPWSTR* filePart)
    __asm__("SearchPathW");

}  // namespace sys

#endif  // ZEL_PLATFORM_WINDOWS_SYSTEM_CALLS_H
