// The operating system's interfaces that the library calls, under their Win32 names. On POSIX the
// bodies live in posix/, one file per family; each A call converts through the ANSI code page and
// calls its W twin. None of these is exported.
#ifndef ZEL_PLATFORM_WIN32_H
#define ZEL_PLATFORM_WIN32_H

#include <zel/wintypes.h>

#include <string>

// ---------------------------------------------------------------------------------------------
// Process (posix/process.cpp)

// The library's entry point, implemented by the frame; the platform calls it at load, at unload
// and when a thread that used a thread slot ends.
BOOL DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

// Run the entry point for process attach and detach. The shared library calls these from its
// ELF constructor and destructor; a program that links the library's objects calls them itself.
void ZelPlatformProcessAttach();
void ZelPlatformProcessDetach();

// The module handle of the library itself.
HMODULE ZelPlatformOwnModule();

DWORD TlsAlloc();
BOOL TlsFree(DWORD index);
LPVOID TlsGetValue(DWORD index);
BOOL TlsSetValue(DWORD index, LPVOID value);

LONG InterlockedIncrement(LONG volatile* value);
LONG InterlockedDecrement(LONG volatile* value);

// ---------------------------------------------------------------------------------------------
// Errors (posix/errors.cpp)

DWORD GetLastError();
void SetLastError(DWORD code);

// The one place where a POSIX errno becomes a Win32 error code.
DWORD ZelPlatformErrorFromErrno(int error);
// Sets the last error from errno and returns it.
DWORD ZelPlatformSetLastErrorFromErrno();

// ---------------------------------------------------------------------------------------------
// Modules (posix/modules.cpp)

HMODULE LoadLibraryA(LPCSTR fileName);
HMODULE LoadLibraryW(LPCWSTR fileName);
HMODULE LoadLibraryExA(LPCSTR fileName, HANDLE reserved, DWORD flags);
HMODULE LoadLibraryExW(LPCWSTR fileName, HANDLE reserved, DWORD flags);
BOOL FreeLibrary(HMODULE module);
FARPROC GetProcAddress(HMODULE module, LPCSTR procName);
DWORD GetModuleFileNameA(HMODULE module, LPSTR fileName, DWORD size);
DWORD GetModuleFileNameW(HMODULE module, LPWSTR fileName, DWORD size);
HMODULE GetModuleHandleA(LPCSTR moduleName);
HMODULE GetModuleHandleW(LPCWSTR moduleName);

// A module loaded as a data file: its bytes, for the resource reader. Null for any other handle.
struct ZelDataModule {
    const BYTE* bytes;
    size_t size;
};
const ZelDataModule* ZelPlatformDataModule(HMODULE module);

// ---------------------------------------------------------------------------------------------
// Messages (posix/messages.cpp)

void OutputDebugStringA(LPCSTR text);
int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style);
int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT style);

// ---------------------------------------------------------------------------------------------
// Locale (posix/locale.cpp)

LANGID GetUserDefaultLangID();
LCID GetUserDefaultLCID();
LANGID GetSystemDefaultLangID();
LCID GetSystemDefaultLCID();

// ---------------------------------------------------------------------------------------------
// Code pages (posix/codepages.cpp)

UINT GetACP();
UINT GetOEMCP();
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR multiByte, int multiByteCount, LPWSTR wide,
                        int wideCount);
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideCount, LPSTR multiByte,
                        int multiByteCount, LPCSTR defaultChar, LPBOOL usedDefaultChar);

// Whole-string helpers for the A thunks: null stays null (the bool says which).
struct ZelAnsiArg {
    std::u16string text;
    bool null = true;
    LPCWSTR get() const { return null ? nullptr : text.c_str(); }
};
ZelAnsiArg ZelPlatformAnsiToWide(LPCSTR text);
std::string ZelPlatformWideToAnsi(LPCWSTR text);
// UTF-8 text for the system's side: names on disk, standard error.
std::string ZelPlatformWideToUtf8(const std::u16string& text);
std::u16string ZelPlatformUtf8ToWide(const std::string& text);

// ---------------------------------------------------------------------------------------------
// Registry (posix/registry*.cpp)

LONG RegOpenKeyA(HKEY key, LPCSTR subKey, PHKEY result);
LONG RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result);
LONG RegOpenKeyExA(HKEY key, LPCSTR subKey, DWORD options, REGSAM access, PHKEY result);
LONG RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD options, REGSAM access, PHKEY result);
LONG RegCreateKeyA(HKEY key, LPCSTR subKey, PHKEY result);
LONG RegCreateKeyW(HKEY key, LPCWSTR subKey, PHKEY result);
LONG RegCreateKeyExA(HKEY key, LPCSTR subKey, DWORD reserved, LPSTR keyClass, DWORD options, REGSAM access,
                     const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition);
LONG RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR keyClass, DWORD options, REGSAM access,
                     const SECURITY_ATTRIBUTES* security, PHKEY result, LPDWORD disposition);
LONG RegEnumKeyA(HKEY key, DWORD index, LPSTR name, DWORD nameSize);
LONG RegEnumKeyW(HKEY key, DWORD index, LPWSTR name, DWORD nameSize);
LONG RegEnumValueA(HKEY key, DWORD index, LPSTR valueName, LPDWORD valueNameSize, LPDWORD reserved, LPDWORD type,
                   LPBYTE data, LPDWORD dataSize);
LONG RegEnumValueW(HKEY key, DWORD index, LPWSTR valueName, LPDWORD valueNameSize, LPDWORD reserved, LPDWORD type,
                   LPBYTE data, LPDWORD dataSize);
LONG RegQueryInfoKeyA(HKEY key, LPSTR keyClass, LPDWORD classSize, LPDWORD reserved, LPDWORD subKeys,
                      LPDWORD maxSubKeyLen, LPDWORD maxClassLen, LPDWORD values, LPDWORD maxValueNameLen,
                      LPDWORD maxValueLen, LPDWORD securityDescriptorSize, PFILETIME lastWriteTime);
LONG RegQueryInfoKeyW(HKEY key, LPWSTR keyClass, LPDWORD classSize, LPDWORD reserved, LPDWORD subKeys,
                      LPDWORD maxSubKeyLen, LPDWORD maxClassLen, LPDWORD values, LPDWORD maxValueNameLen,
                      LPDWORD maxValueLen, LPDWORD securityDescriptorSize, PFILETIME lastWriteTime);
LONG RegQueryValueA(HKEY key, LPCSTR subKey, LPSTR data, PLONG dataSize);
LONG RegQueryValueW(HKEY key, LPCWSTR subKey, LPWSTR data, PLONG dataSize);
LONG RegQueryValueExA(HKEY key, LPCSTR valueName, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD dataSize);
LONG RegQueryValueExW(HKEY key, LPCWSTR valueName, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD dataSize);
LONG RegSetValueA(HKEY key, LPCSTR subKey, DWORD type, LPCSTR data, DWORD dataSize);
LONG RegSetValueW(HKEY key, LPCWSTR subKey, DWORD type, LPCWSTR data, DWORD dataSize);
LONG RegSetValueExA(HKEY key, LPCSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD dataSize);
LONG RegSetValueExW(HKEY key, LPCWSTR valueName, DWORD reserved, DWORD type, const BYTE* data, DWORD dataSize);
LONG RegDeleteKeyA(HKEY key, LPCSTR subKey);
LONG RegDeleteKeyW(HKEY key, LPCWSTR subKey);
LONG RegDeleteValueA(HKEY key, LPCSTR valueName);
LONG RegDeleteValueW(HKEY key, LPCWSTR valueName);
LONG RegCloseKey(HKEY key);
LONG RegSaveKeyA(HKEY key, LPCSTR fileName, const SECURITY_ATTRIBUTES* security);
LONG RegSaveKeyW(HKEY key, LPCWSTR fileName, const SECURITY_ATTRIBUTES* security);

// ---------------------------------------------------------------------------------------------
// Paths (posix/paths.cpp): the one place where the library's Windows form of a path meets the
// system's. Toward the system backslashes become slashes and a drive x: becomes the directory that
// ZEL_DRIVE_X names, or the root; from the system slashes become backslashes. Names are UTF-8.

std::string ZelPlatformPathToSystem(LPCWSTR path);
std::u16string ZelPlatformPathFromSystem(const char* path);

#endif  // ZEL_PLATFORM_WIN32_H
